# Configures the whole project as on a Mac, and looks at what would be built there.
#   cmake -DSOURCE=… -DCLANG=… -DWORK=… -P configure_test.cmake
foreach(type Debug Release)
  execute_process(
    COMMAND ${CMAKE_COMMAND} --fresh -S ${SOURCE} -B ${WORK}/${type} -G Ninja -DCMAKE_BUILD_TYPE=${type}
            -DCMAKE_TOOLCHAIN_FILE=${CMAKE_CURRENT_LIST_DIR}/toolchain.cmake -DFERROWYN_CLANG=${CLANG}
    RESULT_VARIABLE code OUTPUT_VARIABLE said ERROR_VARIABLE said)
  if(NOT code EQUAL 0)
    message(FATAL_ERROR "A build for a Mac (${type}) does not configure:\n${said}")
  endif()
  file(READ ${WORK}/${type}/build.ninja build)
  foreach(wanted "Ferrowyn.app/Contents/MacOS/Ferrowyn" "program_on_macos.cpp.o" "mac_status_item.mm.o"
                 "bin/ferrowyn_app_delegate_tests" "-fobjc-arc" "-framework AppKit" "-mmacosx-version-min=13.0")
    string(FIND "${build}" "${wanted}" place)
    if(place EQUAL -1)
      message(SEND_ERROR "A build for a Mac (${type}) has no ${wanted}.")
    endif()
  endforeach()
  foreach(foreign "platform/x11/" "platform/linux/" "tests/x11/" "doctor" "xcb" "Qt6::DBus" "journal" "tests/macos/sdk")
    string(FIND "${build}" "${foreign}" place)
    if(NOT place EQUAL -1)
      string(SUBSTRING "${build}" ${place} 100 found)
      message(SEND_ERROR "A build for a Mac (${type}) builds what only Linux has: ${found}")
    endif()
  endforeach()
endforeach()
