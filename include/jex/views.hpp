/**
 * @file views.hpp
 * @brief Matrices and vectors of a C++ program as the core's functions take them. Nothing is owned.
 */
#ifndef JEX_VIEWS_HPP
#define JEX_VIEWS_HPP

#include <jex/types.h>

#include <complex>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace jex {

/** @brief Which lines of a matrix are stored one after the other. */
enum class Layout { row_major, column_major };

/** @brief How a matrix is taken. */
enum class Op { none, transpose, conj_transpose, conj };

/** @brief A rows x cols matrix, its lines ld elements apart. */
template <class T>
struct Matrix {
  T* data;
  jex_int rows, cols;
  Layout layout;
  jex_int ld;

  T& operator()(jex_int i, jex_int j) const {
    return layout == Layout::row_major ? data[std::ptrdiff_t(i) * ld + j]
                                       : data[std::ptrdiff_t(j) * ld + i];
  }
  operator Matrix<const T>() const { return {data, rows, cols, layout, ld}; }
};

/** @brief A view of an array; without ld its lines follow each other. */
template <class T>
Matrix<T> matrix(T* data, jex_int rows, jex_int cols, Layout layout, jex_int ld = 0) {
  const jex_int length = layout == Layout::row_major ? cols : rows;
  return {data, rows, cols, layout, ld ? ld : length > 1 ? length : 1};
}

/** @brief size elements; element i is at data[i * inc], or from the far end where inc is negative.
 */
template <class T>
struct Vector {
  T* data;
  jex_int size;
  jex_int inc = 1;

  operator Vector<const T>() const { return {data, size, inc}; }
};

template <class T>
Vector<T> vector(T* data, jex_int size, jex_int inc = 1) {
  return {data, size, inc};
}

namespace detail {

/** An argument that a function of the core did not take. */
inline void require(jex_int answer, const char* function) {
  if (answer > 0)
    throw std::invalid_argument(std::string(function) + ": argument " + std::to_string(answer) +
                                " is wrong");
  if (answer < 0) throw std::runtime_error(std::string(function) + ": no kernel module");
}

inline void require(bool fits, const char* function, const char* what) {
  if (!fits) throw std::invalid_argument(std::string(function) + ": " + what);
}

/** The element types of the C functions. */
template <class T>
struct Element {
  using C = T;
};
template <>
struct Element<std::complex<float>> {
  using C = jex_scomplex;
};
template <>
struct Element<std::complex<double>> {
  using C = jex_dcomplex;
};
template <class T>
using CElement = typename Element<std::remove_const_t<T>>::C;

template <class T>
inline constexpr bool is_complex = !std::is_arithmetic_v<std::remove_const_t<T>>;

template <class T>
CElement<T> c_value(T a) {
  if constexpr (is_complex<T>)
    return {a.real(), a.imag()};
  else
    return a;
}
template <class T>
const CElement<T>* c_array(const T* p) {
  return reinterpret_cast<const CElement<T>*>(p);
}
template <class T>
CElement<T>* c_array(T* p) {
  return reinterpret_cast<CElement<T>*>(p);
}

}  // namespace detail
}  // namespace jex

#endif
