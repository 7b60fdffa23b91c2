# The tests of what the platform's interfaces promise, for the programs that hold an adapter to them. Sources instead of
# a library: each program compiles them as it compiles its adapter, and the tests' registration is not dropped.
set(ferrowyn_desktop_contracts
  desktop_contract.cpp
  keyboard_tap_contract.cpp
)
set(ferrowyn_system_contracts
  system_contract.cpp
)
list(TRANSFORM ferrowyn_desktop_contracts PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
list(TRANSFORM ferrowyn_system_contracts PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
