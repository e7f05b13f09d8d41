// Rows sorted by column.
#pragma once

#include <jex/types.h>

namespace jex::spblas::util {

// Insertion: an entry moves left while the one before it has a greater column, so equal columns
// keep their order.
template <class T>
void sort_entries(int count, jex_int* columns, T* values) {
  for (int k = 1; k < count; ++k) {
    const jex_int column = columns[k];
    if (columns[k - 1] <= column) continue;
    const T value = values[k];
    int to = k;
    do {
      columns[to] = columns[to - 1];
      values[to] = values[to - 1];
    } while (--to > 0 && columns[to - 1] > column);
    columns[to] = column;
    values[to] = value;
  }
}

// Rows first .. last, which stand at the places rows[i] .. rows[i + 1] - 1, all counted from 1.
template <class T>
void sort_rows(int first, int last, const jex_int* rows, jex_int* columns, T* values) {
  for (int i = first - 1; i < last; ++i) {
    const int begin = rows[i] - 1;
    sort_entries(rows[i + 1] - rows[i], columns + begin, values + begin);
  }
}

}  // namespace jex::spblas::util
