# tavora_room_tests(ROOM FILES...): one executable with the tests of a module
# room, linked to the module's objects so that they can look inside.
function(tavora_room_tests room)
  add_executable(${room}_tests ${ARGN} $<TARGET_OBJECTS:tavora_test_support>)
  target_link_libraries(${room}_tests PRIVATE
    tavora_flags tavora_module GTest::gtest_main ${CMAKE_DL_LIBS})
  gtest_discover_tests(${room}_tests TEST_PREFIX ${room}.)
endfunction()
