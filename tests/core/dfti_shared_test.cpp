// One transform on several threads has the bits of one thread, whatever its kind.
#include <jex/core.h>
#include <jex/dfti.h>

#include <gtest/gtest.h>

#include "dft/real_descriptor.h"

using namespace jex::test;

namespace {

struct Case {
  const char* name;
  jex_int precision, domain;
  std::vector<jex_int> lengths;  // the last one varies fastest
  jex_int placement = JEX_DFT_NOT_IN_PLACE, storage = JEX_DFT_INTERLEAVED,
          elements = JEX_DFT_INTERLEAVED, format = JEX_DFT_PERM;
};

const Case cases[] = {
    {"two dimensions", 36, 32, {200, 300}},
    {"in place", 35, 32, {256, 256}, JEX_DFT_IN_PLACE},
    {"parts apart", 36, 32, {128, 150}, JEX_DFT_NOT_IN_PLACE, JEX_DFT_SEPARATE},
    {"three dimensions", 35, 32, {30, 32, 34}},
    {"real planes", 36, 33, {200, 301}},
    {"real, three dimensions", 35, 33, {24, 30, 40}},
    {"real, packed", 36, 33, {160, 120}, JEX_DFT_IN_PLACE, 39, JEX_DFT_REAL_ELEMENTS},
    {"one long dimension", 36, 32, {131072}},
    {"one long dimension in place", 35, 32, {360 * 360}, JEX_DFT_IN_PLACE},
    {"one dimension that is not cut", 36, 32, {65537}},
    {"one real dimension", 36, 33, {131072}},
    {"one real dimension of numbers",
     36,
     33,
     {200000},
     JEX_DFT_NOT_IN_PLACE,
     39,
     JEX_DFT_REAL_ELEMENTS,
     JEX_DFT_PACK},
    {"one real dimension in place", 35, 33, {262144}, JEX_DFT_IN_PLACE},
    {"one real dimension, odd", 35, 33, {3 * 5 * 7 * 11 * 13 * 7}},
};

void check(jex_int status) { ASSERT_EQ(status, 0) << jex_dft_dfti_error_message_external(status); }

std::vector<double> computed(const Case& c, jex_int threads, bool forward, jex_int offset) {
  jex_dft_dfti_handle h = nullptr;
  check(jex_dft_dfti_create_descriptor_d_md(&h, c.precision, c.domain, jex_int(c.lengths.size()),
                                            c.lengths.data()));
  const std::pair<jex_int, jex_int> settings[] = {{JEX_DFTI_PLACEMENT, c.placement},
                                                  {JEX_DFTI_COMPLEX_STORAGE, c.storage},
                                                  {JEX_DFTI_CONJUGATE_EVEN_STORAGE, c.elements},
                                                  {JEX_DFTI_PACKED_FORMAT, c.format},
                                                  {JEX_DFTI_THREAD_LIMIT, threads}};
  for (const auto& [parameter, value] : settings)
    check(jex_dft_dfti_set_value_intval(h, parameter, value));
  check(jex_dft_dfti_set_value_dblval(h, JEX_DFTI_FORWARD_SCALE, 0.375));
  size_t points = 1;
  for (const jex_int n : c.lengths) points *= size_t(n);
  // Room for every side of every case.
  std::vector<double> arrays[4];
  for (auto& a : arrays) a.resize(2 * points + 4);
  std::mt19937 random(7);
  for (size_t i = 0; i < 2 * points + 4; ++i)
    for (int a = 0; a < 2; ++a)
      if (c.precision == 36)
        arrays[a][i] = std::ldexp(double(random()), -32);
      else if (i < 2 * points)
        reinterpret_cast<float*>(arrays[a].data())[i] = std::ldexp(float(random()), -32);
  double* p[4];
  for (int a = 0; a < 4; ++a) p[a] = arrays[a].data() + offset;
  check(jex_dft_dfti_commit_descriptor_external(h));
  check(forward ? jex_dft_dfti_compute_forward(h, p[0], p[1], p[2], p[3])
                : jex_dft_dfti_compute_backward(h, p[0], p[1], p[2], p[3]));
  jex_dft_dfti_free_descriptor_external(&h);
  std::vector<double> all;
  for (const auto& a : arrays) all.insert(all.end(), a.begin(), a.end());
  return all;
}

TEST(DftiShared, ThreadsDoNotChangeABit) {
  for (const Case& c : cases)
    for (const bool forward : {true, false})
      for (const jex_int offset : {0, 1}) {
        SCOPED_TRACE(testing::Message() << c.name << " forward " << forward << " off " << offset);
        const auto one = computed(c, 1, forward, offset);
        for (const jex_int threads : {2, 3, 7}) {
          const auto several = computed(c, threads, forward, offset);
          ASSERT_TRUE(same(one.data(), several.data(), one.size())) << threads << " threads";
        }
      }
}

// A transform is left to the threads exactly where commit gives it more than one.
TEST(DftiShared, KernelsOfOneThreadOnly) {
  for (const jex_int word : {0, 1}) {
    Descriptor d(JEX_DFT_DOUBLE, JEX_DFT_COMPLEX, {512, 512});
    d[JEX_DFT_WORD_66] = word;
    d[JEX_DFT_THREADS] = 4;
    ASSERT_EQ(d.commit(), 0);
    EXPECT_EQ(d[JEX_DFT_THREADS], word ? 4 : 1);
    EXPECT_EQ(d.get<void*>(JEX_DFT_KERNEL_FWD_D) == nullptr, word == 1);
    std::vector<jex_dcomplex> x(512 * 512);
    EXPECT_EQ(d.compute(true, x.data()), word ? 7 : 0);
  }
}

// The first record behind the handle, which the trigonometric transforms compute by.
TEST(DftiShared, TheRecordComputesByItself) {
  for (const jex_int domain : {JEX_DFT_COMPLEX, JEX_DFT_REAL}) {
    jex_dft_dfti_handle h = nullptr;
    const jex_int n = 131072;
    check(jex_dft_dfti_create_descriptor_d_1d(&h, JEX_DFT_DOUBLE, domain, 1, n));
    check(jex_dft_dfti_set_value_intval(h, JEX_DFTI_PACKED_FORMAT, JEX_DFT_PERM));
    check(jex_dft_dfti_set_value_intval(h, JEX_DFTI_THREAD_LIMIT, 2));
    check(jex_dft_dfti_commit_descriptor_external(h));
    std::vector<jex_dcomplex> shared(n), alone(n);
    for (jex_int i = 0; i < n; ++i) shared[i] = alone[i] = {i % 17 - 8.0, i % 5 - 2.0};
    check(jex_dft_dfti_compute_forward(h, shared.data()));
    jex_dft_descriptor* record;
    memcpy(&record, static_cast<void*>(h), sizeof record);
    jex_dft_compute_1 entry;
    memcpy(&entry, &record->word[JEX_DFT_FORWARD_ENTRY], sizeof entry);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry(record, alone.data()), 0);
    EXPECT_TRUE(same(shared.data(), alone.data(), n));
    jex_dft_dfti_free_descriptor_external(&h);
  }
}

