# The half of the layer that is written in Objective-C++: included where the layer is a target, and where it is run
# against fakes.
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
list(TRANSFORM ferrowyn_objective_cpp_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/)

# ferrowyn_add_objective_cpp(<target>): on a Mac, where the frameworks are.
function(ferrowyn_add_objective_cpp target)
  target_sources(${target} PRIVATE ${ferrowyn_objective_cpp_sources})
  set_source_files_properties(${ferrowyn_objective_cpp_sources} PROPERTIES COMPILE_OPTIONS -fobjc-arc)
  target_link_libraries(${target} PRIVATE "-framework AppKit" "-framework Foundation" "-framework ServiceManagement"
                                          "-framework UniformTypeIdentifiers")
endfunction()
