# The half of the layer that speaks to the system's C functions: included where the layer is a target, and where it is
# run against a fake of them.
set(ferrowyn_c_half_sources
  cf_values.cpp
  mac_accessibility_observer.cpp
  mac_accessibility_observers.cpp
  mac_attributes.cpp
  mac_event_tap.cpp
  mac_event_taps.cpp
  mac_inventory_reading.cpp
  mac_notification_registrations.cpp
  mac_platform.cpp
  mac_tap_event.cpp
  mac_tap_run_loop.cpp
  mac_tap_run_loop_source.cpp
  mac_tap_thread.cpp
  mac_trust.cpp
  mac_window_control.cpp
  mac_window_inventory.cpp
  mac_window_list.cpp
  mac_window_number_lookup.cpp
)
list(TRANSFORM ferrowyn_c_half_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
