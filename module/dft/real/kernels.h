// What commit stores in the records of real transforms.
#pragma once

#include "dft/engine/kernels.h"
#include "dft/real/plan.h"

namespace jex::dft {

// A kernel of one dimension: unit strides, on the plan of length n of word real_plan.
template <class T>
Kernel real_kernel(int32_t n, Direction d, Format format);

// Work area of a record: that of the plan, then room for strided operands.
template <class T>
int32_t real_work_bytes(const RealPlan<T>& plan);

// Entries for one dimension, by placement.
template <class T>
ComputeEntry real_entry(Direction d, bool in_place);

constexpr int32_t status_of(EngineCode code) {
  return code == engine_success     ? JEX_DFT_SUCCESS
         : code == engine_no_memory ? JEX_DFT_NO_MEMORY
                                    : JEX_DFT_FAILURE;
}

}  // namespace jex::dft
