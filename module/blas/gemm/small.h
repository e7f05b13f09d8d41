// C := alpha op(A) op(B) + beta C with nothing packed but single lanes of A.
//
// The arithmetic is that of the packed multiply in a single block of steps: one sum for each
// element of C (for complex ones a sum for each part of B), from the first step to the last, of
// (alpha a) b; then C := sum, C + sum, or sum + beta C.
#pragma once

#include "blas/gemm/scheme.h"
#include "serv/memory.h"

#include <algorithm>

namespace jex::blas {

template <class T>
struct Small {
  int rows, steps;
  const T &alpha, &beta;
  Operand<T> a, b;
  T* c;
  int ldc;
  Wanted wanted;
};

// Lanes of rows: how far it is, in real numbers, from one step of a lane to the next and from one
// lane to the next. Of the last lane's rows only rows_of_last are in C.
template <class R>
struct SmallLanes {
  const R* a;
  ptrdiff_t to_step, to_lane;
  int count, rows_of_last;
};

// sum[k] := products of a lane's steps and neighbouring real columns of B. Of a B stored by
// columns, the columns are `apart` and the steps neighbours (complex: the parts of a number, then
// the steps); else it is the other way round.
template <int columns, int parts, bool by_columns, class R>
[[gnu::always_inline]] inline void sum_lane(Lanes<R> (&sum)[columns], const R* a, ptrdiff_t next,
                                            int steps, const R* b, ptrdiff_t apart) {
  unrolled<columns>([&](auto k)
                        __attribute__((always_inline)) { sum[k] = pinned(Lanes<R>::zero()); });
  // Two pointers and one distance reach six columns by scaled addresses, made anew in each step:
  // sums of them that are kept would take the registers of others.
  constexpr int near = std::min(columns / parts, 3);
  const R* far = b + (by_columns ? near * apart : 0);
  ptrdiff_t bytes = apart * ptrdiff_t(sizeof(R));
  const auto moved = [](const R* from, ptrdiff_t bytes) {
    return (const R*)((const char*)from + bytes);
  };
  const auto walk = [&](auto unroll) __attribute__((always_inline)) {
    unrolled<unroll>([&](auto u) __attribute__((always_inline)) {
      b = pinned(b), bytes = pinned(bytes);
      if constexpr (by_columns && near < columns / parts) far = pinned(far);
      const Lanes<R> row = loaded(a);
      a += next;
      unrolled<columns>([&](auto k) __attribute__((always_inline)) {
        constexpr int column = k / parts, place = u * parts + k % parts;
        accumulate_repeated(sum[k], row,
                            !by_columns     ? b + k
                            : column < near ? moved(b, column * bytes) + place
                                            : moved(far, (column - near) * bytes) + place);
      });
      if (!by_columns) b = moved(b, bytes);
    });
    if (by_columns) b += unroll * parts;
    if (by_columns && near < columns / parts) far += unroll * parts;
  };
  const R* const end = a + (steps & ~1) * next;
  while (a != end) walk(std::integral_constant<int, 2>());
  if (steps & 1) walk(std::integral_constant<int, 1>());
}

// Neighbouring columns of the lanes, from row i and column j of C on.
template <int columns, First first, bool by_columns, class T>
[[gnu::noinline]] void multiply_columns(const Small<T>& q, const SmallLanes<Real<T>>& lanes, int i,
                                        int j) {
  using R = Real<T>;
  using L = Lanes<T>;
  constexpr int parts = is_complex<T> ? 2 : 1;
  const ptrdiff_t apart = q.b.ld * ptrdiff_t(parts), next = lanes.to_step, to_lane = lanes.to_lane;
  const R* const b =
      reinterpret_cast<const R*>(q.b.x) + j * (by_columns ? apart : ptrdiff_t(parts));
  const R* a = lanes.a;
  const bool conjugates = is_complex<T> && q.b.conjugates();
  const Factor<T> beta(q.beta);
  const int steps = q.steps, rows = lanes.rows_of_last;
  const ptrdiff_t ldc = q.ldc;
  T* c = q.c + i + j * ldc;
  for (int left = lanes.count; left > 0; --left, a += to_lane, c += L::count) {
    Lanes<R> sum[columns * parts];
    sum_lane<columns * parts, parts, by_columns>(sum, a, next, steps, b, apart);
    const auto put = [&](auto load, auto store) __attribute__((always_inline)) {
      T* to = c;
      unrolled<columns>([&](auto k) __attribute__((always_inline)) {
        L old = L::zero();
        if constexpr (first != First::overwrite) old = load(to);
        if constexpr (first == First::general) old = old * beta;
        if constexpr (is_complex<T>) {
          // Sums of the parts of b stay apart: they are added to C one after the other.
          if (conjugates) sum[2 * k + 1] = Lanes<R>::zero() - sum[2 * k + 1];
          store(L{add_alternating(old.parts + sum[2 * k], swap_parts(sum[2 * k + 1]))}, to);
        } else {
          store(first == First::overwrite ? sum[k] : old + sum[k], to);
        }
        // More addresses than three, kept, would go to the stack.
        to = columns > 3 ? pinned(to + ldc) : to + ldc;
      });
    };
    if (left > 1 || rows == L::count)
      put([](const T* c) { return L::load(c); }, [](L v, T* c) { v.store(c); });
    else
      put([=](const T* c) { return gather_some(c, 1, rows); },
          [=](L v, T* c) { store_some(v, c, rows); });
  }
}

// Leaves lanes, which begin at row i, those that hold wanted elements of columns j .. .
template <class T>
[[gnu::noinline]] void keep_wanted(const Small<T>& q, SmallLanes<Real<T>>& lanes, int& i, int j,
                                   int columns) {
  constexpr int height = Lanes<T>::count;
  const WantedRows wanted(q.wanted, q.rows, j, columns);
  if (const int most = (wanted.to - i + height - 1) / height; most < lanes.count) {
    lanes.count = most;
    lanes.rows_of_last = height;
  }
  const int skipped = std::clamp((wanted.from - i) / height, 0, std::max(lanes.count, 0));
  lanes.a += skipped * lanes.to_lane;
  lanes.count -= skipped;
  i += skipped * height;
}

// A lane of op(A), alpha included; the rows that it does not have are zero.
template <class T>
[[gnu::noinline]] void pack_lane(const Small<T>& q, int i, int rows, Real<T>* to) {
  const bool conjugates = is_complex<T> && q.a.conjugates(), scaled = !is_one(q.alpha);
  const Factor<T> alpha(q.alpha);
  const ptrdiff_t inc = q.a.row_distance(), next = q.a.column_distance();
  const T* a = q.a.from(i, 0).x;
  const auto pack = [&](auto load) __attribute__((always_inline)) {
    for (int p = q.steps; p > 0; --p, a += next, to += Lanes<Real<T>>::count) {
      Lanes<T> lane = load(a);
      if constexpr (is_complex<T>)
        if (conjugates) lane = conjugate(lane);
      if (scaled) lane = lane * alpha;
      if constexpr (is_complex<T>)
        lane.parts.store_aligned(to);
      else
        lane.store_aligned(to);
    }
  };
  if (rows < Lanes<T>::count)
    pack([=](const T* a) { return gather_some(a, inc, rows); });
  else if (inc == 1)
    pack([=](const T* a) { return Lanes<T>::load(a); });
  else
    pack([=](const T* a) { return Lanes<T>::gather(a, inc); });
}

template <class T>
[[gnu::noinline]] void multiply_small(const Small<T>& q, int columns) {
  using R = Real<T>;
  constexpr int height = Lanes<T>::count;
  constexpr ptrdiff_t width = Lanes<R>::count, packed_numbers = 8192 / sizeof(R);
  // Six sums hide the latency of the adds; eight are better halved.
  constexpr int parts = is_complex<T> ? 2 : 1, six = 6 / parts, four = 4 / parts;
  const auto multiply = [&](auto first, auto by_columns, const SmallLanes<R>& lanes, int begin)
      __attribute__((always_inline)) {
    int j = 0;
    const auto run = [&](auto together) __attribute__((always_inline)) {
      if (q.wanted == Wanted::all) {
        multiply_columns<together, first, by_columns>(q, lanes, begin, j);
      } else {
        SmallLanes<R> own = lanes;
        int i = begin;
        keep_wanted(q, own, i, j, together);
        multiply_columns<together, first, by_columns>(q, own, i, j);
      }
      j += together;
    };
    while (columns - j >= six && columns - j != 2 * four) run(std::integral_constant<int, six>());
    while (columns - j >= four) run(std::integral_constant<int, four>());
    while (columns > j) run(std::integral_constant<int, 1>());
  };
  const auto with_first = [&](auto first, const SmallLanes<R>& lanes, int begin)
      __attribute__((always_inline)) {
    q.b.by_columns() ? multiply(first, std::true_type(), lanes, begin)
                     : multiply(first, std::false_type(), lanes, begin);
  };
  // Lanes that cannot be read as they are go to the stack, as many as fit, or to a buffer.
  alignas(16) R few[packed_numbers];
  R* packed = few;
  const ptrdiff_t to_step = q.a.column_distance() * parts, to_row = q.a.row_distance() * parts;
  const bool readable = is_one(q.alpha) && !q.a.conjugates() && (height == 1 || to_row == parts);
  for (int begin = 0, end = 0; begin < q.rows; begin = end) {
    SmallLanes<R> lanes{reinterpret_cast<const R*>(q.a.x), to_step, to_row * height,
                        q.rows / height, height};
    if (begin == 0 && readable && lanes.count > 0) {
      end = lanes.count * height;
    } else {
      const ptrdiff_t size = q.steps * width;
      if (size > packed_numbers && packed == few)
        packed = static_cast<R*>(serv::allocate(uint32_t(size) * sizeof(R), 128));
      lanes = {packed, width, size, 0, height};
      do {
        lanes.rows_of_last = std::min(height, q.rows - end);
        pack_lane(q, end, lanes.rows_of_last, packed + lanes.count++ * size);
        end += lanes.rows_of_last;
      } while (end < q.rows && (lanes.count + 1) * size <= packed_numbers);
    }
    if (is_zero(q.beta))
      with_first(std::integral_constant<First, First::overwrite>(), lanes, begin);
    else if (is_one(q.beta))
      with_first(std::integral_constant<First, First::accumulate>(), lanes, begin);
    else
      with_first(std::integral_constant<First, First::general>(), lanes, begin);
  }
  if (packed != few) serv::deallocate(packed);
}

}  // namespace jex::blas
