// Matrices of the level-3 tests: what a call must not read is NaN, what it must not write keeps its
// bits, and both ends touch unreadable pages in turn.
#pragma once

#include "blas/level1/arithmetic.h"
#include "support/vectors.h"

#include <jex/exports.h>

#include <gtest/gtest.h>

#include <complex>
#include <functional>

namespace jex::test {

using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
using Wide = std::complex<double>;

template <class T>
Wide wide(T a) {
  if constexpr (is_complex<T>)
    return {a.re, a.im};
  else
    return a;
}

// Every element; one triangle with its diagonal; one without.
enum class Shape { whole, upper, lower, strictly_upper, strictly_lower };

inline Shape triangle_of(char uplo, char diag = 'N') {
  if (toupper(diag) == 'U')
    return toupper(uplo) == 'U' ? Shape::strictly_upper : Shape::strictly_lower;
  return toupper(uplo) == 'U' ? Shape::upper : Shape::lower;
}

template <class T>
class Matrix {
 public:
  const int rows, columns, ld;
  const Shape shape;

  Matrix(Random& random, int rows, int columns, Shape shape = Shape::whole)
      : rows(rows),
        columns(columns),
        ld(std::max(rows, 1) + random.pick({0, 0, 1, 5})),
        shape(shape),
        count_(rows < 1 || columns < 1 ? 0 : size_t(ld) * (columns - 1) + rows),
        memory_(count_ * sizeof(T) + 32),
        p_(static_cast<T*>(memory_.place(count_ * sizeof(T), 4 * random.between(0, 3),
                                         random.pick({Against::front, Against::back})))),
        before_(count_) {
    fill_with_nan();
    for_elements([&](int i, int j) { at(i, j) = random_value<T>(random, Values::plain); });
    remember();
  }

  T& at(int i, int j) { return p_[i + ptrdiff_t(j) * ld]; }
  const T& before(int i, int j) const { return before_[i + ptrdiff_t(j) * ld]; }
  T* data() { return p_; }

  bool has(int i, int j) const {
    switch (shape) {
      case Shape::upper:
        return i <= j;
      case Shape::lower:
        return i >= j;
      case Shape::strictly_upper:
        return i < j;
      case Shape::strictly_lower:
        return i > j;
      default:
        return true;
    }
  }
  template <class Body>
  void for_elements(Body body) const {
    for (int j = 0; j < columns; ++j)
      for (int i = 0; i < rows; ++i)
        if (has(i, j)) body(i, j);
  }
  void fill_with_nan() { memset(static_cast<void*>(p_), 0xff, count_ * sizeof(T)); }
  void remember() { before_.assign(p_, p_ + count_); }

  // Whatever is no element of the shape still has its bits; with all, the elements too.
  bool unchanged(bool all) const {
    for (size_t k = 0; k < count_; ++k) {
      const int i = int(k % ld), j = int(k / ld);
      if (!all && i < rows && has(i, j)) continue;
      if (memcmp(&p_[k], &before_[k], sizeof(T)) != 0) return false;
    }
    return true;
  }

 private:
  size_t count_;
  Guarded memory_;
  T* p_;
  std::vector<T> before_;
};

// Element (i, j) of op(A), of a symmetric, Hermitian or triangular A, in double precision.
template <class T>
Wide element(const Matrix<T>& a, char trans, int i, int j) {
  if (toupper(trans) == 'N') return wide(a.before(i, j));
  const Wide value = wide(a.before(j, i));
  return toupper(trans) == 'C' && is_complex<T> ? std::conj(value) : value;
}
template <class T>
Wide symmetric_element(const Matrix<T>& a, bool hermitian, int i, int j) {
  if (hermitian && i == j) return wide(a.before(i, i)).real();
  if (a.has(i, j)) return wide(a.before(i, j));
  return hermitian ? std::conj(wide(a.before(j, i))) : wide(a.before(j, i));
}

// A whole matrix as a plain array of columns, and products of such arrays: value and the sum of the
// magnitudes of the terms.
struct Dense {
  int rows, columns;
  std::vector<Wide> v;
  template <class Element>
  Dense(int rows, int columns, Element element) : rows(rows), columns(columns), v(rows * columns) {
    for (int j = 0; j < columns; ++j)
      for (int i = 0; i < rows; ++i) v[i + j * rows] = element(i, j);
  }
  Wide operator()(int i, int j) const { return v[i + j * rows]; }
};

struct Sums {
  std::vector<Wide> value;
  std::vector<double> size;
  int rows;

  Sums(int rows, int columns) : value(rows * columns), size(rows * columns), rows(rows) {}
  void add(int i, int j, Wide term) {
    value[i + j * rows] += term;
    size[i + j * rows] += std::abs(term);
  }
  void add_product(Wide alpha, const Dense& a, const Dense& b) {
    if (alpha == Wide()) return;
    for (int j = 0; j < b.columns; ++j)
      for (int p = 0; p < a.columns; ++p) {
        const Wide factor = alpha * b(p, j);
        const double weight = std::abs(factor);
        if (weight == 0) continue;
        for (int i = 0; i < a.rows; ++i) {
          value[i + j * rows] += a(i, p) * factor;
          size[i + j * rows] += std::abs(a(i, p)) * weight;
        }
      }
  }
};

// The elements of c are the sums, within n roundings of the sum of magnitudes, and the rest of its
// array is as it was. A sum without terms must be exactly zero.
template <class T>
void expect_sums(Matrix<T>& c, const Sums& sums, int n) {
  const double eps = std::numeric_limits<Real<T>>::epsilon() * (is_complex<T> ? 3 : 1);
  int wrong = 0;
  c.for_elements([&](int i, int j) {
    const int k = i + j * sums.rows;
    const double error = std::abs(wide(c.at(i, j)) - sums.value[k]);
    if (!(error <= (n + 8) * eps * sums.size[k]) && ++wrong == 1)
      ADD_FAILURE() << "element " << i << " " << j << ": " << wide(c.at(i, j)) << " for "
                    << sums.value[k];
  });
  EXPECT_EQ(wrong, 0);
  EXPECT_TRUE(c.unchanged(false)) << "beside the elements of C";
}

inline char either(Random& random, char option) {
  return random.between(0, 1) ? option : char(tolower(option));
}

// 0, 1, a value; complex ones now and then with an imaginary part.
template <class T>
T factor(Random& random) {
  using R = Real<T>;
  const R part = random.pick({R(0), R(1), R(-1), R(random.real(-2, 2)), R(random.real(-2, 2))});
  if constexpr (is_complex<T>)
    return {part, random.between(0, 1) ? R(0) : R(random.real(-1, 1))};
  else
    return part;
}

// Two sizes around the edges of blocks, at most one of them large: an order, and steps of a product
// or right-hand sides.
struct Sizes {
  int n[2];
  Sizes(Random& random) {
    const int large = random.between(0, 5);
    for (int& size : n) size = random.between(0, random.between(0, 1) ? 8 : 36);
    if (large == 0) n[0] = random.pick({64, 64, 128, 256, 257}) + random.between(-1, 1);
    if (large == 1) n[1] = random.pick({64, 128, 256, 1024}) + random.between(-1, 1);
  }
  std::string text() const { return " " + std::to_string(n[0]) + " " + std::to_string(n[1]); }
};

}  // namespace jex::test
