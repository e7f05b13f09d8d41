// Checks of the matrix copies, and the module's entries behind them.

#include "front/blas/checks.h"
#include "front/checked.h"

#include <jex/trans.h>

#include <stdint.h>
#include <string.h>
#include <utility>

namespace jex::front {
namespace {

bool wrong_letter(char letter, const char* letters) {
  letter = option(&letter);
  return !letter || !strchr(letters, letter);
}

bool transposes(char trans) { return option(&trans) == 'T' || option(&trans) == 'C'; }

// A matrix of one call: lines of elements in the order of the call.
struct Shape {
  int64_t lines, length;

  Shape(char ordering, jex_int rows, jex_int cols)
      : lines(option(&ordering) == 'C' ? cols : rows),
        length(option(&ordering) == 'C' ? rows : cols) {}
  Shape op(char trans) const {
    Shape shape = *this;
    if (transposes(trans)) std::swap(shape.lines, shape.length);
    return shape;
  }
  bool empty() const { return lines < 1 || length < 1; }
};

// The leading dimension spans a line, and the last element lies within the addresses of a signed
// 32-bit offset.
bool wrong_ld(Shape shape, jex_int ld, int64_t stride, int64_t bytes) {
  const int64_t span = shape.length < 1 ? 0 : (shape.length - 1) * stride + 1;
  if (ld < std::max<int64_t>(1, span)) return true;
  return too_large(shape.lines, shape.length, ld, stride, bytes);
}

const char orderings[] = "RC", letters[] = "NTCR";

// The arguments that all four begin with: ordering, letters, extents.
jex_int wrong_start(char ordering, char trans, jex_int rows, jex_int cols) {
  return wrong_letter(ordering, orderings) ? 1
         : wrong_letter(trans, letters)    ? 2
         : rows < 0                        ? 3
         : cols < 0                        ? 4
                                           : 0;
}

jex_int wrong_imatcopy(char ordering, char trans, jex_int rows, jex_int cols, const void* ab,
                       jex_int lda, jex_int ldb, int64_t bytes) {
  if (const jex_int start = wrong_start(ordering, trans, rows, cols)) return start;
  const Shape a(ordering, rows, cols), b = a.op(trans);
  return !ab && !a.empty()            ? 6
         : wrong_ld(a, lda, 1, bytes) ? 7
         : wrong_ld(b, ldb, 1, bytes) ? 8
                                      : 0;
}

// omatcopy has no strides, and so ldb where omatcopy2 has stridea.
jex_int wrong_omatcopy(char ordering, char trans, jex_int rows, jex_int cols, const void* a,
                       jex_int lda, jex_int stridea, const void* b, jex_int ldb, jex_int strideb,
                       int64_t bytes, bool strides) {
  if (const jex_int start = wrong_start(ordering, trans, rows, cols)) return start;
  const Shape from(ordering, rows, cols), to = from.op(trans);
  if (!a && !from.empty()) return 6;
  if (wrong_ld(from, lda, std::max(stridea, 1), bytes)) return 7;
  if (stridea < 1) return 8;
  if (!b && !to.empty()) return 8 + strides;
  if (wrong_ld(to, ldb, std::max(strideb, 1), bytes)) return 9 + strides;
  return strideb < 1 ? 11 : 0;
}

jex_int wrong_omatadd(char ordering, char transa, char transb, jex_int rows, jex_int cols,
                      const void* a, jex_int lda, const void* b, jex_int ldb, const void* c,
                      jex_int ldc, int64_t bytes) {
  if (wrong_letter(ordering, orderings)) return 1;
  if (wrong_letter(transa, letters)) return 2;
  if (wrong_letter(transb, letters)) return 3;
  if (rows < 0) return 4;
  if (cols < 0) return 5;
  const Shape sum(ordering, rows, cols);
  return !a && !sum.empty()                        ? 7
         : wrong_ld(sum.op(transa), lda, 1, bytes) ? 8
         : !b && !sum.empty()                      ? 10
         : wrong_ld(sum.op(transb), ldb, 1, bytes) ? 11
         : !c && !sum.empty()                      ? 12
         : wrong_ld(sum, ldc, 1, bytes)            ? 13
                                                   : 0;
}

}  // namespace
}  // namespace jex::front

using namespace jex::front;

// The module counts the extents of a sum by its sources where both are transposed.
#define MATRIX_COPY(t, T)                                                                          \
  jex_int jex_##t##imatcopy(char ordering, char trans, jex_int rows, jex_int cols, T alpha, T* ab, \
                            jex_int lda, jex_int ldb) {                                            \
    return checked(wrong_imatcopy(ordering, trans, rows, cols, ab, lda, ldb, sizeof(T)),           \
                   [&](const jex::Module& module) {                                                \
                     module.jex_trans_jex_##t##imatcopy(ordering, trans, rows, cols, alpha, ab,    \
                                                        lda, ldb);                                 \
                   });                                                                             \
  }                                                                                                \
  jex_int jex_##t##omatcopy(char ordering, char trans, jex_int rows, jex_int cols, T alpha,        \
                            const T* a, jex_int lda, T* b, jex_int ldb) {                          \
    return checked(                                                                                \
        wrong_omatcopy(ordering, trans, rows, cols, a, lda, 1, b, ldb, 1, sizeof(T), false),       \
        [&](const jex::Module& module) {                                                           \
          module.jex_trans_jex_##t##omatcopy(ordering, trans, rows, cols, alpha, a, lda, b, ldb);  \
        });                                                                                        \
  }                                                                                                \
  jex_int jex_##t##omatcopy2(char ordering, char trans, jex_int rows, jex_int cols, T alpha,       \
                             const T* a, jex_int lda, jex_int stridea, T* b, jex_int ldb,          \
                             jex_int strideb) {                                                    \
    return checked(wrong_omatcopy(ordering, trans, rows, cols, a, lda, stridea, b, ldb, strideb,   \
                                  sizeof(T), true),                                                \
                   [&](const jex::Module& module) {                                                \
                     module.jex_trans_jex_##t##omatcopy2(ordering, trans, rows, cols, alpha, a,    \
                                                         lda, stridea, b, ldb, strideb);           \
                   });                                                                             \
  }                                                                                                \
  jex_int jex_##t##omatadd(char ordering, char transa, char transb, jex_int rows, jex_int cols,    \
                           T alpha, const T* a, jex_int lda, T beta, const T* b, jex_int ldb,      \
                           T* c, jex_int ldc) {                                                    \
    return checked(                                                                                \
        wrong_omatadd(ordering, transa, transb, rows, cols, a, lda, b, ldb, c, ldc, sizeof(T)),    \
        [&](const jex::Module& module) {                                                           \
          const bool both = transposes(transa) && transposes(transb);                              \
          module.jex_trans_jex_##t##omatadd(ordering, transa, transb, both ? cols : rows,          \
                                            both ? rows : cols, alpha, a, lda, beta, b, ldb, c,    \
                                            ldc);                                                  \
        });                                                                                        \
  }
MATRIX_COPY(s, float)
MATRIX_COPY(d, double)
MATRIX_COPY(c, jex_scomplex)
MATRIX_COPY(z, jex_dcomplex)
