// A general or band matrix for tests, in guarded memory, and the same elements in the open for the
// model. Everything that belongs to no element is NaN and must stay so: the gaps below the columns
// and the corners of a band.
#pragma once

#include "support/vectors.h"

#include <jex/exports.h>

namespace jex::test {

// The module's exports on general matrices by element type; gerc is geru for real ones.
template <class T>
struct GeneralEntries;

#define JEX_TEST_GENERAL(t, T, u, c)                   \
  template <>                                          \
  struct GeneralEntries<T> {                           \
    static constexpr auto gemv = jex_blas_##t##gemv;   \
    static constexpr auto gbmv = jex_blas_##t##gbmv;   \
    static constexpr auto geru = jex_blas_##t##ger##u; \
    static constexpr auto gerc = jex_blas_##t##ger##c; \
  };
JEX_TEST_GENERAL(s, float, , )
JEX_TEST_GENERAL(d, double, , )
JEX_TEST_GENERAL(c, jex_scomplex, u, c)
JEX_TEST_GENERAL(z, jex_dcomplex, u, c)

template <class T>
class GeneralMatrix {
 public:
  const int m, n, kl, ku;
  const bool band;

  // A band matrix has kl diagonals below and ku above the main one.
  GeneralMatrix(Random& random, int m, int n, Values values, bool band = false)
      : m(m),
        n(n),
        kl(band ? random.between(0, random.pick({2, 8, 80})) : m),
        ku(band ? random.between(0, random.pick({2, 8, 80})) : n),
        band(band),
        lda_((band ? kl + ku + 1 : std::max(m, 1)) + random.between(0, 1) * random.between(1, 5)),
        elements_(random, m < 1 || n < 1 ? 0 : lda_ * (n - 1) + (band ? kl + ku + 1 : m)) {
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < m; ++i)
        if (stores(i, j)) at(i, j) = random_value<T>(random, values);
    elements_.publish();
  }

  T* data() { return elements_.data(); }
  const int* lda_address() const { return &lda_; }
  bool stores(int i, int j) const { return !band || (i - j <= kl && j - i <= ku); }
  // The model's element.
  T& at(int i, int j) { return elements_.model((band ? ku - j : 0) + i + j * lda_); }

  std::string difference() const { return elements_.difference(); }

 private:
  int lda_;
  GuardedElements<T> elements_;
};

}  // namespace jex::test
