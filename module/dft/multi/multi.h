// Transforms of several dimensions: compute entries, and the pieces that threads share.
//
// Phase i of a forward transform is its dimension i, of all but the first in place on the results;
// a backward real transform goes from the last dimension to the first. The parts of a phase may run
// at the same time, each on a work area of its own; the phases follow one another.
#pragma once

#include "dft/multi/lines.h"

namespace jex::dft {

// Entries of a chain by placement. A real transform of rank 3 with a packed format of numbers has
// none.
template <class T>
ComputeEntry multi_entry(const Record& descriptor, Direction d, bool in_place);

// The arrays of a call, null behind the last one.
struct Arrays {
  void* a[4];
};

// A share of a phase of transform number index. work is the caller's own area, common that of the
// whole transform.
template <class T>
int32_t run_phase(Record* descriptor, Direction d, const Arrays& arrays, int32_t index, int phase,
                  Share share, char* work, char* common);

// Bytes at the end of the first work area for the spectrum that a backward real transform has
// between its phases.
template <class T>
uint64_t scratch_bytes(const Record& descriptor);

}  // namespace jex::dft
