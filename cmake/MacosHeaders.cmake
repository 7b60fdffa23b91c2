# tests/macos/sdk declares a little of macOS for checks on Linux. In front of Apple's own headers it would build a
# program from guesses, so no target of a build for a Mac may see it.

# Fails when anything below the folder can find the declarations.
function(ferrowyn_forbid_check_headers folder declarations)
  set(environment "$ENV{CPATH}:$ENV{CPLUS_INCLUDE_PATH}:$ENV{OBJCPLUS_INCLUDE_PATH}")
  foreach(variable CMAKE_CXX_FLAGS CMAKE_C_FLAGS CMAKE_OBJCXX_FLAGS CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES environment)
    if("${${variable}}" MATCHES "tests/macos/sdk")
      message(FATAL_ERROR "${declarations} is for checks on Linux, and is on the include path of this build (${variable}).")
    endif()
  endforeach()
  get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    foreach(property INCLUDE_DIRECTORIES INTERFACE_INCLUDE_DIRECTORIES INTERFACE_SYSTEM_INCLUDE_DIRECTORIES
                     COMPILE_OPTIONS INTERFACE_COMPILE_OPTIONS)
      get_target_property(value ${target} ${property})
      if("${value}" MATCHES "tests/macos/sdk")
        message(FATAL_ERROR "${declarations} is for checks on Linux, and ${target} would build with it (${property}).")
      endif()
    endforeach()
  endforeach()
  get_property(folders DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
  foreach(each IN LISTS folders)
    ferrowyn_forbid_check_headers(${each} ${declarations})
  endforeach()
endfunction()
