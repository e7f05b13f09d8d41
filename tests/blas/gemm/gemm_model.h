// Models of the matrix multiply: for real types every product and sum in the order that
// docs/numerics.md tells, for complex ones the value and the scale of its error.
#pragma once

#include "blas/level2/general_model.h"

#include <complex>
#include <utility>

namespace jex::test {

template <class T>
struct Multiply {
  int m, n, k;
  char transa, transb;
  T alpha, beta;
};

inline bool is_plain(char trans) { return trans == 'N' || trans == 'n'; }

// op(X)(i, j)
template <class T>
T element_of(GeneralMatrix<T>& x, char trans, int i, int j) {
  if (is_plain(trans)) return x.at(i, j);
  return trans == 'C' || trans == 'c' ? conjugate(x.at(j, i)) : x.at(j, i);
}

// First step and number of steps of the blocks of k in their order: the remainder, or the last
// whole block, then the others from the start.
inline std::vector<std::pair<int, int>> blocks_of(int k, int size) {
  const int first = k % size ? k % size : size;
  std::vector<std::pair<int, int>> blocks{{k - first, first}};
  for (int p = 0; p < k - first; p += size) blocks.emplace_back(p, size);
  return blocks;
}

template <class R>
void multiply_model(const Multiply<R>& q, GeneralMatrix<R>& a, GeneralMatrix<R>& b,
                    GeneralMatrix<R>& c, int block_size) {
  const bool small = q.m < 4 || q.k < 8 || q.n < 8;
  const int columns = small ? q.n : q.n / 4 * 4;
  for (int j = 0; j < columns; ++j)
    for (int i = 0; i < q.m; ++i) {
      R& e = c.at(i, j);
      bool first = true;
      for (const auto& [p0, steps] : blocks_of(q.k, small ? std::max(q.k, 1) : block_size)) {
        R sum = 0;
        for (int p = std::max(p0, 0); p < p0 + steps && p < q.k; ++p)
          sum += q.alpha * element_of(a, q.transa, i, p) * element_of(b, q.transb, p, j);
        if (!first || q.beta == 1)
          e = e + sum;
        else
          e = is_zero(q.beta) ? sum : sum + q.beta * e;
        first = false;
      }
    }
}

// One element in twice the precision, and the sum of the magnitudes of everything added.
template <class T, class TA>
std::pair<std::complex<double>, double> exact_element(const Multiply<T>& q, GeneralMatrix<TA>& a,
                                                      GeneralMatrix<T>& b, T old, int i, int j) {
  const auto wide = [](auto x) -> std::complex<double> {
    if constexpr (is_complex<decltype(x)>)
      return {x.re, x.im};
    else
      return x;
  };
  std::complex<double> sum = 0;
  double scale = 0;
  for (int p = 0; p < q.k; ++p) {
    const auto term =
        wide(q.alpha) * wide(element_of(a, q.transa, i, p)) * wide(element_of(b, q.transb, p, j));
    sum += term;
    scale += std::abs(term);
  }
  if (!is_zero(q.beta)) {
    sum += wide(q.beta) * wide(old);
    scale += std::abs(wide(q.beta) * wide(old));
  }
  return {sum, scale};
}

}  // namespace jex::test
