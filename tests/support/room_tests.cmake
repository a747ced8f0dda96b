# tavora_discover_tests(TARGET ...): gtest_discover_tests, with an empty folder
# for the user's settings: what the developer stored as default must not matter.
function(tavora_discover_tests target)
  gtest_discover_tests(${target} ${ARGN} PROPERTIES
    TIMEOUT 300 ENVIRONMENT "TAVORA_DEFAULTS=${CMAKE_BINARY_DIR}/tests/no-settings")
endfunction()

# tavora_room_tests(ROOM FILES...): one executable with the tests of a module
# room, linked to the module's objects so that they can look inside.
function(tavora_room_tests room)
  add_executable(${room}_tests ${ARGN} $<TARGET_OBJECTS:tavora_test_support>)
  target_link_libraries(${room}_tests PRIVATE
    tavora_flags tavora_module GTest::gtest_main ${CMAKE_DL_LIBS})
  tavora_discover_tests(${room}_tests TEST_PREFIX ${room}.)
endfunction()
