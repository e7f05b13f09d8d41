// Transforms of real numbers.
//
//   n <= 16, some even ones to 64 a direct kernel
//   n even                        half the length on pairs of numbers, then the split step
//   n odd, factors up to 13       a butterfly of real columns, complex rows (odd_levels.h)
//   other odd n up to 180         by the definition, or as complex numbers (odd_direct.h)
//   any other n                   the complex transform, imaginary parts zero
//
// A real plan begins as a complex plan does. The complex plan that it works with, of length n/2 or
// n, belongs to the same record and lives as long.
#pragma once

#include "dft/engine/plan.h"
#include "dft/real/packed.h"

namespace jex::dft {

constexpr EngineCode engine_wrong_kind = EngineCode(-17);
constexpr int32_t real_plan_kind = 18;
constexpr int32_t longest_real_kernel = 16;
constexpr int32_t longest_odd_direct = 180;

// One direction of a length that has a kernel, Perm on the packed side; in and out may be the same.
template <class R>
struct RealKernels {
  void (*plain[longest_real_kernel + 1])(const R* in, R* out);
  void (*scaled[longest_real_kernel + 1])(const R* in, R* out, double scale);
};
template <class R, Direction d>
const RealKernels<R>& real_kernels();

// Kernels of even lengths above these, by half the length, null where there is none.
constexpr int32_t longest_halved = 64;
template <class R>
struct HalvedKernels {
  void (*scaled[longest_halved / 2 + 1])(const R* in, R* out, R scale);
};
template <class R, Direction d>
const HalvedKernels<R>& halved_kernels();

template <class R>
bool is_short_real(int32_t n) {
  if (n <= longest_real_kernel) return true;
  return n % 2 == 0 && n <= longest_halved &&
         halved_kernels<R, Direction::forward>().scaled[n / 2] != nullptr;
}

template <class T>
struct OddLevels;

template <class T>
struct RealPlan : Plan<T> {
  bool is_short;  // a direct kernel, which needs no tables
  const Plan<T>* complex;
  const T* split;      // -i w^k, w = exp(-2 pi i / n), k = 1 .. n/4
  const T* odd_roots;  // w^k, of the direct odd path
  OddLevels<T>* odd;
};

// The engine's operations. complex is the plan of length n/2 of an even n, n of an odd one.
template <class T>
EngineCode create_real_plan(RealPlan<T>** out, int32_t n, int32_t mode, int32_t hint,
                            const Plan<T>* complex);
template <class T>
EngineCode destroy_real_plan(RealPlan<T>* plan);

// Forward: n numbers to a spectrum of the format; backward: the inverse of that times n. in and out
// are the same or apart; any alignment. work: the plan's work area, rounded up to a boundary here,
// or null for one of this call. The plan's own scaling comes on top of scale.
template <class T>
EngineCode run_real_plan(const Plan<T>* plan, Direction d, const Real<T>* in, Real<T>* out,
                         Format format, void* work, Real<T> scale);

// An even length whose half has two levels can be shared out in phases, a phase after all parts of
// the one before:
//
//   forward    columns, rows, split, format        backward   format, split, columns, rows
//
// The pairs of numbers on 16-byte boundaries; matrix and scratch as of run_level(). The plan's own
// scaling is not heeded.
constexpr int32_t real_phases = 4;
template <class T>
void run_real_phase(const RealPlan<T>& plan, Direction d, int32_t phase, Share share,
                    const Real<T>* in, Real<T>* out, Format format, T* matrix, T* scratch,
                    Real<T> scale);

}  // namespace jex::dft
