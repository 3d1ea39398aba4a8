# The test of how gdb shows the library's classes. A sanitizer's shadow memory does not go into a core
# file, and gdb would see the emulator.
function(add_gdb_test)
  if(CMAKE_CXX_FLAGS MATCHES "-fsanitize" OR CMAKE_CROSSCOMPILING)
    return()
  endif()
  add_executable(gdb_program gdb_program.cc)
  target_compile_options(gdb_program PRIVATE -O0 -g)
  target_link_libraries(gdb_program PRIVATE miroxgcl::miroxgcl)
  add_test(NAME gdb_test
           COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/gdb_test $<TARGET_FILE:gdb_program>
                   ${PROJECT_SOURCE_DIR}/tools/gdb_printers.py
                   ${CMAKE_CURRENT_SOURCE_DIR}/gdb_session.txt)
  set_tests_properties(gdb_test PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)
endfunction()
