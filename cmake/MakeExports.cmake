# Runs the preprocessor over the export lists and writes what the build needs of them. What did not
# change is not written, so that a new export recompiles no other family.
# Arguments: CXX (compiler), LISTS, OUT (build folder), SOURCE (project folder), STAMP, GMP (name of
# the library that a Windows module forwards its jumps to, if it is not libgmp-10).

# Each list by itself: the names of its macros are its own.
function(preprocess result list)
  execute_process(
    COMMAND "${CXX}" -m32 -E -P -x c++ -ffreestanding ${ARGN}
            -imacros "${SOURCE}/cmake/exports_rows.inc" "${list}"
    OUTPUT_VARIABLE text RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${list} does not preprocess.")
  endif()
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

include("${SOURCE}/cmake/JexExportHeader.cmake")

function(write file text)
  set(before "")
  if(EXISTS "${file}")
    file(READ "${file}" before)
  endif()
  if(NOT text STREQUAL before)
    file(WRITE "${file}" "${text}")
  endif()
endfunction()

set(rows "")
set(headers "")
foreach(list ${LISTS})
  preprocess(names "${list}" -DJEX_MAKE_NAMES)
  string(APPEND rows "${names}\n")
  preprocess(prototypes "${list}" -C)
  jex_header_of(header "${list}")
  string(TOUPPER "JEX_EXPORTS_${header}" guard)
  string(REGEX REPLACE "[/.]" "_" guard "${guard}")
  string(APPEND headers "#include <jex/exports/${header}>\n")
  write("${OUT}/include/jex/exports/${header}" "// Made from an export list; do not edit.
#ifndef ${guard}
#define ${guard}

#include <jex/dfti.h>

#include <stddef.h>

#include <jex/types.h>

#ifdef __cplusplus
extern \"C\" {
#endif

${prototypes}
#ifdef __cplusplus
}
#endif

#endif
")
endforeach()

if(NOT GMP)
  set(GMP libgmp-10)
endif()
string(REGEX MATCHALL "@[a-z]+ [A-Za-z0-9_]+( [A-Za-z0-9_]+)?@" rows "${rows}")
set(names "")
set(def "LIBRARY jex_q7t\nEXPORTS\n")
set(entries "")
foreach(row ${rows})
  string(REGEX MATCH "@([a-z]+) ([A-Za-z0-9_]+) ?([A-Za-z0-9_]*)@" row "${row}")
  set(name "${CMAKE_MATCH_2}")
  list(APPEND names "${name}")
  string(APPEND entries "JEX_ENTRY(${name})\n")
  if(CMAKE_MATCH_1 STREQUAL "forward")
    string(APPEND def "  ${name} = jex_core.${name}\n")
  elseif(CMAKE_MATCH_1 STREQUAL "jump")
    string(APPEND def "  ${name} = ${GMP}.${CMAKE_MATCH_3}\n")
  else()
    string(APPEND def "  ${name}\n")
  endif()
endforeach()
set(unique ${names})
list(REMOVE_DUPLICATES unique)
if(NOT unique STREQUAL names)
  message(FATAL_ERROR "An export is listed twice.")
endif()
list(JOIN names ";\n    " map)

write("${OUT}/exports/jex_q7t.map" "{\n  global:\n    ${map};\n  local: *;\n};\n")
write("${OUT}/exports/jex_q7t.def" "${def}")
write("${OUT}/include/jex/export_names.inc" "${entries}")
write("${OUT}/include/jex/exports.h" "/**
 * @file exports.h
 * @brief The exports of the kernel module. Made from the export lists; do not edit.
 */
#ifndef JEX_EXPORTS_H
#define JEX_EXPORTS_H

${headers}
#endif
")
file(TOUCH "${STAMP}")
