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

// Up to this order a triangle goes to the lane kernel: a group of its columns, whose factors are a
// register each, leaves most of the first-level cache to the right-hand sides.
inline constexpr int lane_order = 64;

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

// Lanes that go through the triangle side by side.
inline constexpr int lanes_together = 8;

// Right-hand sides on their way in and out of lanes: x holds one register for each unknown of a
// lane, one lane behind the other. A lane that is not full has zeros.
template <class T>
struct BufferedLanes {
  using L = Lanes<T>;
  static constexpr int count = L::count, size = Lanes<Real<T>>::count, to_lane = lane_order * size;
  T* b;  // the first unknown in the walk
  ptrdiff_t to_unknown, to_vector;
  int order, vectors;

  int lanes() const { return (vectors + count - 1) / count; }
  [[gnu::always_inline]] void load(Real<T>* x) const {
    walk(
        [ =, this ](L(&square)[count], const T* p, int at) __attribute__((always_inline)) {
          unrolled<count>([&](auto v) { square[v] = L::load(p + v * to_vector); });
          transpose(square);
          unrolled<count>([&](auto k) { store_lane<T>(x + at + in_walk(k) * size, square[k]); });
        },
        [ =, this ](const T* p, int at, int rows) __attribute__((always_inline)) {
          store_lane<T>(x + at, rows < count     ? gather_some(p, to_vector, rows)
                                : to_vector == 1 ? L::load(p)
                                                 : L::gather(p, to_vector));
        });
  }
  [[gnu::always_inline]] void store(const Real<T>* x) const {
    walk(
        [ =, this ](L(&square)[count], T * p, int at) __attribute__((always_inline)) {
          unrolled<count>([&](auto k) { square[k] = load_lane<T>(x + at + in_walk(k) * size); });
          transpose(square);
          unrolled<count>([&](auto v) { square[v].store(p + v * to_vector); });
        },
        [ =, this ](T * p, int at, int rows) __attribute__((always_inline)) {
          const L lane = load_lane<T>(x + at);
          if (rows == count) {
            to_vector == 1 ? lane.store(p) : lane.scatter(p, to_vector);
          } else {
            T part[count];
            lane.store(part);
            for (int v = 0; v < rows; ++v) p[v * to_vector] = part[v];
          }
        });
  }

 private:
  int in_walk(int k) const { return to_unknown > 0 ? k : count - 1 - k; }
  // line(first in memory, its place in x, vectors of the lane) for one unknown of a lane. Whole
  // lanes whose unknowns are neighbours go by square(registers, first in memory, its place in x),
  // as many unknowns as a lane has vectors.
  template <class Square, class Line>
  [[gnu::always_inline]] void walk(Square square, Line line) const {
    if (to_vector == 1) {
      // Neighbours in memory one after the other: their lines of the cache may be gone by the next
      // lane.
      for (int i = 0; i < order; ++i)
        for (int v = 0; v < vectors; v += count)
          line(b + i * to_unknown + v, v / count * to_lane + i * size,
               std::min(count, vectors - v));
      return;
    }
    for (int v = 0; v < vectors; v += count) {
      T* const p = b + v * to_vector;
      const int at = v / count * to_lane, rows = std::min(count, vectors - v);
      int i = 0;
      if (rows == count)
        for (; i + count <= order; i += count) {
          L registers[count];
          square(registers, p + (to_unknown > 0 ? i : -i - count + 1), at + i * size);
        }
      for (; i < order; ++i) line(p + i * to_unknown, at + i * size, rows);
    }
  }
};

// A triangle of at most lane_order unknowns.
template <class Task, class T>
[[gnu::noinline]] void run_lanes(const Triangular<T>& t, const T& alpha) {
  using R = Real<T>;
  using Lane = typename Task::Lane;
  using Buffered = BufferedLanes<T>;
  constexpr int count = Lanes<T>::count, size = Lanes<R>::count, parts = size / count;
  alignas(16) R factors[most_factors<T>(lane_order)];
  Lane::pack(t, alpha, factors);
  T* const b = t.forward() ? t.b : t.unknown(t.order - 1);
  const ptrdiff_t to_unknown = t.forward() ? t.to_unknown() : -t.to_unknown();
  // Whole lanes that lie as they are needed stay there, if their unknowns do not meet in the cache.
  const bool stay = (count == 1 || t.to_vector() == 1) && !would_meet<T>(to_unknown, t.order);
  const int staying = stay ? t.vectors / count * count : 0;
  for (int v = 0; v < staying; v += lanes_together * count)
    run_together<Lane, T>(factors, t.order, reinterpret_cast<R*>(b + v * t.to_vector()),
                          to_unknown * parts, t.to_vector() * count * parts,
                          std::min(lanes_together, (staying - v) / count));
  // The others by way of a buffer.
  alignas(16) R x[lanes_together * Buffered::to_lane];
  for (int v = staying; v < t.vectors; v += lanes_together * count) {
    const Buffered lanes{b + v * t.to_vector(), to_unknown, t.to_vector(), t.order,
                         std::min(lanes_together * count, t.vectors - v)};
    lanes.load(x);
    run_together<Lane, T>(factors, t.order, x, std::integral_constant<int, size>(),
                          Buffered::to_lane, lanes.lanes());
    lanes.store(x);
  }
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
  if (t.order <= lane_order) return run_lanes<Task>(t, alpha);
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
  if (t.order <= lane_order) return run_lanes<Task>(t, alpha);
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
