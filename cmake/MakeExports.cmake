# Runs the preprocessor over the export lists and writes what the build needs of them.
# Arguments: CXX (compiler), LISTS, OUT (build folder), SOURCE (project folder).

# Each list by itself: the names of its macros are its own.
function(preprocess result)
  set(all "")
  foreach(list ${LISTS})
    execute_process(
      COMMAND "${CXX}" -m32 -E -P -x c++ -ffreestanding ${ARGN}
              -imacros "${SOURCE}/cmake/exports_rows.inc" "${list}"
      OUTPUT_VARIABLE text RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
      message(FATAL_ERROR "${list} does not preprocess.")
    endif()
    string(APPEND all "${text}\n")
  endforeach()
  set(${result} "${all}" PARENT_SCOPE)
endfunction()

preprocess(rows -DJEX_MAKE_NAMES)
preprocess(prototypes -C)

string(REGEX MATCHALL "@[a-z]+ [A-Za-z0-9_]+@" rows "${rows}")
set(names "")
set(def "LIBRARY jex_q7t\nEXPORTS\n")
set(entries "")
foreach(row ${rows})
  string(REGEX MATCH "@([a-z]+) ([A-Za-z0-9_]+)@" row "${row}")
  set(name "${CMAKE_MATCH_2}")
  list(APPEND names "${name}")
  string(APPEND entries "JEX_ENTRY(${name})\n")
  if(CMAKE_MATCH_1 STREQUAL "forward")
    string(APPEND def "  ${name} = jex_core.${name}\n")
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

file(WRITE "${OUT}/exports/jex_q7t.map" "{\n  global:\n    ${map};\n  local: *;\n};\n")
file(WRITE "${OUT}/exports/jex_q7t.def" "${def}")
file(WRITE "${OUT}/include/jex/export_names.inc" "${entries}")
file(WRITE "${OUT}/include/jex/exports.h" "/**
 * @file exports.h
 * @brief The exports of the kernel module. Made from the export lists; do not edit.
 */
#ifndef JEX_EXPORTS_H
#define JEX_EXPORTS_H

#include <jex/dft.h>

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
