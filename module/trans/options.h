// Option characters become values here, and nowhere else.
#pragma once

#include "serv/lsame.h"

namespace jex::trans {

// How a matrix is taken: as it is or transposed, plain or conjugated.
struct Op {
  bool known, transposes, conjugates;
};

inline Op op_of(char trans) {
  const char letter = serv::fold(trans);
  const bool conj_transpose = letter == 'C', conj = letter == 'R', transpose = letter == 'T';
  return {letter == 'N' || transpose || conj || conj_transpose, transpose || conj_transpose,
          conj || conj_transpose};
}

enum class Order { row_major, column_major, unknown };

inline Order order_of(char ordering) {
  const char letter = serv::fold(ordering);
  return letter == 'R' ? Order::row_major : letter == 'C' ? Order::column_major : Order::unknown;
}

// Lines and their length, as every kernel takes a matrix.
struct Lines {
  int m, n;
};

inline Lines lines_of(Order order, int rows, int cols) {
  return order == Order::column_major ? Lines{cols, rows} : Lines{rows, cols};
}

}  // namespace jex::trans
