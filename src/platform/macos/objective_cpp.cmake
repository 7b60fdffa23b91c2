# The half of the layer that is written in Objective-C++: included where the layer is a target, and where it is run
# against fakes.
set(ferrowyn_objective_cpp_sources
  mac_accessibility_notifications.mm
  mac_activity.mm
  mac_application.mm
  mac_application_delegate.mm
  mac_application_menu.mm
  mac_autorelease_pool.mm
  mac_background_work.mm
  mac_icon_image.mm
  mac_icon_source.mm
  mac_log.mm
  mac_login_item.mm
  mac_menu.mm
  mac_menu_header_view.mm
  mac_notification_observation.mm
  mac_panel.mm
  mac_panel_material.mm
  mac_panel_window.mm
  mac_pointer.mm
  mac_running_application.mm
  mac_running_application_control.mm
  mac_screens.mm
  mac_status_item.mm
  mac_symbols.mm
  mac_system_looks.mm
  mac_user_defaults.mm
  mac_utility_window.mm
  mac_workspace.mm
)
list(TRANSFORM ferrowyn_objective_cpp_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/)

# ferrowyn_add_objective_cpp(<target>): on a Mac, where the frameworks are.
function(ferrowyn_add_objective_cpp target)
  target_sources(${target} PRIVATE ${ferrowyn_objective_cpp_sources})
  set_source_files_properties(${ferrowyn_objective_cpp_sources} PROPERTIES COMPILE_OPTIONS -fobjc-arc)
  target_link_libraries(${target} PRIVATE "-framework AppKit" "-framework Foundation" "-framework ServiceManagement"
                                          "-framework UniformTypeIdentifiers")
endfunction()
