# Warnings, sanitizers, hardening; what only developers use is in the first block.
if(FERROWYN_DEVELOPER_BUILD)
  set(CMAKE_COMPILE_WARNING_AS_ERROR ON)
  find_program(FERROWYN_CCACHE ccache)
  if(FERROWYN_CCACHE)
    # The two sloppiness flags, and g++'s own, are what lets ccache serve precompiled headers.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${FERROWYN_CCACHE})
    add_compile_options($<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>)
  endif()
  find_program(FERROWYN_LLD ld.lld)
  # That one writes no programs for a Mac.
  if(FERROWYN_LLD AND NOT APPLE)
    add_link_options(-fuse-ld=lld)
  endif()
endif()

add_library(ferrowyn_compiler INTERFACE)
target_compile_features(ferrowyn_compiler INTERFACE cxx_std_20)
# g++ warns of members that a designated initializer leaves to their default, which is what one is written for.
target_compile_options(ferrowyn_compiler INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                                                   -Wno-missing-field-initializers)
target_include_directories(ferrowyn_compiler INTERFACE ${CMAKE_SOURCE_DIR}/src)

if(FERROWYN_SANITIZE)
  add_compile_options(-fsanitize=${FERROWYN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${FERROWYN_SANITIZE})
endif()
if(FERROWYN_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 loses sight of initializations between the instrumentation's own calls.
  add_compile_options(-Wno-maybe-uninitialized -Wno-array-bounds -Wno-stringop-overflow -Wno-restrict)
endif()

if(CMAKE_BUILD_TYPE STREQUAL "Release")
  # g++ 12 sees std::vector's memory shrink where it only grows, once the optimizer has inlined both.
  add_compile_options(-Wno-array-bounds)
endif()

# What makes it hard to turn a fault of the program into somebody else's code: checked copies and stacks, stacks that
# cannot jump over their guard page, checked targets of indirect jumps, addresses that differ from run to run, and
# tables of addresses that are read-only once it runs. Apple's tools have most of it built in.
set(FERROWYN_HARDENING_COMPILE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -fstack-protector-strong -fstack-clash-protection)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$")
  list(APPEND FERROWYN_HARDENING_COMPILE -fcf-protection=full)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
  list(APPEND FERROWYN_HARDENING_COMPILE -mbranch-protection=standard)
endif()
set(FERROWYN_HARDENING_LINK -pie -Wl,-z,relro,-z,now,-z,noexecstack)
# The sanitizers check more, and in their own way.
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT APPLE AND NOT FERROWYN_SANITIZE)
  add_compile_options(${FERROWYN_HARDENING_COMPILE})
  add_link_options(${FERROWYN_HARDENING_LINK})
endif()

# ferrowyn_library(<name> SOURCES … [PUBLIC …] [PRIVATE …]): one target a folder, with its links said explicitly.
function(ferrowyn_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC ferrowyn_compiler ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
endfunction()
