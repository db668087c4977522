# GoogleTest is built from the sources that Debian's googletest package installs, for each target anew.
set(ZKR_GOOGLETEST /usr/src/googletest CACHE PATH "Sources of GoogleTest")
set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
add_subdirectory(${ZKR_GOOGLETEST} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)

# zkr_test(name [INNER] [BOTH_SETS] SOURCES file...): one test program, one line in ctest's summary. It goes through
# the public headers and the shared library; with INNER it sees the inside of the library and can inject faults. With
# BOTH_SETS it is run a second time with the plainest instruction set, as <name>_baseline. With PALETTE_SCREEN it has a
# screen of 256 colours on Windows; all others have none.
function(zkr_test name)
  cmake_parse_arguments(test "INNER;BOTH_SETS;PALETTE_SCREEN" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${test_SOURCES})
  target_link_libraries(${name} PRIVATE zkr_warnings zkr_exact GTest::gtest_main ${test_LIBRARIES})
  if(test_INNER)
    target_link_libraries(${name} PRIVATE zkr13n_inner)
  else()
    target_link_libraries(${name} PRIVATE zkr13n)
  endif()
  # The library has no run-time type information for the sanitizer to look at.
  target_compile_options(${name} PRIVATE -fno-sanitize=vptr)
  if(CMAKE_BUILD_TYPE STREQUAL "Sanitize" AND NOT test_BOTH_SETS)
    # Where a program is no work of many rows, its compiler takes longer than it does.
    target_compile_options(${name} PRIVATE -O0)
  endif()
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600)
  if(test_PALETTE_SCREEN)
    set_tests_properties(${name} PROPERTIES ENVIRONMENT ZKR_WINE_DISPLAY=1024x768x8 RESOURCE_LOCK screen)
  endif()
  if(test_BOTH_SETS)
    add_test(NAME ${name}_baseline COMMAND ${name})
    set_tests_properties(${name}_baseline PROPERTIES ENVIRONMENT ZKR_CPU=baseline)
  endif()
endfunction()
