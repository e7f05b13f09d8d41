#include "front/spblas/coo_checks.h"

#include <algorithm>
#include <stdlib.h>

namespace jex::front {

CooOperation coo_operation(const Operation& operation) {
  CooOperation o = {operation, false};
  o.negative = false;
  const bool has_transpose = o.kind == 'g' || o.kind == 't' || o.kind == 'h';
  if (o.transposed() && has_transpose) {
    o.exchanged = true;
    if (o.kind != 'g') o.uplo = o.uplo == 'l' ? 'u' : 'l';
  }
  // What a conjugate transpose leaves where the transpose is the matrix, or minus it.
  if (o.op == 'c') o.negative = o.kind == 'a';
  o.op = o.op == 'c' ? 's' : 'n';
  return o;
}

jex_int check_entries(const jex_coo& a, int base, const Operation& operation, bool solve) {
  for (jex_int k = 0; k < a.count; ++k) {
    const jex_int i = a.rows[k], j = a.columns[k];
    if (i < base || i - base >= a.m) return JEX_SPARSE_WRONG_ROW;
    if (j < base || j - base >= a.n) return JEX_SPARSE_WRONG_COLUMN;
  }
  if (!solve || operation.diag == 'u' || a.m == 0) return JEX_SPARSE_OK;
  char* const found = static_cast<char*>(calloc(a.m, 1));
  if (!found) return JEX_SPARSE_NO_MEMORY;
  for (jex_int k = 0; k < a.count; ++k)
    if (a.rows[k] == a.columns[k]) found[a.rows[k] - base] = 1;
  const bool is_whole = std::all_of(found, found + a.m, [](char c) { return c; });
  free(found);
  return is_whole ? JEX_SPARSE_OK : JEX_SPARSE_MISSING_DIAGONAL;
}

bool ascends(const jex_int* numbers, jex_int count) {
  return std::is_sorted(numbers, numbers + count);
}

}  // namespace jex::front
