# The sources of the layer in two halves: that which speaks to the system's C functions, and that which is written in
# Objective-C++. Included where the layer is a target, and where each half is run against fakes.
set(ferrowyn_c_half_sources
  cf_values.cpp
  mac_accessibility_observers.cpp
  mac_element.cpp
  mac_keyboard_tap.cpp
  mac_platform.cpp
  mac_trust.cpp
  mac_window_control.cpp
  mac_window_inventory.cpp
)
set(ferrowyn_objective_cpp_sources
  cocoa.mm
  mac_accessibility_notifications.mm
  mac_application.mm
  mac_background_work.mm
  mac_menu.mm
  mac_panel.mm
  mac_screens.mm
  mac_status_item.mm
  mac_system_looks.mm
  mac_system_services.mm
  mac_workspace.mm
)
list(TRANSFORM ferrowyn_c_half_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
list(TRANSFORM ferrowyn_objective_cpp_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