TEST(DftiShared, RealSettingsThatDoNotFit) {
  const jex_int lengths[] = {4, 6, 8};
  for (const jex_int rank : {1, 2, 3})
    for (const jex_int elements : {JEX_DFT_REAL_ELEMENTS, JEX_DFT_INTERLEAVED})
      for (const jex_int placement : {JEX_DFT_IN_PLACE, JEX_DFT_NOT_IN_PLACE})
        for (const jex_int storage : {JEX_DFT_INTERLEAVED, JEX_DFT_SEPARATE}) {
          jex_dft_dfti_handle h = nullptr;
          check(
              jex_dft_dfti_create_descriptor_d_md(&h, JEX_DFT_SINGLE, JEX_DFT_REAL, rank, lengths));
          check(jex_dft_dfti_set_value_intval(h, JEX_DFTI_CONJUGATE_EVEN_STORAGE, elements));
          check(jex_dft_dfti_set_value_intval(h, JEX_DFTI_PLACEMENT, placement));
          check(jex_dft_dfti_set_value_intval(h, JEX_DFTI_COMPLEX_STORAGE, storage));
          const bool is_packed = elements == JEX_DFT_REAL_ELEMENTS;
          // Rows of 8 numbers have no room for 5 complex elements.
          const bool fits = storage == JEX_DFT_INTERLEAVED && !(rank == 3 && is_packed) &&
                            !(rank > 1 && !is_packed && placement == JEX_DFT_IN_PLACE);
          EXPECT_EQ(jex_dft_dfti_commit_descriptor_external(h), fits ? 0 : 3)
              << rank << " " << elements << " " << placement << " " << storage;
          jex_dft_dfti_free_descriptor_external(&h);
        }
}

}  // namespace
