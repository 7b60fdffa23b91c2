# The application bundle, on a Mac.

# ferrowyn_make_bundle(<program>): what the program is made of becomes Ferrowyn.app.
function(ferrowyn_make_bundle program)
  set(folder ${CMAKE_CURRENT_FUNCTION_LIST_DIR})
  set(icon ${CMAKE_CURRENT_BINARY_DIR}/Ferrowyn.icns)
  add_custom_command(OUTPUT ${icon}
                     COMMAND ${folder}/make_icon.sh ${CMAKE_SOURCE_DIR}/resources/ferrowyn.svg ${icon}
                     DEPENDS ${folder}/make_icon.sh ${CMAKE_SOURCE_DIR}/resources/ferrowyn.svg VERBATIM)
  add_custom_target(ferrowyn_icon DEPENDS ${icon})
  add_dependencies(${program} ferrowyn_icon)

  set(FERROWYN_BUNDLE_EXECUTABLE Ferrowyn)
  configure_file(${folder}/Info.plist.in Info.plist @ONLY)
  set_target_properties(${program} PROPERTIES
    MACOSX_BUNDLE ON
    MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_BINARY_DIR}/Info.plist
    OUTPUT_NAME Ferrowyn)
  add_custom_command(TARGET ${program} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E make_directory $<TARGET_BUNDLE_CONTENT_DIR:${program}>/Resources
    COMMAND ${CMAKE_COMMAND} -E copy ${icon} $<TARGET_BUNDLE_CONTENT_DIR:${program}>/Resources
    VERBATIM)
  install(TARGETS ${program} BUNDLE DESTINATION .)
endfunction()
