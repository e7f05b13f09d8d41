// Random cases of the level-2 entries: options, operands and the ways to call.
#pragma once

#include "core_front/level2_entries.h"
#include "core_front/matrices.h"
#include "serv/hook/xmalloc.h"

#include <gtest/gtest.h>

namespace jex::test {

enum class Form { fortran, columns, rows, rows_without_memory };

// Requests then come to the hook one by one, so that it can refuse the one that is meant.
#ifdef _WIN32
inline const bool cache_off = _putenv("JEX_DISABLE_FAST_MM=1") == 0;
#else
inline const bool cache_off = setenv("JEX_DISABLE_FAST_MM", "1", 1) == 0;
#endif

template <class T>
struct Level2Cases {
  // Runs a body for random cases of every form.
  template <class Body>
  void run(Body body) {
    ASSERT_TRUE(cache_off);
    for (const Form f : {Form::fortran, Form::columns, Form::rows, Form::rows_without_memory})
      for (const unsigned seed : case_seeds(120)) {
        SCOPED_TRACE("form " + std::to_string(int(f)) + " JEX_CASE=" + std::to_string(seed));
        form = f;
        random = Random(1000 * (4 * letter<T> + int(f)) + seed);
        choose_options();
        alpha = random.between(0, 5) ? whole<T>(random) : 0;
        beta = random.between(0, 2) ? whole<T>(random) : 0;
        incx = random.pick({1, 1, 2, -1, -3});
        incy = random.pick({1, 1, 3, -1, -2});
        body();
        if (testing::Test::HasFailure()) return;
      }
  }

  bool from_c() const { return form != Form::fortran; }
  bool by_rows() const { return form == Form::rows || form == Form::rows_without_memory; }
  jex_cblas_order order() const { return by_rows() ? JEX_CBLAS_ROW_MAJOR : JEX_CBLAS_COL_MAJOR; }
  // Some orders are longer than one piece of a vector.
  int size() { return random.between(0, 4) ? random.between(0, 7) : random.between(120, 300); }
  int small_size() { return random.between(0, 6); }

  void choose_options() {
    trans = random.pick({'N', 'T', 'C'});
    c_trans = trans == 'N'   ? JEX_CBLAS_NO_TRANS
              : trans == 'T' ? JEX_CBLAS_TRANS
                             : JEX_CBLAS_CONJ_TRANS;
    upper = random.between(0, 1);
    unit = random.between(0, 1);
    // Words in full, and letters of either case.
    trans_word = random.between(0, 1) ? std::string{trans} : std::string{char(trans | 32), 'x'};
    uplo_word = upper ? "Upper" : "l";
    diag_word = unit ? "u" : "Non-unit";
  }
  jex_cblas_uplo c_uplo() const { return upper ? JEX_CBLAS_UPPER : JEX_CBLAS_LOWER; }
  jex_cblas_diag c_diag() const { return unit ? JEX_CBLAS_UNIT : JEX_CBLAS_NON_UNIT; }
  Part part() const { return upper ? Part::upper : Part::lower; }

  Layout general(int m, int n) {
    const int ld = std::max(1, by_rows() ? n : m) + random.between(0, 2);
    return {Kind::full, by_rows(), Part::all, m, n, 0, 0, ld};
  }
  Layout band(int m, int n, int kl, int ku) {
    return {Kind::band, by_rows(), Part::all, m, n, kl, ku, kl + ku + 1 + random.between(0, 2)};
  }
  Layout triangle(Kind kind, int n, int k) {
    const int kl = upper ? 0 : k, ku = upper ? k : 0;
    const int ld = (kind == Kind::band ? k + 1 : std::max(1, n)) + random.between(0, 2);
    return {kind, by_rows(), part(), n, n, kl, ku, ld};
  }
  // Hermitian for complex types; zero outside of the layout and its mirror image.
  Matrix hermitian(const Layout& layout) {
    Matrix a = random_matrix<T>(random, layout);
    for (int i = 0; i < a.m; ++i)
      for (int j = 0; j < a.n; ++j) {
        if (i == j)
          a(i, i) = a(i, i).real();
        else if (layout.holds(i, j))
          a(j, i) = std::conj(a(i, j));
      }
    return a;
  }
  // In memory the diagonal of a Hermitian matrix has imaginary parts, which nobody may use.
  std::vector<T> hermitian_in_memory(const Layout& layout, Matrix a) {
    if (is_complex<T>)
      for (int i = 0; i < a.n; ++i) a(i, i) += Number(0, 7);
    return layout.template in_memory<T>(a);
  }
  // A matrix whose diagonal divides exactly.
  Matrix triangular_matrix(const Layout& layout) {
    Matrix a = random_matrix<T>(random, layout);
    for (int i = 0; i < a.n; ++i)
      a(i, i) = is_complex<T> ? random.pick({Number(1), Number(0, 1), Number(-2), Number(0, -2)})
                              : random.pick({Number(1), Number(-2), Number(0.5)});
    return a;
  }
  // A unit diagonal is not read.
  std::vector<T> triangular_in_memory(const Layout& layout, const Matrix& a) const {
    auto memory = layout.template in_memory<T>(a);
    if (unit)
      for (int i = 0; i < a.n; ++i) memory[layout.place(i, i)] = hole<T>();
    return memory;
  }
  Matrix with_diagonal(Matrix a) const {
    if (unit)
      for (int i = 0; i < a.n; ++i) a(i, i) = 1;
    return a;
  }

  // Calls the Fortran or the C entry; refuses its work buffers where that is the form.
  template <class Fortran, class C>
  void call(Fortran fortran, C c) {
    if (!from_c()) return fortran();
    if (form == Form::rows_without_memory) xmalloc.fail_in = random.between(1, 2);
    c();
    xmalloc.fail_in = 0;
    EXPECT_EQ(xmalloc.live, 0) << "a work buffer was not given back";
  }

  // The value of a scalar as the C entry takes it.
  static auto c_value(const T& value) {
    if constexpr (is_complex<T>)
      return static_cast<const void*>(&value);
    else
      return value;
  }

  std::vector<Number> updated(const Matrix& a, const std::vector<Number>& x,
                              std::vector<Number> y) const {
    const auto product = a.times(x);
    for (size_t i = 0; i < y.size(); ++i) y[i] = alpha * product[i] + beta * y[i];
    return y;
  }
  // y as memory has it before the call: nothing that beta = 0 could use.
  std::vector<T> before(const std::vector<Number>& y) const {
    return beta == 0.0 ? std::vector<T>(in_memory<T>(y, incy).size(), hole<T>())
                       : in_memory<T>(y, incy);
  }
  // An input as memory has it: alpha = 0 reads none.
  std::vector<T> input(std::vector<T> memory) const {
    if (alpha == 0.0) std::fill(memory.begin(), memory.end(), hole<T>());
    return memory;
  }

  Form form = Form::fortran;
  Random random{0};
  Number alpha, beta;
  jex_int incx = 1, incy = 1;
  char trans = 'N';
  jex_cblas_transpose c_trans = 0;
  bool upper = false, unit = false;
  std::string trans_word, uplo_word, diag_word;
};

}  // namespace jex::test
