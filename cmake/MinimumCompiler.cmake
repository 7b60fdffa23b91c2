# Apple's compiler counts as Xcode does. The C++ library of an older one lacks parts of C++20 that the program uses.
if(CMAKE_CXX_COMPILER_ID STREQUAL "AppleClang" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 15)
  message(FATAL_ERROR "Xcode 15 or newer is needed; this is Apple's clang ${CMAKE_CXX_COMPILER_VERSION}.")
endif()
