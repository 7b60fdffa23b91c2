# The half of the layer that speaks to the system's C functions: included where the layer is a target, and where it is
# run against a fake of them.
set(ferrowyn_c_half_sources
  cf_values.cpp
  mac_accessibility_observers.cpp
  mac_element.cpp
  mac_event_taps.cpp
  mac_platform.cpp
  mac_trust.cpp
  mac_window_control.cpp
  mac_window_inventory.cpp
)
list(TRANSFORM ferrowyn_c_half_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
