// From settings to a plan. Every routine returns a status of jex/dft.h.
#pragma once

#include "dft/engine/record.h"

namespace jex::dft {

int32_t create_chain(Record** out, int32_t precision, int32_t domain, int32_t rank,
                     const int32_t* lengths);

// Everything that commit allocated in the chain.
int32_t release_chain(Record& descriptor);

// Settles how many threads a call may use; with user threads, makes their slots.
void settle_threads(Record& descriptor);

// One precision, one domain; one record or the chain.
template <class T>
int32_t commit(Record& descriptor, int32_t domain, bool whole_chain);
int32_t commit_any(Record& descriptor);

// The kernels, the plan and the work size of one dimension.
template <class T>
int32_t select_kernels(Record& descriptor, Record& record);

// Number of arrays of a compute call.
int32_t determine_nio_args(const Record& descriptor);

// The breakdown list of a case; that of every case but these two is empty.
int32_t apply_complex_1d_double(Record& descriptor);
int32_t apply_complex_1d_single(Record& descriptor);

// jex_dft_z_fft_init, jex_dft_c_fft_init.
template <class T>
int32_t init_large(Record* record, Record* descriptor);

}  // namespace jex::dft
