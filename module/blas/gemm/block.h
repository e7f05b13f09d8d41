// Adds the product of a packed block of A and staged columns of B to C, tile by tile.
#pragma once

#include "blas/gemm/pack.h"
#include "blas/gemm/tile.h"
#include "simd/prefetch.h"

namespace jex::blas {

// Columns of a tile of so many lanes: about four sums, so that none waits for the one before it.
inline constexpr int tile_columns(int lanes) { return lanes > 3 ? 1 : lanes > 1 ? 2 : 4; }

// A tile of C from element c on; of its last lane's rows only `rows` are in C.
template <int plane, First now, int lanes, int columns, int part, class Scheme>
[[gnu::always_inline]] inline void add_tile(const Scheme& scheme, const typename Scheme::R* a,
                                            ptrdiff_t stride, const typename Scheme::R* b,
                                            int steps, typename Scheme::C* c, ptrdiff_t ldc,
                                            int rows) {
  using R = typename Scheme::R;
  using C = typename Scheme::C;
  constexpr int height = Scheme::lane_rows, parts = Scheme::parts;
  unrolled<(columns + parts - 1) / parts>([&](auto j) __attribute__((always_inline)) {
    prefetch(c + j * ldc);
    prefetch(c + j * ldc + lanes * height - 1);
  });
  Lanes<R> sum[lanes * columns];
  sum_tile<lanes, columns>(sum, a, stride, b, steps);
  unrolled<columns>([&](auto j) __attribute__((always_inline)) {
    constexpr int its_part = (part + j) % parts;
    C* const to = c + (part + j) / parts * ldc;
    unrolled<lanes>([&](auto i) __attribute__((always_inline)) {
      const Lanes<R> v = sum[i * columns + j];
      if (i < lanes - 1 || rows == height) {
        scheme.template store<plane, its_part, now>(v, to + i * height);
      } else {
        C last[height] = {};
        std::copy_n(to + i * height, now == First::overwrite ? 0 : rows, last);
        scheme.template store<plane, its_part, now>(v, last);
        std::copy_n(last, rows, to + i * height);
      }
    });
  });
}

// A panel of lanes against all staged columns (real ones, a multiple of the scheme's parts).
template <int plane, First now, int lanes, class Scheme>
[[gnu::noinline]] void add_panel(const Scheme& scheme, const typename Scheme::R* a,
                                 ptrdiff_t stride, const typename Scheme::R* b, int columns,
                                 int steps, typename Scheme::C* c, ptrdiff_t ldc, int rows) {
  constexpr int parts = Scheme::parts, together = tile_columns(lanes);
  const ptrdiff_t column = ptrdiff_t(steps) * Lanes<typename Scheme::R>::count;
  const auto tile = [&](auto width, auto part) __attribute__((always_inline)) {
    add_tile<plane, now, lanes, width, part>(scheme, a, stride, b, steps, c, ldc, rows);
    b += width * column;
  };
  using One = std::integral_constant<int, 1>;
  int j = 0;
  if constexpr (together % parts == 0)
    for (; j + together <= columns; j += together, c += together / parts * ldc)
      tile(std::integral_constant<int, together>(), std::integral_constant<int, 0>());
  if constexpr (together != parts)
    for (; j < columns; j += parts, c += ldc)
      unrolled<parts>([&](auto part) __attribute__((always_inline)) { tile(One(), part); });
}

// rows x columns of C, from packed lanes and staged real columns of padded steps.
template <int plane, First now, class Scheme>
[[gnu::noinline]] void add_block(const Scheme& scheme, const typename Scheme::R* a, int rows,
                                 const typename Scheme::R* b, int columns, int steps,
                                 typename Scheme::C* c, ptrdiff_t ldc) {
  constexpr int height = Scheme::lane_rows;
  const ptrdiff_t stride = lane_stride<typename Scheme::R>(steps);
  for (int i = 0; i < rows;) {
    const int left = rows - i, lanes = std::min(tile_lanes, (left + height - 1) / height);
    const int last = std::min(height, left - (lanes - 1) * height);
    unrolled<tile_lanes>([&](auto k) __attribute__((always_inline)) {
      if (lanes == k + 1)
        add_panel<plane, now, k + 1>(scheme, a, stride, b, columns, steps, c + i, ldc, last);
    });
    a += lanes * stride;
    i += lanes * height;
  }
}

}  // namespace jex::blas
