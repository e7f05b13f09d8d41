// What commit stores in the records: kernels of one dimension, and compute entries.
#pragma once

#include "dft/engine/plan.h"
#include "dft/engine/record.h"

namespace jex::dft {

enum class Order { natural, scrambled };

// Kernels on the record's plan; with separate parts on the plan of word separate_plan.
template <class T>
Kernel engine_kernel(Direction d, Order order);
template <class T>
Kernel separate_kernel(Direction d);

// A kernel of a fixed length, 2 to 64. It needs both arrays on 16-byte boundaries and hands the
// call to the engine's kernel otherwise.
template <class T>
Kernel fixed_kernel(int32_t n, Direction d, Order order);

// Entries for one dimension, by placement.
template <class T>
ComputeEntry compute_entry(Direction d, bool in_place);

// An entry for what has no driver: it returns a status.
ComputeEntry no_compute_entry();
Kernel no_kernel();

// Entries of one unit-stride transform of a fixed length, unscaled; a null entry for other lengths.
template <class T>
ComputeEntry fixed_entry(int32_t n, Direction d, bool in_place);

}  // namespace jex::dft
