// Peer library: matrix-vector products summed in double length by plain loops, as one writes them
// from the published exact products and sums. Unit strides only.
#include <cstdint>
#include <vector>

namespace {

using Int = int32_t;

struct DoubleDouble {
  double head = 0, tail = 0;
};

// sum += a b
inline void add_product(double& head, double& tail, double a, double b) {
  const double split = 134217729;
  const double ca = a * split, ah = ca - (ca - a), al = a - ah;
  const double cb = b * split, bh = cb - (cb - b), bl = b - bh;
  const double p = a * b, e = ((ah * bh - p) + ah * bl + al * bh) + al * bl;
  const double s = head + p, c = s - head, r = (head - (s - c)) + (p - c);
  const double t = tail + e, d = t - tail, q = (tail - (t - d)) + (e - d);
  const double u = r + t, v = s + u, w = q + (u - (v - s));
  head = v + w;
  tail = w - (head - v);
}

double finished(double head, double tail, double alpha, double beta, double y) {
  DoubleDouble sum;
  add_product(sum.head, sum.tail, head, alpha);
  add_product(sum.head, sum.tail, tail, alpha);
  add_product(sum.head, sum.tail, beta, y);
  return sum.head + sum.tail;
}

// By columns: all sums at once, in arrays of heads and tails, which the compiler makes vectors of.
template <class T>
void product(Int m, Int n, T alpha, const T* a, Int lda, const T* x, T beta, T* y) {
  std::vector<double> heads(m), tails(m);
  double *const head = heads.data(), *const tail = tails.data();
  for (Int j = 0; j < n; ++j)
    for (Int i = 0; i < m; ++i) add_product(head[i], tail[i], a[i + j * lda], x[j]);
  for (Int i = 0; i < m; ++i) y[i] = T(finished(head[i], tail[i], alpha, beta, y[i]));
}

template <class T>
void transposed(Int m, Int n, T alpha, const T* a, Int lda, const T* x, T beta, T* y) {
  for (Int j = 0; j < n; ++j) {
    DoubleDouble sum;
    for (Int i = 0; i < m; ++i) add_product(sum.head, sum.tail, a[i + j * lda], x[i]);
    y[j] = T(finished(sum.head, sum.tail, alpha, beta, y[j]));
  }
}

}  // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))
#define ANY_TYPE(t, T)                                                                             \
  EXPORT void t##gemv_x_(const Int* trans, const Int* m, const Int* n, const T* alpha, const T* a, \
                         const Int* lda, const T* x, const Int*, const T* beta, T* y, const Int*,  \
                         const Int*) {                                                             \
    (*trans == 111 ? product<T> : transposed<T>)(*m, *n, *alpha, a, *lda, x, *beta, y);            \
  }
ANY_TYPE(s, float)
ANY_TYPE(d, double)
