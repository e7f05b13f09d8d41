// Models for level 2: matrices as they are written on paper, and how storage holds them. Elements
// are small whole numbers (and whole imaginary parts), so that every sum is exact in every type and
// order: results are compared by equality.
#pragma once

#include "support/vectors.h"

#include <complex>
#include <limits>
#include <stdlib.h>
#include <string>
#include <vector>

namespace jex::test {

using Number = std::complex<double>;

template <class T>
T element(Number x) {
  if constexpr (is_complex<T>)
    return T{Real<T>(x.real()), Real<T>(x.imag())};
  else
    return T(x.real());
}
// What no routine may use, and none may change.
template <class T>
T hole() {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  return element<T>({nan, nan});
}

// A vector of numbers in memory: increments apart, holes between.
template <class T>
std::vector<T> in_memory(const std::vector<Number>& x, int inc) {
  const int n = int(x.size()), step = std::abs(inc);
  std::vector<T> memory(n ? (n - 1) * step + 1 : 0, hole<T>());
  for (int i = 0; i < n; ++i) memory[inc < 0 ? (n - 1 - i) * step : i * step] = element<T>(x[i]);
  return memory;
}

struct Matrix {
  int m, n;
  std::vector<Number> elements;
  Matrix(int m, int n) : m(m), n(n), elements(size_t(m) * n) {}
  Number& operator()(int i, int j) { return elements[size_t(i) * n + j]; }
  Number operator()(int i, int j) const { return elements[size_t(i) * n + j]; }

  // "N", "T" or "C".
  Matrix op(char trans) const {
    if (trans == 'N') return *this;
    Matrix result(n, m);
    for (int i = 0; i < m; ++i)
      for (int j = 0; j < n; ++j)
        result(j, i) = trans == 'C' ? std::conj((*this)(i, j)) : (*this)(i, j);
    return result;
  }
  std::vector<Number> times(const std::vector<Number>& x) const {
    std::vector<Number> y(m);
    for (int i = 0; i < m; ++i)
      for (int j = 0; j < n; ++j) y[i] += (*this)(i, j) * x[j];
    return y;
  }
};

enum class Part { all, upper, lower };
enum class Kind { full, band, packed };

// Where element (i, j) of an m x n matrix lies.
struct Layout {
  Kind kind;
  bool by_rows;
  Part part;
  int m, n, kl, ku, ld;

  bool holds(int i, int j) const {
    return (part != Part::upper || i <= j) && (part != Part::lower || i >= j) &&
           (kind != Kind::band || (i - j <= kl && j - i <= ku));
  }
  size_t size() const {
    return kind == Kind::packed ? size_t(n) * (n + 1) / 2 : size_t(ld) * (by_rows ? m : n);
  }
  // A packed triangle is its columns, or rows, one after the other: each from or to the diagonal.
  size_t place(int i, int j) const {
    const int outer = by_rows ? i : j, inner = by_rows ? j : i;
    if (kind == Kind::packed) {
      const bool from_diagonal = by_rows == (part == Part::upper);
      size_t before = 0;
      for (int other = 0; other < outer; ++other) before += from_diagonal ? n - other : other + 1;
      return before + inner - (from_diagonal ? outer : 0);
    }
    if (kind == Kind::band)
      return by_rows ? size_t(i) * ld + (kl + j - i) : size_t(j) * ld + (ku + i - j);
    return size_t(outer) * ld + inner;
  }
  template <class T>
  std::vector<T> in_memory(const Matrix& a) const {
    std::vector<T> memory(size(), hole<T>());
    for (int i = 0; i < m; ++i)
      for (int j = 0; j < n; ++j)
        if (holds(i, j)) memory[place(i, j)] = element<T>(a(i, j));
    return memory;
  }
};

// Equal numbers, holes where holes are; zeros of either sign are equal.
template <class T>
std::string difference(const std::vector<T>& actual, const std::vector<T>& expected) {
  for (size_t i = 0; i < expected.size() * Parts<T>::count; ++i) {
    const Real<T> ours = reinterpret_cast<const Real<T>*>(actual.data())[i];
    const Real<T> model = reinterpret_cast<const Real<T>*>(expected.data())[i];
    if (ours != model && !(std::isnan(ours) && std::isnan(model)))
      return "part " + std::to_string(i) + ": " + std::to_string(ours) + " for " +
             std::to_string(model);
  }
  return {};
}

// Random whole numbers.
template <class T>
Number whole(Random& random, int size = 3) {
  const double re = random.between(-size, size);
  return {re, is_complex<T> ? double(random.between(-size, size)) : 0};
}
template <class T>
std::vector<Number> wholes(Random& random, int n) {
  std::vector<Number> x(n);
  for (auto& number : x) number = whole<T>(random);
  return x;
}
// Zero outside of the layout.
template <class T>
Matrix random_matrix(Random& random, const Layout& layout) {
  Matrix a(layout.m, layout.n);
  for (int i = 0; i < a.m; ++i)
    for (int j = 0; j < a.n; ++j)
      if (layout.holds(i, j)) a(i, j) = whole<T>(random);
  return a;
}

}  // namespace jex::test
