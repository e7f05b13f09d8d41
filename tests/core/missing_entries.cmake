# Writes the definition file of a core that serves a part only: what a DLL imports from jex_core.dll
# and SOURCE does not define, each as an alias of one routine. Arguments: OBJDUMP, DLL, SOURCE, ALIAS,
# OUT.
execute_process(COMMAND "${OBJDUMP}" -p "${DLL}" OUTPUT_VARIABLE text RESULT_VARIABLE status)
string(REGEX MATCH "DLL Name: jex_core\\.dll.*" text "${text}")
if(NOT status EQUAL 0 OR text STREQUAL "")
  message(FATAL_ERROR "${DLL} imports nothing from jex_core.dll.")
endif()
string(REGEX REPLACE "There is an export table.*" "" text "${text}")
file(READ "${SOURCE}" source)
string(REGEX MATCHALL " jex_[a-z0-9_]+" names "${text}")
set(def "EXPORTS\n")
foreach(name ${names})
  string(STRIP "${name}" name)
  if(NOT source MATCHES "[ *]${name}\\(")
    string(APPEND def "  ${name} = ${ALIAS}\n")
  endif()
endforeach()
file(WRITE "${OUT}" "${def}")
