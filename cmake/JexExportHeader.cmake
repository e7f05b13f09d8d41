# jex_header_of(<variable> <list>)
#
# The header below include/jex/exports that is made from a list: blas/level1/exports.inc makes
# blas/level1.h, blas/level2/general_exports.inc makes blas/level2/general.h.
function(jex_header_of result list)
  string(REGEX REPLACE "^.*/(module|exports)/" "" name "${list}")
  string(REGEX REPLACE "[/_]exports[.]inc$" ".h" name "${name}")
  set(${result} "${name}" PARENT_SCOPE)
endfunction()
