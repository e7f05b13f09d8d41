/**
 * @file xblas.hpp
 * @brief Matrix-vector products whose internal precision is a policy of the call.
 *
 * y := alpha op(A) x + beta y with `jex::extra` sums in double length, with `jex::native` in
 * double:
 *
 *     jex::multiply(jex::extra, -1.0, jex::Op::none, a, x, 1.0, r);   // r := r - A x
 *
 * Element types are float, double and std::complex of both. Vectors that do not fit op(A), and
 * whatever the functions of jex/xblas.h refuse, throw std::invalid_argument, as do the operations
 * of which no product exists: conj, and conj_transpose of a complex row-major matrix.
 */
#ifndef JEX_XBLAS_HPP
#define JEX_XBLAS_HPP

#include <jex/views.hpp>
#include <jex/xblas.h>

namespace jex {

/** @brief The internal precision of a product. */
template <jex_int prec>
struct Precision {
  static constexpr jex_int code = prec;
};
inline constexpr Precision<JEX_XBLAS_NATIVE> native;
inline constexpr Precision<JEX_XBLAS_EXTRA> extra;

namespace detail {

template <class T>
struct Products;
#define JEX_PRODUCTS_OF(t, T)                       \
  template <>                                       \
  struct Products<T> {                              \
    static constexpr auto gemv = jex_##t##gemv_x;   \
    static constexpr auto gemv2 = jex_##t##gemv2_x; \
  };
JEX_PRODUCTS_OF(s, float)
JEX_PRODUCTS_OF(d, double)
JEX_PRODUCTS_OF(c, std::complex<float>)
JEX_PRODUCTS_OF(z, std::complex<double>)
#undef JEX_PRODUCTS_OF

/** The code of op(A) for the matrix that columns show: a row-major one is its transpose. */
template <class T>
jex_int code(Op op, Layout layout) {
  if constexpr (!is_complex<T>) {
    if (op == Op::conj) op = Op::none;
    if (op == Op::conj_transpose) op = Op::transpose;
  }
  const bool row_major = layout == Layout::row_major;
  require(op != Op::conj && !(row_major && op == Op::conj_transpose), "jex::multiply",
          "no product with the conjugate of a matrix");
  if (op == Op::conj_transpose) return JEX_XBLAS_CONJ_TRANS;
  return (op == Op::transpose) != row_major ? JEX_XBLAS_TRANS : JEX_XBLAS_NO_TRANS;
}

/** Checks what the views of a product have in common; call gets op, m, n as columns show A. */
template <class T, class A, class X, class Call>
void multiply(Op op, const A& a, const X& x, const Vector<T>& y, Call call) {
  const bool turns = op == Op::transpose || op == Op::conj_transpose;
  require(x.size == (turns ? a.rows : a.cols) && y.size == (turns ? a.cols : a.rows),
          "jex::multiply", "the vectors do not fit op(A)");
  const bool row_major = a.layout == Layout::row_major;
  require(call(code<T>(op, a.layout), row_major ? a.cols : a.rows, row_major ? a.rows : a.cols),
          "jex::multiply");
}

}  // namespace detail

/** @brief y := alpha op(A) x + beta y in the given precision. */
template <jex_int prec, class T, class A, class X>
void multiply(Precision<prec>, T alpha, Op op, Matrix<A> a, Vector<X> x, T beta, Vector<T> y) {
  using namespace detail;
  detail::multiply(op, a, x, y, [&](jex_int trans, jex_int m, jex_int n) {
    return Products<T>::gemv(trans, m, n, c_value(alpha), c_array(a.data), a.ld, c_array(x.data),
                             x.inc, c_value(beta), c_array(y.data), y.inc, prec);
  });
}

/** @brief y := alpha op(A) (head + tail) + beta y; head and tail walk alike. */
template <jex_int prec, class T, class A, class X>
void multiply(Precision<prec>, T alpha, Op op, Matrix<A> a, Vector<X> head, Vector<X> tail, T beta,
              Vector<T> y) {
  using namespace detail;
  require(head.size == tail.size && head.inc == tail.inc, "jex::multiply",
          "head and tail differ in size or increment");
  detail::multiply(op, a, head, y, [&](jex_int trans, jex_int m, jex_int n) {
    return Products<T>::gemv2(trans, m, n, c_value(alpha), c_array(a.data), a.ld,
                              c_array(head.data), c_array(tail.data), head.inc, c_value(beta),
                              c_array(y.data), y.inc, prec);
  });
}

}  // namespace jex

#endif
