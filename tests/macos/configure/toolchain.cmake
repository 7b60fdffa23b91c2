# Makes CMake believe that it configures for a Mac. Nothing can be built with it.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
foreach(language CXX OBJCXX)
  set(CMAKE_${language}_COMPILER ${FERROWYN_CLANG})
  set(CMAKE_${language}_COMPILER_WORKS TRUE)
endforeach()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES FERROWYN_CLANG)
set(CMAKE_INSTALL_NAME_TOOL /bin/true)
set(CMAKE_HAVE_LIBC_PTHREAD TRUE)

# The packages of this machine stand in for Homebrew's.
execute_process(COMMAND ${FERROWYN_CLANG} -print-multiarch OUTPUT_VARIABLE machine OUTPUT_STRIP_TRAILING_WHITESPACE
                ERROR_QUIET)
if(NOT machine)
  execute_process(COMMAND g++ -dumpmachine OUTPUT_VARIABLE machine OUTPUT_STRIP_TRAILING_WHITESPACE)
endif()
set(CMAKE_LIBRARY_ARCHITECTURE ${machine})
set(CMAKE_SYSTEM_PREFIX_PATH /usr)
set(CMAKE_FIND_LIBRARY_SUFFIXES .so)
set(Qt6_DIR ${CMAKE_CURRENT_LIST_DIR}/qt)
