# Installs the library into a folder of its own and builds the consumer against it: with the CMake package, and
# where pkg-config serves the target, with pkg-config; then runs both.
file(REMOVE_RECURSE ${WORK})
set(prefix ${WORK}/prefix)

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

set(options -G ${GENERATOR} -DCMAKE_C_COMPILER=${C_COMPILER} -DZKR13N_ROOT=${prefix})
if(TOOLCHAIN)
  list(APPEND options --toolchain ${TOOLCHAIN} -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH)
endif()
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/cmake ${options})
run(${CMAKE_COMMAND} --build ${WORK}/cmake)
if(TOOLCHAIN)
  file(COPY ${prefix}/bin/ZKR13N.dll DESTINATION ${WORK}/cmake)
  run(${EMULATOR} ${WORK}/cmake/consumer.exe)
  return()
endif()
run(${WORK}/cmake/consumer)

file(GLOB_RECURSE pc ${prefix}/*/zkr13n.pc)
cmake_path(GET pc PARENT_PATH pkgconfig)
set(ENV{PKG_CONFIG_PATH} ${pkgconfig})
execute_process(COMMAND pkg-config --cflags --libs zkr13n OUTPUT_VARIABLE flags COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND ${flags})
run(${C_COMPILER} -std=c99 ${SOURCE}/main.c -o ${WORK}/consumer ${flags})
cmake_path(GET pkgconfig PARENT_PATH libraries)
set(ENV{LD_LIBRARY_PATH} ${libraries})
run(${WORK}/consumer)
