// The plan of the transform engine: everything that depends on the length, made once.
//
//   n < 17                              one butterfly
//   a power of two                      passes of radix 16 and less
//   prime factors up to 150             passes of the factors, regrouped where a kernel is larger
//   a prime below 151                   a convolution of n - 1 if that has small factors, else
//                                       one pass of that radix, by its definition
//   anything else below 2^25            a convolution of a power of two
#pragma once

#include "dft/engine/fixed.h"
#include "dft/engine/transform.h"

namespace jex::dft {

enum EngineCode {
  engine_success = 0,
  engine_bad_length = -6,
  engine_null_pointer = -8,
  engine_no_memory = -9,
  engine_bad_mode = -16
};

// Scaling modes: no scaling, 1/n forward, 1/n backward, 1/sqrt(n) both ways.
enum ScalingMode { scale_neither = 8, scale_forward = 1, scale_backward = 2, scale_both = 4 };

constexpr int32_t complex_plan = 16;
constexpr int32_t shortest_planned = 17;  // lengths below need no tables
constexpr int32_t longest_direct = 150;   // strided operands up to here fit on the stack
constexpr int32_t factored_limit = 1 << 26, chirp_limit = 1 << 25;

template <class T>
struct Plan {
  int32_t plan_kind, plan_length, fwd_scaled, bwd_scaled;
  double plan_scale;
  int32_t plan_hint, plan_work_bytes, is_pow2, large_workspace_flag, chirp_len;
  const OddTable* direct_table;
  T *chirp_seq, *chirp_filter;
  struct {
    int32_t order;
  } pow2_tables;
  int32_t mixed_radix, last_stage;
  Factor factors[most_factors];

  // Of a length that the compiler knows, by direction: it needs no tables.
  FixedFunction<T> fixed[2];
  // The whole length, or the convolution of chirp_len.
  Transform<T> transform;
  // The length for lines side by side, of no passes unless asked for.
  Passes<T> bundle;
  Blocks blocks;
};

// Plans come zeroed but for what they need; *out stays untouched on failure.
template <class T>
EngineCode create_plan(Plan<T>** out, int32_t n, int32_t mode, int32_t hint);
// Passes for bundles of lines, where the length has such; false when there is no memory.
template <class T>
bool make_bundle(Plan<T>& plan);
template <class T>
EngineCode plan_work_size(const Plan<T>* plan, int32_t* bytes);
template <class T>
EngineCode destroy_plan(Plan<T>* plan);

// Bytes at the front of the work area that are free for a contiguous copy of strided operands.
template <class T>
constexpr uint32_t copy_bytes(int32_t n) {
  return n > longest_direct ? (uint32_t(n) * sizeof(T) + 63) / 64 * 64 : 0;
}

// scale times the plan's own scaling.
template <class T>
inline Real<T> whole_scale(const Plan<T>& plan, Direction d, Real<T> scale) {
  const bool is_scaled = d == Direction::forward ? plan.fwd_scaled : plan.bwd_scaled;
  return is_scaled ? Real<T>(scale * plan.plan_scale) : scale;
}

// y := scale times the transform of x; unit strides, in place or not, any alignment. work is the
// work area, the copy included; on a 64-byte boundary. The plan's own scaling comes on top.
template <class T>
void run_plan(const Plan<T>& plan, Direction d, const T* in, T* out, void* work, Real<T> scale);

// The kernels of double precision want their arrays on such boundaries. Others are copied, so that
// the bits of a result never depend on where the arrays are.
inline bool is_aligned(const void* a, const void* b) {
  return ((reinterpret_cast<uintptr_t>(a) | reinterpret_cast<uintptr_t>(b)) & 15) == 0;
}
template <class T>
inline bool suits_kernels(const void* in, const void* out) {
  return std::is_same_v<T, jex_scomplex> || is_aligned(in, out);
}

}  // namespace jex::dft
