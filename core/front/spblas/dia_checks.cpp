#include "front/spblas/dia_checks.h"

#include <algorithm>

namespace jex::front {

DiaParts dia_parts(const Operation& o) {
  switch (o.kind) {
    case 'g':
    case 't':
      if (o.transposed()) return {0, o.op, false, true};
      return {o.op, 0, false, true};
    case 's':
      return {'n', 't', false, o.op == 'n'};
    case 'h':
      return {'n', 'c', false, o.op == 'n'};
    case 'a':
      return {'n', 't', true, o.op == 'n'};
    default:
      return {0, 0, false, true};
  }
}

jex_int check_distances(const jex_dia& a, const Operation& operation) {
  const jex_int* const end = a.distances + a.count;
  if (operation.kind == 't' && std::adjacent_find(a.distances, end, [](jex_int d, jex_int next) {
                                 return d >= next;
                               }) != end)
    return JEX_SPARSE_UNSORTED_DISTANCES;
  if (operation.diag == 'n' && a.m > 0 && std::find(a.distances, end, 0) == end)
    return JEX_SPARSE_MISSING_DIAGONAL;
  return JEX_SPARSE_OK;
}

}  // namespace jex::front
