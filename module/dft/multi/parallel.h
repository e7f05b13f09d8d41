// The pieces of one transform that several threads share.
#pragma once

#include "dft/multi/multi.h"

namespace jex::dft {

// Phases that the transform is shared out in; 1 for one that is not.
template <class T>
int32_t phase_count(const Record& descriptor);

// Part of parts of a phase of the descriptor's first transform; work is an area of max_work_size
// bytes on a 64-byte boundary. Results do not depend on parts.
template <class T>
int32_t run_part(Record* descriptor, Direction d, int32_t phase, Share share, void* work,
                 const Arrays& arrays);

}  // namespace jex::dft
