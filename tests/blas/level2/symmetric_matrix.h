// A symmetric or Hermitian matrix for tests: its stored triangle in guarded memory, and the same in
// the open for the model. Everything that must not reach a result is NaN: the other triangle, gaps
// between columns, imaginary parts of a Hermitian diagonal.
#pragma once

#include "blas/level1/arithmetic.h"
#include "support/vectors.h"

namespace jex::test {

enum class Storage { full, band, packed };

template <class T>
class SymmetricMatrix {
 public:
  SymmetricMatrix(Random& random, Storage storage, bool upper, int n, Values values,
                  bool real_diagonal)
      : storage_(storage),
        upper_(upper),
        n_(n),
        k_(random.between(0, n < 1 ? 3 : std::min(n + 2, 12))),
        lda_((storage == Storage::band ? k_ + 1 : std::max(n, 1)) + random.between(0, 3)),
        elements_(random, n < 1                        ? 0
                          : storage == Storage::full   ? lda_ * (n - 1) + n
                          : storage == Storage::packed ? n * (n + 1) / 2
                                                       : lda_ * (n - 1) + k_ + 1) {
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < n; ++i)
        if (stores(i, j)) {
          T value = random_value<T>(random, values);
          if constexpr (is_complex<T>)
            if (i == j && real_diagonal) value.im = std::numeric_limits<Real<T>>::quiet_NaN();
          at(i, j) = value;
        }
    elements_.publish();
  }

  T* data() { return elements_.data(); }
  const int* k_address() const { return &k_; }
  const int* lda_address() const { return &lda_; }
  bool upper() const { return upper_; }

  bool stores(int i, int j) const {
    if (upper_ ? i > j : i < j) return false;
    return storage_ != Storage::band || std::abs(i - j) <= k_;
  }
  // The model's element of the stored triangle.
  T& at(int i, int j) { return elements_.model(place(i, j)); }
  // Element (i, j) of the whole matrix.
  T whole(int i, int j) {
    if (i == j) {
      T diagonal = at(i, i);
      if constexpr (is_complex<T>) diagonal.im = 0;
      return diagonal;
    }
    if (stores(i, j)) return at(i, j);
    return stores(j, i) ? conjugate(at(j, i)) : T{};
  }
  T computed(int i, int j) const { return elements_.data()[place(i, j)]; }

  std::string difference() const { return elements_.difference(); }

 private:
  int place(int i, int j) const {
    if (storage_ == Storage::full) return i + j * lda_;
    if (storage_ == Storage::band) return (upper_ ? k_ : 0) + i - j + j * lda_;
    return upper_ ? i + j * (j + 1) / 2 : i - j + j * n_ - j * (j - 1) / 2;
  }

  Storage storage_;
  bool upper_;
  int n_, k_, lda_;
  GuardedElements<T> elements_;
};

// The columns of a panel: the first nb of a lower triangle, the last nb of an upper one.
struct PanelColumns {
  int first, last;
  PanelColumns(bool upper, int n, int nb)
      : first(upper ? n - std::min(n, nb) : 0), last(upper ? n : std::min(n, nb)) {}
  bool has(int j) const { return first <= j && j < last; }
};

// The vectors of one call: all with increment 1, or each with one of its own, which is not 0.
inline int increment(Random& random, bool unit) {
  return unit ? 1 : random.pick({-3, -2, -1, 1, 2, 3});
}

// A scalar factor: one of the special ones half of the time.
template <class T>
T special_factor(Random& random) {
  using R = Real<T>;
  const R values[] = {0, R(-0.0), 1, -1, std::numeric_limits<R>::quiet_NaN()};
  const int which = random.between(0, 9);
  if constexpr (is_complex<T>) {
    if (which < 5) return {values[which], which == 1 ? R(-0.0) : R(0)};
    return random_value<T>(random, Values::plain);
  } else {
    return which < 5 ? values[which] : random_value<T>(random, Values::plain);
  }
}

}  // namespace jex::test
