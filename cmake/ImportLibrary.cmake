# Makes the import library of the 32-bit DLL. Compilers refer to a stdcall function as _Z_Foo@8, while the DLL
# exports plain Z_Foo; the linker's own import library knows the plain names only. The decorated names are read from
# the symbols of the DLL.
#
#   cmake -DNM= -DDLLTOOL= -DDLL= -DDEFINITION= -DIMPORT_LIBRARY= -P ImportLibrary.cmake
execute_process(COMMAND ${NM} ${DLL} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
file(STRINGS ${DEFINITION} names REGEX "^ ")
set(decorated "LIBRARY ZKR13N.dll\nEXPORTS\n")
foreach(name IN LISTS names)
  string(STRIP ${name} name)
  if(NOT symbols MATCHES " T _(${name}@[0-9]+)\n")
    message(FATAL_ERROR "${name} is exported but is no stdcall function of ${DLL}")
  endif()
  string(APPEND decorated "    ${CMAKE_MATCH_1}\n")
endforeach()
file(WRITE ${DEFINITION}.decorated ${decorated})
execute_process(COMMAND ${DLLTOOL} --kill-at --input-def ${DEFINITION}.decorated --output-lib ${IMPORT_LIBRARY}
                COMMAND_ERROR_IS_FATAL ANY)
