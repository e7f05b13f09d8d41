// Adds the product of a packed block of A and columns of B to C, tile by tile.
#pragma once

#include "blas/gemm/pack.h"
#include "blas/gemm/tile.h"
#include "simd/prefetch.h"

namespace jex::blas {

// Columns of a tile of so many lanes: about four sums, so that none waits for the one before it.
inline constexpr int tile_columns(int lanes) { return lanes > 3 ? 1 : lanes > 1 ? 2 : 4; }

// Some of the rows of a lane, without a call.
template <int height, class C>
[[gnu::always_inline]] inline void copy_some(const C* from, int rows, C* to) {
  unrolled<height - 1>([&](auto i) __attribute__((always_inline)) {
    if (i < rows) to[i] = from[i];
  });
}

// A tile of C from element c on; of its last lane's rows only `rows` are in C.
template <int plane, First now, int lanes, int columns, int part, Source source, class Scheme>
[[gnu::always_inline]] inline void add_tile(const Scheme& scheme, const typename Scheme::R* a,
                                            ptrdiff_t stride,
                                            const RealColumns<typename Scheme::R>& b, int steps,
                                            typename Scheme::C* c, ptrdiff_t ldc, int rows) {
  using R = typename Scheme::R;
  using C = typename Scheme::C;
  constexpr int height = Scheme::lane_rows, parts = Scheme::parts;
  unrolled<(columns + parts - 1) / parts>([&](auto j) __attribute__((always_inline)) {
    prefetch(c + j * ldc);
    prefetch(c + j * ldc + lanes * height - 1);
  });
  Lanes<R> sum[lanes * columns];
  sum_tile<lanes, columns, part, parts, source>(sum, a, stride, b, steps);
  unrolled<columns>([&](auto j) __attribute__((always_inline)) {
    constexpr int its_part = (part + j) % parts;
    constexpr First its_now = its_part == 0 ? now : First::accumulate;
    C* const to = c + (part + j) / parts * ldc;
    unrolled<lanes>([&](auto i) __attribute__((always_inline)) {
      const Lanes<R> v = sum[i * columns + j];
      if (i < lanes - 1 || rows == height) {
        scheme.template store<plane, its_part, its_now>(v, to + i * height);
      } else {
        C last[height] = {};
        if (its_now != First::overwrite) copy_some<height>(to + i * height, rows, last);
        scheme.template store<plane, its_part, its_now>(v, last);
        copy_some<height>(last, rows, to + i * height);
      }
    });
  });
}

// A panel of lanes against columns of B and C.
template <int plane, First now, int lanes, Source source, class Scheme>
[[gnu::noinline]] void add_panel(const Scheme& scheme, const typename Scheme::R* a,
                                 ptrdiff_t stride, RealColumns<typename Scheme::R> b, int columns,
                                 int steps, typename Scheme::C* c, ptrdiff_t ldc, int rows) {
  constexpr int parts = Scheme::parts, together = tile_columns(lanes);
  const auto tile = [&](auto width, auto part) __attribute__((always_inline)) {
    add_tile<plane, now, lanes, width, part, source>(scheme, a, stride, b, steps, c, ldc, rows);
  };
  const auto advance = [&](int by) __attribute__((always_inline)) {
    b.b += by * b.to_column;
    c += by * ldc;
    columns -= by;
  };
  using One = std::integral_constant<int, 1>;
  if constexpr (together % parts == 0)
    for (constexpr int by = together / parts; columns >= by; advance(by))
      tile(std::integral_constant<int, together>(), std::integral_constant<int, 0>());
  if constexpr (together != parts)
    for (; columns > 0; advance(1))
      unrolled<parts>([&](auto part) __attribute__((always_inline)) { tile(One(), part); });
}

// rows x columns of C, from packed lanes and columns of B.
template <int plane, First now, Source source, class Scheme>
[[gnu::noinline]] void add_block(const Scheme& scheme, const typename Scheme::R* a, int rows,
                                 const RealColumns<typename Scheme::R>& b, int columns, int steps,
                                 typename Scheme::C* c, ptrdiff_t ldc) {
  constexpr int height = Scheme::lane_rows;
  const ptrdiff_t stride = lane_stride<typename Scheme::R>(steps);
  for (int i = 0; i < rows;) {
    const int left = rows - i, lanes = std::min(tile_lanes, (left + height - 1) / height);
    const int last = std::min(height, left - (lanes - 1) * height);
    unrolled<tile_lanes>([&](auto k) __attribute__((always_inline)) {
      if (lanes == k + 1)
        add_panel<plane, now, k + 1, source>(scheme, a, stride, b, columns, steps, c + i, ldc,
                                             last);
    });
    a += lanes * stride;
    i += lanes * height;
  }
}

}  // namespace jex::blas
