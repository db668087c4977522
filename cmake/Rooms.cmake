# The library is put together from the folders of the tree. A folder adds its files with zkr_sources(); files of
# row kernels go through zkr_kernels(), which compiles them once for each instruction set.
#
#   zkr13n         the product, a shared library
#   zkr13n_inner   the same code as a static library in which every allocation, mapping and file call can be made
#                  to fail; tests that look inside link it

add_library(zkr13n_rooms OBJECT)
target_link_libraries(zkr13n_rooms PRIVATE zkr_inside)

if(ZKR_TESTS)
  add_library(zkr13n_faulty_rooms OBJECT)
  target_link_libraries(zkr13n_faulty_rooms PRIVATE zkr_inside)
  target_compile_definitions(zkr13n_faulty_rooms PRIVATE ZKR_FAULT_INJECTION=1 ZKR_ASSERTIONS=1)
endif()

# Instruction sets, and for each the compiler's options: the features that kernels/instruction_sets.inc lists, which
# are those of x86 processors.
set(ZKR_INSTRUCTION_SETS)
set(list ${CMAKE_SOURCE_DIR}/kernels/instruction_sets.inc)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
file(STRINGS ${list} lines REGEX "^ZKR_INSTRUCTION_SET")
foreach(line IN LISTS lines)
  string(REGEX REPLACE "^[^(]*\\(([A-Za-z0-9]+),.*" "\\1" set "${line}")
  string(REGEX MATCHALL "HAS\\([a-z0-9.]+" features "${line}")
  list(TRANSFORM features REPLACE "HAS\\(" "-m")
  if(NOT features OR CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|i[3-6]86")
    list(APPEND ZKR_INSTRUCTION_SETS ${set})
    set(ZKR_OPTIONS_${set} ${features})
  endif()
endforeach()
if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 8)
  # The stack of 64-bit Windows is aligned to 16 bytes, and GCC takes spilled vectors of 32 for aligned.
  list(APPEND ZKR_OPTIONS_Avx2 -Wa,-muse-unaligned-vector-move)
endif()

function(zkr_sources)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(zkr13n_rooms PRIVATE ${ARGN})
  if(ZKR_TESTS)
    target_sources(zkr13n_faulty_rooms PRIVATE ${ARGN})
  endif()
endfunction()

function(zkr_kernels)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  foreach(set IN LISTS ZKR_INSTRUCTION_SETS)
    if(NOT TARGET zkr13n_kernels_${set})
      add_library(zkr13n_kernels_${set} OBJECT)
      target_link_libraries(zkr13n_kernels_${set} PRIVATE zkr_inside)
      target_compile_definitions(zkr13n_kernels_${set} PRIVATE ZKR_KERNEL_SET=${set})
      # Vectors that are wider than the registers of a set go between functions of one file alone, so that it does not
      # matter how they are handed over.
      target_compile_options(zkr13n_kernels_${set} PRIVATE -O3 -Wno-psabi ${ZKR_OPTIONS_${set}})
    endif()
    target_sources(zkr13n_kernels_${set} PRIVATE ${ARGN})
  endforeach()
endfunction()

# Called once all folders have been read.
function(zkr_library)
  foreach(set IN LISTS ZKR_INSTRUCTION_SETS)
    if(TARGET zkr13n_kernels_${set})
      list(APPEND kernels $<TARGET_OBJECTS:zkr13n_kernels_${set}>)
    endif()
  endforeach()

  add_library(zkr13n SHARED $<TARGET_OBJECTS:zkr13n_rooms> ${kernels})
  set_target_properties(zkr13n PROPERTIES OUTPUT_NAME ZKR13N LINKER_LANGUAGE CXX)
  if(NOT WIN32)
    # Programs ask for libZKR13N.so.13: one major version keeps names and layouts (docs/changing-the-interface.md).
    set_target_properties(zkr13n PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  endif()
  target_include_directories(zkr13n PUBLIC $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include>
                                           $<INSTALL_INTERFACE:include>)
  zkr_exports(zkr13n)

  if(ZKR_BENCH)
    # The product's own code for benchmarks of what has no exported name.
    add_library(zkr13n_inside STATIC $<TARGET_OBJECTS:zkr13n_rooms> ${kernels})
    target_link_libraries(zkr13n_inside PUBLIC zkr_exact)
    target_include_directories(zkr13n_inside PUBLIC ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/include)
  endif()
  if(ZKR_TESTS)
    add_library(zkr13n_inner STATIC $<TARGET_OBJECTS:zkr13n_faulty_rooms> ${kernels})
    target_link_libraries(zkr13n_inner PUBLIC zkr_exact)
    target_compile_definitions(zkr13n_inner PUBLIC ZKR_FAULT_INJECTION=1 ZKR_ASSERTIONS=1)
    target_include_directories(zkr13n_inner PUBLIC ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/include)
  endif()
endfunction()
