# The exported names come from one list, include/zkr13n/exports.list: a version script for a shared object, a
# definition file for a DLL. A second word on a line, portable or windows, keeps a name to one of the two.
function(zkr_exported_names variable)
  set(list ${CMAKE_SOURCE_DIR}/include/zkr13n/exports.list)
  set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
  file(STRINGS ${list} names REGEX "^[A-Za-z_]")
  if(WIN32)
    list(FILTER names EXCLUDE REGEX " +portable$")
  else()
    list(FILTER names EXCLUDE REGEX " +windows$")
  endif()
  list(TRANSFORM names REPLACE " .*" "")
  set(${variable} ${names} PARENT_SCOPE)
endfunction()

function(zkr_exports target)
  zkr_exported_names(names)
  if(WIN32)
    list(JOIN names "\n    " lines)
    set(definition ${CMAKE_BINARY_DIR}/ZKR13N.def)
    file(CONFIGURE OUTPUT ${definition} CONTENT "LIBRARY ZKR13N\nEXPORTS\n    ${lines}\n" @ONLY)
    set_target_properties(${target} PROPERTIES PREFIX "" LINK_DEPENDS ${definition}
                                               ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
    target_sources(${target} PRIVATE ${definition})
    target_link_options(${target} PRIVATE -static -Wl,--enable-stdcall-fixup)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
      add_custom_command(TARGET ${target} POST_BUILD VERBATIM
        COMMAND ${CMAKE_COMMAND} -DNM=${CMAKE_NM} -DDLLTOOL=${CMAKE_DLLTOOL} -DDLL=$<TARGET_FILE:${target}>
                -DIMPORT_LIBRARY=$<TARGET_LINKER_FILE:${target}> -DDEFINITION=${definition}
                -P ${CMAKE_SOURCE_DIR}/cmake/ImportLibrary.cmake)
    endif()
  else()
    list(JOIN names "; " lines)
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/ZKR13N.map CONTENT "{ global: ${lines}; local: *; };\n" @ONLY)
    target_link_options(${target} PRIVATE -Wl,--version-script=${CMAKE_BINARY_DIR}/ZKR13N.map
                                          -Wl,-Bsymbolic-functions)
    set_target_properties(${target} PROPERTIES LINK_DEPENDS ${CMAKE_BINARY_DIR}/ZKR13N.map)
  endif()
endfunction()
