// trsm, B := alpha inverse(op(A)) B or alpha B inverse(op(A)), and trmm, B := alpha op(A) B or
// alpha B op(A), in place.
//
// Both walk the triangle in blocks. Beside a block stands one rectangle, the part of op(A) that
// ties its unknowns to those that it has an effect on:
//
//   solve      block first, then  rest := rest - block * rectangle     from the unknowns that
//                                                                      stand alone
//   product    rest := rest + alpha block * rectangle, then the block  the other way round
#pragma once

#include "blas/level3/triangle_lanes.h"

namespace jex::blas {

// Unknowns of a block on the diagonal, and right-hand sides that are taken through it together.
// What is left behind the last panel goes with it if it is narrow: for a few columns the multiply
// adds in another order, and a call that is shared by threads would then show it.
inline constexpr int triangle_block = 256;
inline constexpr int vector_panel = 1024;
inline constexpr int narrow_panel = 48;

// Up to this order a triangle goes to the lane kernel: its factors, a register each, leave a third
// of the first-level cache to the right-hand sides.
template <class T>
inline constexpr int lane_order = is_complex<T> ? 24 : 48;

struct Solve {
  using Lane = SolveLane;
  static constexpr bool block_first = true;
};
struct Multiply {
  using Lane = MultiplyLane;
  static constexpr bool block_first = false;
};

// B(to ..) += alpha rectangle B(from ..)
template <class T>
void couple(const Triangular<T>& t, T alpha, int from, int count, int to, int rest) {
  if (rest == 0) return;
  const Operand<T> known{t.unknown(from), t.ldb, Op::none};
  if (t.is_left())
    product(rest, t.vectors, count, alpha, t.a.from(to, from), known, one_of<T>, t.unknown(to),
            t.ldb);
  else
    product(t.vectors, rest, count, alpha, known, t.a.from(from, to), one_of<T>, t.unknown(to),
            t.ldb);
}

// The right-hand sides of a lane, in and out of its registers. A lane that is not full has zeros.
template <class T>
struct LaneOfVectors {
  using L = Lanes<T>;
  T* b;  // the first unknown in the walk
  ptrdiff_t to_unknown, to_vector;
  int order, vectors;

  [[gnu::always_inline]] void load(Real<T>* x) const {
    const T* p = b;
    int i = 0;
    if (vectors == L::count && to_vector != 1)
      squares(
          i, [&](L(&square)[L::count], T * p, int i) __attribute__((always_inline)) {
            unrolled<L::count>([&](auto v) { square[v] = L::load(p + v * to_vector); });
            transpose(square);
            unrolled<L::count>([&](auto k) { put_lane<T>(x, i + in_walk(k), square[k]); });
          });
    for (p += i * to_unknown; i < order; ++i, p += to_unknown)
      put_lane<T>(x, i,
                  vectors < L::count ? gather_some(p, to_vector, vectors)
                  : to_vector == 1   ? L::load(p)
                                     : L::gather(p, to_vector));
  }
  [[gnu::always_inline]] void store(const Real<T>* x) const {
    T* p = b;
    int i = 0;
    if (vectors == L::count && to_vector != 1)
      squares(
          i, [&](L(&square)[L::count], T * p, int i) __attribute__((always_inline)) {
            unrolled<L::count>([&](auto k) { square[k] = lane_at<T>(x, i + in_walk(k)); });
            transpose(square);
            unrolled<L::count>([&](auto v) { square[v].store(p + v * to_vector); });
          });
    for (p += i * to_unknown; i < order; ++i, p += to_unknown) {
      const L lane = lane_at<T>(x, i);
      if (vectors == L::count) {
        to_vector == 1 ? lane.store(p) : lane.scatter(p, to_vector);
      } else {
        T part[L::count];
        lane.store(part);
        for (int v = 0; v < vectors; ++v) p[v * to_vector] = part[v];
      }
    }
  }

