/**
 * @file trans.hpp
 * @brief Scaled copy, transposition and addition of matrices; see jex/trans.h for the errors.
 *
 * Element types are float, double and std::complex of both. All matrices of a call have one layout.
 * Wrong shapes or layouts, and whatever the functions of jex/trans.h refuse, throw
 * std::invalid_argument; std::runtime_error says that there is no kernel module. Nothing is written
 * then.
 */
#ifndef JEX_TRANS_HPP
#define JEX_TRANS_HPP

#include <jex/trans.h>
#include <jex/views.hpp>

namespace jex {
namespace detail {

template <class T>
struct Trans;
#define JEX_TRANS_OF(t, T)                              \
  template <>                                           \
  struct Trans<T> {                                     \
    static constexpr auto imatcopy = jex_##t##imatcopy; \
    static constexpr auto omatcopy = jex_##t##omatcopy; \
    static constexpr auto omatadd = jex_##t##omatadd;   \
  };
JEX_TRANS_OF(s, float)
JEX_TRANS_OF(d, double)
JEX_TRANS_OF(c, std::complex<float>)
JEX_TRANS_OF(z, std::complex<double>)
#undef JEX_TRANS_OF

inline char letter(Layout layout) { return layout == Layout::row_major ? 'R' : 'C'; }
inline char letter(Op op) {
  return op == Op::none ? 'N' : op == Op::transpose ? 'T' : op == Op::conj ? 'R' : 'C';
}
inline bool turns(Op op) { return op == Op::transpose || op == Op::conj_transpose; }

/** Whether op(A) has the shape and the layout of B. */
template <class A, class B>
bool fits(Op op, const A& a, const B& b) {
  return a.layout == b.layout && (turns(op) ? a.cols : a.rows) == b.rows &&
         (turns(op) ? a.rows : a.cols) == b.cols;
}

}  // namespace detail

/** @brief B := alpha op(A). The arrays must not overlap. */
template <class T, class S>
requires std::is_same_v<std::remove_const_t<S>, T>
void copy(T alpha, Op op, Matrix<S> a, Matrix<T> b) {
  detail::require(detail::fits(op, a, b), "jex::copy", "B has not the shape and layout of op(A)");
  detail::require(
      detail::Trans<T>::omatcopy(detail::letter(a.layout), detail::letter(op), a.rows, a.cols,
                                 detail::c_value(alpha), detail::c_array(a.data), a.ld,
                                 detail::c_array(b.data), b.ld),
      "jex::copy");
}

/** @brief B := alpha A. */
template <class T, class S>
void copy(T alpha, Matrix<S> a, Matrix<T> b) {
  copy(alpha, Op::none, a, b);
}

/** @brief B := alpha A transposed. */
template <class T, class S>
void transpose(T alpha, Matrix<S> a, Matrix<T> b) {
  copy(alpha, Op::transpose, a, b);
}

/**
 * @brief A := alpha op(A) in place, without scratch memory. Lines of the result follow each other
 *        unless A is square and keeps its ld.
 * @return the view of the result
 */
template <class T>
Matrix<T> transpose_in_place(T alpha, Matrix<T> a, Op op = Op::transpose) {
  detail::require(detail::turns(op), "jex::transpose_in_place", "op does not transpose");
  const auto packed = matrix(a.data, a.cols, a.rows, a.layout);
  Matrix<T> result = packed;
  if (a.rows == a.cols) result.ld = a.ld;
  detail::require(
      detail::Trans<T>::imatcopy(detail::letter(a.layout), detail::letter(op), a.rows, a.cols,
                                 detail::c_value(alpha), detail::c_array(a.data), a.ld, result.ld),
      "jex::transpose_in_place");
  return result;
}

/** @brief C := alpha op(A) + beta op(B). C must not overlap A or B. */
template <class T, class A, class B>
void add(T alpha, Op opa, Matrix<A> a, T beta, Op opb, Matrix<B> b, Matrix<T> c) {
  detail::require(detail::fits(opa, a, c) && detail::fits(opb, b, c), "jex::add",
                  "op(A), op(B) and C differ in shape or layout");
  detail::require(
      detail::Trans<T>::omatadd(detail::letter(c.layout), detail::letter(opa), detail::letter(opb),
                                c.rows, c.cols, detail::c_value(alpha), detail::c_array(a.data),
                                a.ld, detail::c_value(beta), detail::c_array(b.data), b.ld,
                                detail::c_array(c.data), c.ld),
      "jex::add");
}

}  // namespace jex

#endif
