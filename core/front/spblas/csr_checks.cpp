#include "front/spblas/csr_checks.h"

namespace jex::front {

jex_int check_rows(const jex_csr& a, int base, const Operation& operation, bool solve) {
  const bool sorted = solve && operation.kind == 't';
  const bool needs_diagonal = solve && operation.diag == 'n';
  for (jex_int i = 0; i < a.m; ++i) {
    if (a.row_begin[i] < a.row_begin[0] || a.row_end[i] < a.row_begin[i])
      return JEX_SPARSE_WRONG_ROW_POINTER;
    const jex_int first = a.row_begin[i] - a.row_begin[0], last = a.row_end[i] - a.row_begin[0];
    bool has_diagonal = false;
    for (jex_int k = first; k < last; ++k) {
      const jex_int column = a.columns[k] - base;
      if (column < 0 || column >= a.n) return JEX_SPARSE_WRONG_COLUMN;
      if (sorted && k > first && a.columns[k] <= a.columns[k - 1]) return JEX_SPARSE_UNSORTED_ROW;
      has_diagonal = has_diagonal || column == i;
    }
    if (needs_diagonal && !has_diagonal) return JEX_SPARSE_MISSING_DIAGONAL;
  }
  return JEX_SPARSE_OK;
}

}  // namespace jex::front
