// A descriptor with its dimension chain: one block, record i behind record i - 1.
#include "dft/commit/commit.h"
#include "serv/memory_aligned.h"

namespace jex::dft {
namespace {

constexpr int32_t most_real_dimensions = 3;
constexpr int32_t default_transpose = 53;

int32_t floor_log2(int32_t n) { return n > 0 ? 31 - __builtin_clz(unsigned(n)) : 0; }

// The cores multiply as 32-bit words do.
int32_t product(int32_t a, int32_t b) { return int32_t(uint32_t(a) * uint32_t(b)); }

void set_defaults(Record& first) {
  set(first, ordering, JEX_DFT_ORDERED);
  set(first, number_of_transforms, 1);
  set(first, complex_storage, JEX_DFT_INTERLEAVED);
  set(first, real_storage, JEX_DFT_SEPARATE);
  set(first, conjugate_even_storage, JEX_DFT_REAL_ELEMENTS);
  set(first, placement, JEX_DFT_IN_PLACE);
  set(first, packed_format, JEX_DFT_CCS);
  set(first, transpose, default_transpose);
  set(first, threads, 1);
  set(first, user_threads, 1);
  set(first, commit_state, JEX_DFT_UNCOMMITTED);
}

void describe_dimension(Record& record, int32_t index, int32_t n, int32_t before) {
  set(record, Words<jex_scomplex>::forward_scale, 1);
  set(record, Words<jex_scomplex>::backward_scale, 1);
  set(record, Words<jex_dcomplex>::forward_scale, 1);
  set(record, Words<jex_dcomplex>::backward_scale, 1);
  set(record, record_tag, JEX_DFT_RECORD_TAG);
  set(record, total_elements, product(before, n));
  set(record, input_stride, before);
  set(record, output_stride, before);
  set(record, dimension_index, index);
  set(record, length, n);
  set(record, ce_length, index == 0 ? n / 2 + 1 : n);
  set(record, length_order, floor_log2(n));
  set(record, uses_engine, !is_pow2(n));
}

}  // namespace

int32_t create_chain(Record** out, int32_t precision_code, int32_t domain, int32_t dimensions,
                     const int32_t* lengths) {
  auto* const records =
      static_cast<Record*>(serv::aligned_calloc(uint32_t(dimensions), sizeof(Record), 16));
  if (!records) return JEX_DFT_NO_MEMORY;
  set(records[0], precision, precision_code);
  set(records[0], forward_domain, domain);
  if (domain == JEX_DFT_REAL && dimensions > most_real_dimensions) {
    serv::aligned_free(records);
    return JEX_DFT_BAD_RANK;
  }
  set_defaults(records[0]);
  int32_t elements = 1, ce_elements = 1, longest = 0;
  for (int32_t i = 0; i < dimensions; ++i) {
    Record& record = records[i];
    describe_dimension(record, i, lengths[i], elements);
    elements = product(elements, lengths[i]);
    ce_elements = product(ce_elements, get(record, ce_length));
    set(record, total_ce_elements, ce_elements);
    set(record, rank, dimensions);
    set(record, parent, i > 0 ? &record - 1 : nullptr);
    set(record, child, i + 1 < dimensions ? &record + 1 : nullptr);
    if (lengths[i] > longest) longest = lengths[i];
  }
  set(records[0], total_elements, elements);
  set(records[0], total_ce_elements, ce_elements);
  for (int32_t i = 0; i < dimensions; ++i) set(records[i], max_length, longest);
  *out = records;
  return JEX_DFT_SUCCESS;
}

int32_t determine_nio_args(const Record& descriptor) {
  const bool is_separate = get(descriptor, forward_domain) == JEX_DFT_COMPLEX &&
                           get(descriptor, complex_storage) == JEX_DFT_SEPARATE;
  return (get(descriptor, placement) == JEX_DFT_NOT_IN_PLACE ? 2 : 1) * (is_separate ? 2 : 1);
}

}  // namespace jex::dft
