# What the program is besides on Linux.
target_sources(ferrowyn_app_start PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/single_instance.cpp
)
target_link_libraries(ferrowyn_app_start PUBLIC PkgConfig::XCB PRIVATE ferrowyn_platform_x11)

# Says what is right and wrong in a session; starts nothing.
ferrowyn_library(ferrowyn_doctor
  SOURCES
    doctor.cpp
    doctor_activation.cpp
    doctor_display.cpp
  PUBLIC ferrowyn_app_start ferrowyn_platform_linux
  PRIVATE ferrowyn_input ferrowyn_platform_x11 PkgConfig::SYSTEMD PkgConfig::XKBCOMMON Qt6::Core fmt::fmt
)

target_sources(ferrowyn PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/bus_requests.cpp
  ${CMAKE_CURRENT_LIST_DIR}/program_log_on_linux.cpp
  ${CMAKE_CURRENT_LIST_DIR}/program_on_x11.cpp
)
target_link_libraries(ferrowyn PRIVATE ferrowyn_doctor ferrowyn_platform_linux ferrowyn_platform_x11)
