# What every translation unit of the project is compiled with.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON) # so that what is built tells nothing of where it was built

find_program(ZKR_CCACHE ccache)
if(ZKR_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${ZKR_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${ZKR_CCACHE})
endif()

# Warnings of the product's compiler are errors in everything that is ours.
add_library(zkr_warnings INTERFACE)
target_compile_options(zkr_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(zkr_warnings INTERFACE -Werror)
endif()

# The tables of kernel families are defined in files that no header tells of.
target_compile_options(zkr_warnings INTERFACE $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-undefined-var-template>)

# Integer rules are exact and floating point is fixed, so that every target gives the same bytes.
add_library(zkr_exact INTERFACE)
target_compile_options(zkr_exact INTERFACE -ffp-contract=off)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  target_compile_options(zkr_exact INTERFACE -msse2 -mfpmath=sse -mstackrealign)
endif()

# The inside of the library: failures are results, so neither exceptions nor run-time type information.
add_library(zkr_inside INTERFACE)
target_link_libraries(zkr_inside INTERFACE zkr_warnings zkr_exact)
target_compile_options(zkr_inside INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti>
                                            -fvisibility=hidden)
target_compile_definitions(zkr_inside INTERFACE _FILE_OFFSET_BITS=64
                                                $<$<CONFIG:Sanitize>:ZKR_ASSERTIONS=1>)
target_include_directories(zkr_inside INTERFACE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/include)
