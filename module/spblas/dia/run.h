// Runs along diagonals: the innermost loops of the DIA kernels.
//
//   y(i) := y(i) +- x1(i) a1(i) +- x2(i) a2(i) ...      i = 0 .. n - 1
//
// with the run of a diagonal in each pair x, a, the diagonals in their order. Several go together
// so that y is loaded and stored once for them. Runs from nine elements on go in steps of eight
// from a 16-byte boundary of y, what is left of them and shorter runs element by element; every
// element is worked on alone, with the same bits either way.
#pragma once

#include "blas/level1/scalar.h"
#include "simd/complex.h"
#include "simd/prefetch.h"
#include "simd/repeat.h"

#include <algorithm>
#include <limits.h>

namespace jex::spblas::dia {

using simd::is_complex;
using simd::Lanes;

// x a, or x conj(a).
template <bool conj, class T>
[[gnu::always_inline]] inline Lanes<T> product(Lanes<T> x, Lanes<T> a) {
  if constexpr (is_complex<T>)
    return simd::times_elements < conj ? -1 : 1 > (x, a);
  else
    return x * a;
}

// The terms of a product, (x alpha) a, and those of a solve.
template <class T, bool conj>
struct AddScaled {
  simd::Factor<T> alpha;
  [[gnu::always_inline]] Lanes<T> operator()(Lanes<T> y, Lanes<T> x, Lanes<T> a) const {
    return y + product<conj>(x * alpha, a);
  }
};
template <class T, bool conj>
struct Subtract {
  [[gnu::always_inline]] Lanes<T> operator()(Lanes<T> y, Lanes<T> x, Lanes<T> a) const {
    return y - product<conj>(x, a);
  }
};

template <class T>
struct Term {
  const T *x, *a;
  Term from(int i) const { return {x + i, a + i}; }
};

inline constexpr int shortest_wide_run = 9;
// Bytes by which elements are asked for before their turn: the many streams are more than the
// processor follows by itself. So long takes memory, at the pace of five diagonals.
inline constexpr int ahead = 1536;
template <class T>
[[gnu::always_inline]] inline void ask_ahead(const T* p) {
  simd::prefetch(reinterpret_cast<const char*>(p) + ahead);
}

// element(i) for single elements, eight(i) for i .. i + 7; y is what the run writes.
template <class T, class Element, class Eight>
[[gnu::always_inline]] inline void for_run(int n, const T* y, Element element, Eight eight) {
  int i = 0;
  if (n >= shortest_wide_run) {
    for (const int peel = blas::elements_to_boundary(y, n); i < peel; ++i) element(i);
    for (; i + 8 <= n; i += 8) eight(i);
  }
  for (; i < n; ++i) element(i);
}

// A run of several diagonals. It may be one of y itself if it does not overlap what is written.
template <class T, class Operation>
[[gnu::noinline]] void run(int n, const Operation& operation, const Term<T>* terms, int count,
                           T* y) {
  constexpr int width = Lanes<T>::count;
  constexpr int sums_at_once = std::min(8 / width, is_complex<T> ? 2 : 4);
  const Operation apply = operation;
  // Of x as well what no diagonal has met yet; the others follow.
  const T* farthest = terms[0].x;
  for (int k = 1; k < count; ++k) farthest = std::max(farthest, terms[k].x);
  for_run(
      n, y,
      [&](int i) __attribute__((always_inline)) {
        Lanes<T> sum = Lanes<T>::load_first(y + i);
        for (int k = 0; k < count; ++k)
          sum = apply(sum, Lanes<T>::load_first(terms[k].x + i),
                      Lanes<T>::load_first(terms[k].a + i));
        sum.store_first(y + i);
      },
      [&](int i) __attribute__((always_inline)) {
        simd::unrolled<8 / width / sums_at_once>([&](auto part) __attribute__((always_inline)) {
          const int at = i + part * sums_at_once * width;
          Lanes<T> sums[sums_at_once];
          ask_ahead(farthest + at);
          ask_ahead(y + at);
          simd::unrolled<sums_at_once>([&](auto r) __attribute__((always_inline)) {
            sums[r] = Lanes<T>::load(y + at + r * width);
          });
          for (int k = 0; k < count; ++k) {
            const T *const x = terms[k].x + at, *const a = terms[k].a + at;
            ask_ahead(a);
            simd::unrolled<sums_at_once>([&](auto r) __attribute__((always_inline)) {
              sums[r] = simd::pinned(
                  apply(sums[r], Lanes<T>::load(x + r * width), Lanes<T>::load(a + r * width)));
            });
          }
          simd::unrolled<sums_at_once>([&](auto r) __attribute__((always_inline)) {
            sums[r].store(y + at + r * width);
          });
        });
      });
}

// y(i) := y(i) / d(i)
template <bool conj, class T>
[[gnu::noinline]] void divide_run(int n, const T* d, T* y) {
  const auto element = [=](int i) { y[i] = blas::quotient(y[i], blas::conjugate_if<conj>(d[i])); };
  for_run(n, y, element, [=](int i) {
    if constexpr (is_complex<T>) {
      for (int k = 0; k < 8; ++k) element(i + k);
    } else {
      constexpr int width = Lanes<T>::count;
      simd::unrolled<8 / width>([&](auto part) {
        const int at = i + part * width;
        (Lanes<T>::load(y + at) / Lanes<T>::load(d + at)).store(y + at);
      });
    }
  });
}

// The diagonals that wait to run together.
template <class T, class Operation>
class Runs {
 public:
  Runs(const Operation& operation, T* y) : operation_(operation), y_(y) {}

  // Elements begin .. end - 1 of y; term holds those of element 0.
  void add(int begin, int end, const Term<T>& term) {
    if (count_ == most) flush();
    begin_[count_] = begin, end_[count_] = end, terms_[count_++] = term;
  }
  // From one place where a diagonal begins or ends to the next, all that are there.
  void flush() {
    constexpr int nowhere = INT_MAX;
    int at = nowhere;
    for (int k = 0; k < count_; ++k) at = std::min(at, begin_[k]);
    while (at != nowhere) {
      int next = nowhere, active = 0;
      Term<T> terms[most];
      for (int k = 0; k < count_; ++k) {
        if (at < begin_[k]) {
          next = std::min(next, begin_[k]);
        } else if (at < end_[k]) {
          next = std::min(next, end_[k]);
          terms[active++] = terms_[k].from(at);
        }
      }
      if (active) run(next - at, operation_, terms, active, y_ + at);
      at = next;
    }
    count_ = 0;
  }

 private:
  static constexpr int most = 16;

  const Operation& operation_;
  T* y_;
  int count_ = 0, begin_[most], end_[most];
  Term<T> terms_[most];
};

}  // namespace jex::spblas::dia
