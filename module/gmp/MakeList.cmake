# Writes the export list of the GNU MP entries, and the names for jex/gmp.h, from what the installed
# header declares and the installed library exports. Arguments: CXX (compiler), NM, INCLUDE (folder
# of gmp.h), LIBRARY, FORWARDS (a list whose JEX_FORWARD rows are not repeated here), OUT (folder of
# the list), NAMES (the names' header), WORK (folder for intermediate files).

cmake_minimum_required(VERSION 3.22)

# Every declaration of the header, streams and va_list included, one to a line.
file(WRITE "${WORK}/gmp_declarations.c" "#include <stdarg.h>\n#include <stdio.h>\n#include <gmp.h>\n")
execute_process(
  COMMAND "${CXX}" -m32 -E -P -x c -U__declspec "-D__declspec(word)=" "-I${INCLUDE}" "${WORK}/gmp_declarations.c"
  OUTPUT_VARIABLE text RESULT_VARIABLE status)
# An import library of Windows has no dynamic symbols, and C names have an underscore before them.
set(dynamic -D)
if(LIBRARY MATCHES "\\.a$")
  set(dynamic "")
endif()
execute_process(COMMAND "${NM}" ${dynamic} --defined-only "${LIBRARY}"
  OUTPUT_VARIABLE symbols RESULT_VARIABLE nm_status)
if(NOT status EQUAL 0 OR NOT nm_status EQUAL 0)
  message(FATAL_ERROR "gmp.h (${INCLUDE}) or ${LIBRARY} cannot be read.")
endif()
string(REGEX MATCHALL " [TWi] _?__gmp[zn]?_[a-z0-9_]+" exported "${symbols}")
list(TRANSFORM exported REPLACE " [TWi] _*" "__")

# The five that the core serves have rows of their own.
file(READ "${FORWARDS}" forwards)
string(REGEX MATCHALL "jex_gmp___gmp[a-z0-9_]+" forwarded "${forwards}")
list(TRANSFORM forwarded REPLACE "^jex_gmp_" "")

# The library's types by the plain C types behind them: callers of the table need no gmp.h.
set(mpz_ptr "void *")
set(mpz_srcptr "const void *")
set(mpq_srcptr "const void *")
set(mpf_srcptr "const void *")
set(gmp_randstate_t "void *")
set(gmp_randalg_t "int")
set(mp_ptr "unsigned long *")
set(mp_srcptr "const unsigned long *")
set(mp_limb_t "unsigned long")
set(mp_limb_signed_t "long")
set(mp_bitcnt_t "unsigned long")
set(mp_size_t "long")
set(va_list "__builtin_va_list")
set(types mpz_srcptr mpq_srcptr mpf_srcptr mpz_ptr gmp_randstate_t gmp_randalg_t mp_srcptr mp_ptr
    mp_limb_t mp_limb_signed_t mp_bitcnt_t mp_size_t va_list)

set(rows "")
set(typed "")
set(own_names "")
set(listed "")
string(REPLACE "[" "(" text "${text}")
string(REPLACE "]" ")" text "${text}")
string(REGEX REPLACE "[\r\n]+" " " text "${text}")
string(REGEX REPLACE "[{};]" ";" text "${text}")
foreach(statement IN LISTS text)
  string(REGEX REPLACE "__attribute__ *\\(\\(.*" "" statement "${statement}")
  if(NOT statement MATCHES "^ *([a-z][a-z_ ]*[ *]+)(__gmp[zn]?_[a-z0-9_]+) \\((.*)\\) *$")
    continue()
  endif()
  set(result "${CMAKE_MATCH_1}")
  set(name "${CMAKE_MATCH_2}")
  set(params "${CMAKE_MATCH_3}")
  if(result MATCHES "return|typedef" OR NOT name IN_LIST exported OR name IN_LIST listed)
    continue()
  endif()
  list(APPEND listed "${name}")
  string(APPEND typed "JEX_GMP_TYPED(${name})\n")
  string(APPEND own_names "#define ${name} jex_gmp_typed_${name}\n")
  if(name IN_LIST forwarded)
    continue()
  endif()
  string(REGEX REPLACE "extern|__inline__|__inline" "" result "${result}")
  string(REGEX REPLACE "(__gmp_randstate_struct|FILE) \\*" "void *" params "${params}")
  foreach(type ${types})
    string(REGEX REPLACE "(^|[^a-z_])${type}($|[^a-z_])" "\\1${${type}}\\2" result "${result}")
    foreach(twice 1 2) # neighbours share the character between them
      string(REGEX REPLACE "(^|[^a-z_])${type}($|[^a-z_])" "\\1${${type}}\\2" params "${params}")
    endforeach()
  endforeach()
  string(REGEX REPLACE " +" " " params "${params}")
  string(STRIP "${result}" result)
  string(APPEND rows "JEX_GMP(${result}, ${name}, (${params}))\n")
endforeach()
list(LENGTH listed count)
if(count LESS 200)
  message(FATAL_ERROR "Only ${count} functions of GNU MP were understood in gmp.h.")
endif()

file(WRITE "${OUT}/exports.inc" "// GNU MP's functions, made from gmp.h and the library.

/**
 * @name GNU MP
 *
 * The integer and low-level functions of GNU MP with its random states, formatted input and output
 * and allocation hooks, each a jump to the library's own. Integers and random states are passed by
 * address (mpz_t and gmp_randstate_t do so by themselves). jex/gmp.h has them with their types and
 * names.
 * @{
 */
#define JEX_GMP(result, name, params) JEX_JUMP(result, jex_gmp_##name, params, name)
${rows}
/** @} */
")
file(WRITE "${NAMES}" "/**
 * @file gmp_names.h
 * @brief The functions of GNU MP that the module has, made from gmp.h and the library.
 */
${typed}
${own_names}")
