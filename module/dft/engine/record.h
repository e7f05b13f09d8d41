// The words of a descriptor by name. A word is read and written whole; no compiler lays records
// out.
#pragma once

#include <string.h>

#include <jex/dft.h>

#include <type_traits>

#include "dft/engine/butterfly.h"

namespace jex::dft {

using Record = jex_dft_descriptor;

template <class V>
struct Word {
  int at;
};

template <class V>
V get(const Record& record, Word<V> word) {
  V value;
  memcpy(&value, &record.word[word.at], sizeof value);
  return value;
}
template <class V>
void set(Record& record, Word<V> word, std::type_identity_t<V> value) {
  memcpy(&record.word[word.at], &value, sizeof value);
}

// One transform, unit strides: operand, result, record, work area. With separate parts, operand and
// result are pairs of addresses.
using Kernel = int32_t (*)(const void* in, void* out, Record* record, void* work);
using ComputeEntry = void (*)();  // of as many arguments as nio_args says
using Cleanup = int32_t (*)(Record*);

inline constexpr Word<ComputeEntry> forward_entry{JEX_DFT_FORWARD_ENTRY},
    backward_entry{JEX_DFT_BACKWARD_ENTRY};
inline constexpr Word<const jex_dft_breakdown*> active_breakdown{JEX_DFT_ACTIVE_BREAKDOWN};
inline constexpr Word<void*> breakdown_cache{JEX_DFT_BREAKDOWN_CACHE};
inline constexpr Word<int32_t> nio_args{JEX_DFT_NIO_ARGS};
inline constexpr Word<uint32_t> layout_flags{JEX_DFT_LAYOUT_FLAGS}, record_tag{JEX_DFT_TAG};
inline constexpr Word<int32_t> commit_state{JEX_DFT_COMMIT_STATE},
    forward_domain{JEX_DFT_FORWARD_DOMAIN}, precision{JEX_DFT_PRECISION},
    number_of_transforms{JEX_DFT_NUMBER_OF_TRANSFORMS}, complex_storage{JEX_DFT_COMPLEX_STORAGE},
    real_storage{JEX_DFT_REAL_STORAGE}, conjugate_even_storage{JEX_DFT_CONJUGATE_EVEN_STORAGE},
    placement{JEX_DFT_PLACEMENT}, packed_format{JEX_DFT_PACKED_FORMAT},
    input_stride{JEX_DFT_INPUT_STRIDE}, output_stride{JEX_DFT_OUTPUT_STRIDE},
    ordering{JEX_DFT_ORDERING}, transpose{JEX_DFT_TRANSPOSE}, rank{JEX_DFT_RANK},
    dimension_index{JEX_DFT_DIMENSION_INDEX}, length{JEX_DFT_LENGTH}, ce_length{JEX_DFT_CE_LENGTH};
inline constexpr Word<void*> aux_buffer_a{JEX_DFT_AUX_BUFFER_A}, aux_buffer_b{JEX_DFT_AUX_BUFFER_B},
    aux_buffer_c{JEX_DFT_AUX_BUFFER_C}, aux_buffer_d{JEX_DFT_AUX_BUFFER_D},
    aux_buffer_e{JEX_DFT_AUX_BUFFER_E};
inline constexpr Word<int32_t> length_order{JEX_DFT_LENGTH_ORDER},
    input_offset{JEX_DFT_INPUT_OFFSET}, output_offset{JEX_DFT_OUTPUT_OFFSET},
    input_distance{JEX_DFT_INPUT_DISTANCE}, output_distance{JEX_DFT_OUTPUT_DISTANCE},
    uses_engine{JEX_DFT_USES_ENGINE}, total_elements{JEX_DFT_TOTAL_ELEMENTS},
    total_ce_elements{JEX_DFT_TOTAL_CE_ELEMENTS};
inline constexpr Word<Record*> parent{JEX_DFT_PARENT}, child{JEX_DFT_CHILD};
inline constexpr Word<int32_t> max_length{JEX_DFT_MAX_LENGTH}, work_size{JEX_DFT_WORK_SIZE},
    max_work_size{JEX_DFT_MAX_WORK_SIZE}, user_threads{JEX_DFT_USER_THREADS},
    threads{JEX_DFT_THREADS}, word_82{JEX_DFT_WORD_82}, word_99{JEX_DFT_WORD_99},
    cleanup_pending{JEX_DFT_CLEANUP_PENDING};
inline constexpr Word<char*> work_buffers{JEX_DFT_WORK_BUFFERS};
inline constexpr Word<int32_t*> per_thread_slots{JEX_DFT_PER_THREAD_SLOTS};
inline constexpr Word<Cleanup> cleanup_fn{JEX_DFT_CLEANUP_FN};

enum LayoutFlags : uint32_t { unit_single = 1, two_level = 2, one_call = 4 };

// What has a word for each precision. Engine plans of both precisions fill the eight slots.
template <class T>
struct Words;
template <>
struct Words<jex_dcomplex> {
  static constexpr Word<double> forward_scale{JEX_DFT_FORWARD_SCALE_D},
      backward_scale{JEX_DFT_BACKWARD_SCALE_D};
  static constexpr Word<Kernel> backward_kernel{JEX_DFT_KERNEL_BWD_D},
      forward_kernel{JEX_DFT_KERNEL_FWD_D};
  static constexpr Word<void*> ordered_plan{84}, scrambled_plan{90}, separate_plan{86},
      real_plan{88};
  static constexpr int real_kernels = JEX_DFT_REAL_KERNELS_D, pack_kernels = JEX_DFT_PACK_KERNELS_D;
  static constexpr int32_t longest_scrambled_engine = 8192;
};
template <>
struct Words<jex_scomplex> {
  static constexpr Word<float> forward_scale{JEX_DFT_FORWARD_SCALE_S},
      backward_scale{JEX_DFT_BACKWARD_SCALE_S};
  static constexpr Word<Kernel> backward_kernel{JEX_DFT_KERNEL_BWD_S},
      forward_kernel{JEX_DFT_KERNEL_FWD_S};
  static constexpr Word<void*> ordered_plan{83}, scrambled_plan{89}, separate_plan{85},
      real_plan{87};
  static constexpr int real_kernels = JEX_DFT_REAL_KERNELS_S, pack_kernels = JEX_DFT_PACK_KERNELS_S;
  static constexpr int32_t longest_scrambled_engine = 32768;
};

template <class T>
Real<T> scale_of(const Record& record, Direction d) {
  return get(record, d == Direction::forward ? Words<T>::forward_scale : Words<T>::backward_scale);
}

template <class T>
Word<Kernel> kernel_word(Direction d) {
  return d == Direction::forward ? Words<T>::forward_kernel : Words<T>::backward_kernel;
}
// Where a record keeps its complex plan, by the settings, which all records of a chain share.
// Storage and order are none of a real transform's.
template <class T>
Word<void*> complex_plan_word(const Record& record) {
  if (get(record, forward_domain) == JEX_DFT_REAL) return Words<T>::ordered_plan;
  if (get(record, complex_storage) == JEX_DFT_SEPARATE) return Words<T>::separate_plan;
  return get(record, ordering) == JEX_DFT_ORDERED ? Words<T>::ordered_plan
                                                  : Words<T>::scrambled_plan;
}
// Of a pair of words: backward, then forward.
inline Word<Kernel> in_pair(int first, Direction d) { return {first + (d == Direction::forward)}; }

// Largest lengths of the engine and of the large power-of-two kernel.
constexpr int32_t longest_pow2 = 134217727, longest_other = 33554431;
constexpr bool is_pow2(int32_t n) { return n > 0 && (n & (n - 1)) == 0; }
constexpr bool is_too_long(int32_t n) { return n > (is_pow2(n) ? longest_pow2 : longest_other); }

}  // namespace jex::dft