 private:
  // Unknowns beside each other in memory, as many as a lane has vectors: square(registers, first in
  // memory, first in the walk).
  template <class Square>
  [[gnu::always_inline]] void squares(int& i, Square square) const {
    for (; i + L::count <= order; i += L::count) {
      L registers[L::count];
      square(registers, b + (to_unknown > 0 ? i : -i - L::count + 1), i);
    }
  }
  int in_walk(int k) const { return to_unknown > 0 ? k : L::count - 1 - k; }
};

// Lanes that go through the triangle side by side: while one waits for its unknowns, the next ones
// compute.
inline constexpr int lanes_together = 4;

// A triangle of at most lane_order unknowns.
template <class Task, class T>
[[gnu::noinline]] void run_lanes(const Triangular<T>& t, const T& alpha) {
  using R = Real<T>;
  using Lane = typename Task::Lane;
  constexpr int most = lane_order<T>, count = Lanes<T>::count;
  constexpr ptrdiff_t size = most * Lanes<R>::count;
  alignas(16) R factors[factors_before<T>(most / group_columns<T>)];
  alignas(16) R x[lanes_together * size];
  Lane::pack(t, alpha, factors);
  const int groups = groups_of<T>(t.order);
  for (int lane = 0; lane < lanes_together; ++lane)
    for (int i = t.order; i < groups * group_columns<T>; ++i)
      put_lane<T>(x + lane * size, i, Lanes<T>::zero());
  T* b = t.forward() ? t.b : t.unknown(t.order - 1);
  const ptrdiff_t to_unknown = t.forward() ? t.to_unknown() : -t.to_unknown();
  const auto run = [&](ptrdiff_t to_vector) __attribute__((always_inline)) {
    for (int v = 0; v < t.vectors; v += lanes_together * count) {
      const int lanes = std::min(lanes_together, (t.vectors - v + count - 1) / count);
      const auto lane = [&](int k) __attribute__((always_inline)) {
        const int first = v + k * count;
        return LaneOfVectors<T>{b + first * to_vector, to_unknown, to_vector, t.order,
                                std::min(count, t.vectors - first)};
      };
      for (int k = 0; k < lanes; ++k) lane(k).load(x + k * size);
      for (int i = 0; i < groups; ++i) {
        const int g = Lane::ascending ? i : groups - 1 - i;
        for (int k = 0; k < lanes; ++k)
          run_group<Lane, T>(x + k * size, factors + factors_before<T>(g), g);
      }
      for (int k = 0; k < lanes; ++k) lane(k).store(x + k * size);
    }
  };
  t.is_left() ? run(t.ldb) : run(1);
}

// Unknowns from .. from + count - 1 of t, of which those on the other side of the block in the walk
// are the rest: after it when walking forward.
template <class Task, class T, class Block>
[[gnu::always_inline]] inline void step(const Triangular<T>& t, T alpha, int from, int count,
                                        int to, int rest, Block block) {
  const T factor = Task::block_first ? real_element<T>(-1) : alpha;
  if (Task::block_first) block(t.part(from, count));
  couple(t, factor, from, count, to, rest);
  if (!Task::block_first) block(t.part(from, count));
}

// A triangle in halves: the products are as large as they can be.
template <class Task, class T>
void run_block(const Triangular<T>& t, const T& alpha) {
  if (t.order <= lane_order<T>) return run_lanes<Task>(t, alpha);
  const int half = (t.order / 2 + real_columns - 1) / real_columns * real_columns;
  const auto half_of = [&](bool first) {
    return first ? std::pair{0, half} : std::pair{half, t.order - half};
  };
  const auto [from, count] = half_of(t.forward());
  const auto [to, rest] = half_of(!t.forward());
  const auto block = [&](const Triangular<T>& part) { run_block<Task>(part, alpha); };
  if (!Task::block_first) block(t.part(to, rest));
  step<Task>(t, alpha, from, count, to, rest, block);
  if (Task::block_first) block(t.part(to, rest));
}

template <class Task, class T>
[[gnu::noinline]] void run_triangle(const Triangular<T>& t, const T& alpha) {
  if (t.order <= lane_order<T>) return run_lanes<Task>(t, alpha);
  const bool ascending = t.forward() == Task::block_first;
  for (int done = 0; done < t.order; done += triangle_block) {
    const int count = std::min(triangle_block, t.order - done);
    const int from = ascending ? done : t.order - done - count, behind = from + count;
    const int to = t.forward() ? behind : 0, rest = t.forward() ? t.order - behind : from;
    for (int v = 0, width; v < t.vectors; v += width) {
      const int left = t.vectors - v;
      width = left < vector_panel + narrow_panel ? left : vector_panel;
      step<Task>(t.panel(v, width), alpha, from, count, to, rest,
                 [&](const Triangular<T>& block) { run_block<Task>(block, alpha); });
    }
  }
}

// The triangle op(A) beside or above the m x n matrix B.
template <class T>
Triangular<T> triangle_of(Side side, Uplo uplo, Op op, Diag diag, int m, int n, const T* a, int lda,
                          T* b, int ldb) {
  const bool left = side == Side::left;
  return {side, is_lower(uplo, op), diag == Diag::unit, {a, lda, op}, left ? m : n, b,
          ldb,  left ? n : m};
}

template <class T>
[[gnu::noinline]] void trsm(Side side, Uplo uplo, Op op, Diag diag, int m, int n, const T& alpha,
                            const T* a, int lda, T* b, int ldb) {
  if (m <= 0 || n <= 0) return;
  scale_matrix(m, n, alpha, b, ldb);
  if (is_zero(alpha)) return;
  run_triangle<Solve>(triangle_of(side, uplo, op, diag, m, n, a, lda, b, ldb), alpha);
}

template <class T>
[[gnu::noinline]] void trmm(Side side, Uplo uplo, Op op, Diag diag, int m, int n, const T& alpha,
                            const T* a, int lda, T* b, int ldb) {
  if (m <= 0 || n <= 0) return;
  if (is_zero(alpha)) return scale_matrix(m, n, alpha, b, ldb);
  run_triangle<Multiply>(triangle_of(side, uplo, op, diag, m, n, a, lda, b, ldb), alpha);
}

}  // namespace jex::blas
