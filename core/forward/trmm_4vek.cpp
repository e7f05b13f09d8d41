// Triangular matrix product on four vectors of B at a time.
//
// Side R is side L on the transposes: a row of B, alpha b op(A), is the column alpha op(A)' b'. So
// one kernel serves both; it sees op(A) as a square of order k and B as vectors of k elements. Four
// vectors share each element of A that is loaded.

#include <jex/core_imports.h>
#include <jex/exports.h>

#include <cstddef>

namespace {

enum class Along { columns, rows };  // which way a vector of B lies

// Element i of vector v of a group of vectors.
template <class T, Along along>
struct Vectors {
  T* first;
  ptrdiff_t ldb;

  T& operator()(ptrdiff_t i, int v) const {
    return along == Along::columns ? first[i + v * ldb] : first[i * ldb + v];
  }
};

template <class T>
struct Triangle {
  const T* a;
  ptrdiff_t lda, order;
  bool upper, transposed, unit;

  const T* column(ptrdiff_t j) const { return a + j * lda; }
  T diagonal(ptrdiff_t j) const { return unit ? T(1) : column(j)[j]; }
  // Rows of column j beside the diagonal.
  ptrdiff_t begin(ptrdiff_t j) const { return upper ? 0 : j + 1; }
  ptrdiff_t end(ptrdiff_t j) const { return upper ? j : order; }
};

// b := alpha A b: column j of A goes, times b_j, to the elements whose own turn is over. A is upper
// and j ascends, or lower and j descends.
template <int count, class T, class V>
inline void multiply(const Triangle<T>& t, T alpha, V b, ptrdiff_t j) {
  const T* column = t.column(j);
  T x[count];
  for (int v = 0; v < count; ++v) x[v] = alpha * b(j, v);
  for (ptrdiff_t i = t.begin(j); i < t.end(j); ++i)
    for (int v = 0; v < count; ++v) b(i, v) += x[v] * column[i];
  for (int v = 0; v < count; ++v) b(j, v) = x[v] * t.diagonal(j);
}

// b := alpha A' b: element j becomes the product with column j, which reads only elements whose
// turn is still to come. A is upper and j descends, or lower and j ascends.
template <int count, class T, class V>
inline void multiply_transposed(const Triangle<T>& t, T alpha, V b, ptrdiff_t j) {
  const T* column = t.column(j);
  T sum[count];
  for (int v = 0; v < count; ++v) sum[v] = t.diagonal(j) * b(j, v);
  for (ptrdiff_t i = t.begin(j); i < t.end(j); ++i)
    for (int v = 0; v < count; ++v) sum[v] += column[i] * b(i, v);
  for (int v = 0; v < count; ++v) b(j, v) = alpha * sum[v];
}

template <int count, class T, class V>
void multiply_group(const Triangle<T>& t, T alpha, V b) {
  const bool ascending = t.upper != t.transposed;
  for (ptrdiff_t step = 0; step < t.order; ++step) {
    const ptrdiff_t j = ascending ? step : t.order - 1 - step;
    if (t.transposed)
      multiply_transposed<count>(t, alpha, b, j);
    else
      multiply<count>(t, alpha, b, j);
  }
}

template <Along along, class T>
void multiply_all(const Triangle<T>& t, T alpha, T* b, ptrdiff_t ldb, ptrdiff_t vectors) {
  const ptrdiff_t next = along == Along::columns ? ldb : 1;
  ptrdiff_t v = 0;
  for (; v + 4 <= vectors; v += 4)
    multiply_group<4>(t, alpha, Vectors<T, along>{b + v * next, ldb});
  for (; v < vectors; ++v) multiply_group<1>(t, alpha, Vectors<T, along>{b + v * next, ldb});
}

bool is(const char* word, char letter) { return (*word & ~('a' - 'A')) == letter; }

template <class T>
void trmm(const char* side, const char* uplo, const char* transa, const char* diag, ptrdiff_t m,
          ptrdiff_t n, T alpha, const T* a, ptrdiff_t lda, T* b, ptrdiff_t ldb) {
  if (m < 1 || n < 1) return;
  if (alpha == T(0)) {
    for (ptrdiff_t j = 0; j < n; ++j)
      for (ptrdiff_t i = 0; i < m; ++i) b[i + j * ldb] = T(0);
    return;
  }
  const bool left = is(side, 'L'), transposed = !is(transa, 'N');
  const Triangle<T> t{
      a, lda, left ? m : n, is(uplo, 'U'), left ? transposed : !transposed, is(diag, 'U')};
  if (left)
    multiply_all<Along::columns>(t, alpha, b, ldb, n);
  else
    multiply_all<Along::rows>(t, alpha, b, ldb, m);
}

}  // namespace

#define TRMM_4VEK(name, T)                                                                      \
  void name(const char* side, const char* uplo, const char* transa, const char* diag,           \
            const jex_int* m, const jex_int* n, const T* alpha, const T* a, const jex_int* lda, \
            T* b, const jex_int* ldb) {                                                         \
    trmm(side, uplo, transa, diag, *m, *n, *alpha, a, *lda, b, *ldb);                           \
  }
TRMM_4VEK(jex_blas_xdtrmm_4vek, double)
TRMM_4VEK(jex_blas_xstrmm_4vek, float)
