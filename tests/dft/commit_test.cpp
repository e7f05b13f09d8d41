// Words of a descriptor after creation, commit and release; statuses.
#include "dft/descriptor.h"

using namespace jex::test;

namespace {

TEST(Create, FillsTheChain) {
  Descriptor d(JEX_DFT_SINGLE, JEX_DFT_REAL, {10, 7, 4});
  const struct {
    int word;
    jex_int value;
  } first[] = {{JEX_DFT_PRECISION, 35},
               {JEX_DFT_FORWARD_DOMAIN, 33},
               {JEX_DFT_ORDERING, 48},
               {JEX_DFT_NUMBER_OF_TRANSFORMS, 1},
               {JEX_DFT_COMPLEX_STORAGE, 39},
               {JEX_DFT_REAL_STORAGE, 42},
               {JEX_DFT_CONJUGATE_EVEN_STORAGE, 40},
               {JEX_DFT_PLACEMENT, 43},
               {JEX_DFT_PACKED_FORMAT, 54},
               {JEX_DFT_TRANSPOSE, 53},
               {JEX_DFT_INPUT_OFFSET, 0},
               {JEX_DFT_OUTPUT_OFFSET, 0},
               {JEX_DFT_NIO_ARGS, 0},
               {JEX_DFT_THREADS, 1},
               {JEX_DFT_USER_THREADS, 1},
               {JEX_DFT_MAX_WORK_SIZE, 0},
               {JEX_DFT_COMMIT_STATE, 31},
               {JEX_DFT_LAYOUT_FLAGS, 0},
               {JEX_DFT_TOTAL_ELEMENTS, 280},
               {JEX_DFT_TOTAL_CE_ELEMENTS, 168}};
  for (const auto& [word, value] : first) EXPECT_EQ(d[word], value) << "word " << word;
  const struct {
    jex_int length, ce_length, stride, order, engine, elements;
  } rows[] = {{10, 6, 1, 3, 1, 280}, {7, 7, 10, 2, 1, 70}, {4, 4, 70, 2, 0, 280}};
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(d.get<jex_int>(JEX_DFT_LENGTH, i), rows[i].length);
    EXPECT_EQ(d.get<jex_int>(JEX_DFT_CE_LENGTH, i), rows[i].ce_length);
    EXPECT_EQ(d.get<jex_int>(JEX_DFT_INPUT_STRIDE, i), rows[i].stride);
    EXPECT_EQ(d.get<jex_int>(JEX_DFT_OUTPUT_STRIDE, i), rows[i].stride);
    EXPECT_EQ(d.get<jex_int>(JEX_DFT_LENGTH_ORDER, i), rows[i].order);
    EXPECT_EQ(d.get<jex_int>(JEX_DFT_USES_ENGINE, i), rows[i].engine);
    EXPECT_EQ(d.get<jex_int>(JEX_DFT_TOTAL_ELEMENTS, i), rows[i].elements);
    EXPECT_EQ(d.get<jex_int>(JEX_DFT_TAG, i), 5523012);
    EXPECT_EQ(d.get<jex_int>(JEX_DFT_RANK, i), 3);
    EXPECT_EQ(d.get<jex_int>(JEX_DFT_DIMENSION_INDEX, i), i);
    EXPECT_EQ(d.get<jex_int>(JEX_DFT_MAX_LENGTH, i), 10);
    EXPECT_EQ(d.get<double>(JEX_DFT_FORWARD_SCALE_D, i), 1);
    EXPECT_EQ(d.get<double>(JEX_DFT_BACKWARD_SCALE_D, i), 1);
    EXPECT_EQ(d.get<float>(JEX_DFT_FORWARD_SCALE_S, i), 1);
    EXPECT_EQ(d.get<float>(JEX_DFT_BACKWARD_SCALE_S, i), 1);
    EXPECT_EQ(d.get<jex_dft_descriptor*>(JEX_DFT_CHILD, i), i < 2 ? d + (i + 1) : nullptr);
    EXPECT_EQ(d.get<jex_dft_descriptor*>(JEX_DFT_PARENT, i), i ? d + (i - 1) : nullptr);
  }
  const jex_int lengths[] = {2, 2, 2, 2};
  jex_dft_descriptor* none = nullptr;
  EXPECT_EQ(jex_dft_create_descriptor_md(&none, JEX_DFT_DOUBLE, JEX_DFT_REAL, 4, lengths), 6);
  EXPECT_EQ(none, nullptr);
}

TEST(Commit, StatesAndArguments) {
  const struct {
    jex_int domain, storage, placement, committed, asked;
  } rows[] = {{32, 39, 43, 1, 1}, {32, 39, 44, 2, 2}, {32, 42, 43, 2, 2},
              {32, 42, 44, 4, 4}, {33, 42, 44, 4, 2}, {33, 39, 43, 1, 1}};
  for (const auto& r : rows)
    for (const jex_int precision : {35, 36}) {
      Descriptor d(precision, r.domain, {60});
      d[JEX_DFT_COMPLEX_STORAGE] = r.storage;
      d[JEX_DFT_PLACEMENT] = r.placement;
      EXPECT_EQ(jex_dft_determine_nioargs(d), r.asked);
      EXPECT_EQ(d.get<void*>(JEX_DFT_FORWARD_ENTRY), nullptr);
      ASSERT_EQ(d.commit(), 0);
      EXPECT_EQ(d[JEX_DFT_NIO_ARGS], r.committed);
      EXPECT_EQ(d[JEX_DFT_COMMIT_STATE], 30);
      EXPECT_NE(d.get<void*>(JEX_DFT_FORWARD_ENTRY), nullptr);
      EXPECT_NE(d.get<void*>(JEX_DFT_BACKWARD_ENTRY), nullptr);
      EXPECT_EQ(jex_dft_free_allocated_buffers(d), 0);
      for (int word = 83; word <= 93; ++word) EXPECT_EQ(d[word], 0) << word;
    }
}

using CommitEntry = jex_int (*)(jex_dft_descriptor*, void*);

// Each entry by itself does what the general one does for its case.
TEST(Commit, EntriesOfEachCase) {
  const struct {
    CommitEntry entry;
    jex_int precision, domain;
    std::vector<jex_int> lengths;
  } rows[] = {{jex_dft_commit_descriptor_core_d_c2c_1d, 36, 32, {60}},
              {jex_dft_commit_descriptor_core_d_c2c_md, 36, 32, {60, 9}},
              {jex_dft_commit_descriptor_core_d_r2c_1d, 36, 33, {60}},
              {jex_dft_commit_descriptor_core_d_r2c_md, 36, 33, {60, 9}},
              {jex_dft_commit_descriptor_core_s_c2c_1d, 35, 32, {60}},
              {jex_dft_commit_descriptor_core_s_c2c_md, 35, 32, {60, 9}},
              {jex_dft_commit_descriptor_core_s_r2c_1d, 35, 33, {60}},
              {jex_dft_commit_descriptor_core_s_r2c_md, 35, 33, {60, 9}}};
  for (const auto& r : rows)
    for (const CommitEntry entry : {r.entry, CommitEntry(jex_dft_commit_descriptor_core)}) {
      Descriptor d(r.precision, r.domain, r.lengths);
      ASSERT_EQ(entry(d, nullptr), 0);
      const int pair = r.precision == 36 ? JEX_DFT_KERNEL_BWD_D : JEX_DFT_KERNEL_BWD_S;
      const int plan = r.precision == 36 ? 84 : 83;
      for (size_t i = 0; i < r.lengths.size(); ++i) {
        EXPECT_NE(d.get<void*>(pair, int(i)), nullptr);
        EXPECT_NE(d.get<void*>(pair + 1, int(i)), nullptr);
        EXPECT_NE(d.get<void*>(plan, int(i)), nullptr);
        EXPECT_EQ(d.get<jex_int>(JEX_DFT_COMMIT_STATE, int(i)), 30);
      }
      std::vector<jex_dcomplex> x(1024);
      EXPECT_EQ(d.compute(true, x.data()), 0);
    }
}

TEST(Commit, LengthsBeyondTheEngine) {
  for (const jex_int n : {134217728, 33554432 + 2, 33554433}) {
    Descriptor d = Descriptor::complex_1d<jex_dcomplex>(n);
    EXPECT_EQ(d.commit(), 9) << n;
    EXPECT_EQ(d[JEX_DFT_COMMIT_STATE], 31);
    EXPECT_EQ(d.get<void*>(JEX_DFT_FORWARD_ENTRY), nullptr);
  }
}

TEST(Commit, WorkSizesAsStated) {
  const struct { jex_int n, work; } rows[] = {{1, 0}, {16, 0}, {17, 304}, {149, 2416}};
  for (const auto& [n, work] : rows) {
    Descriptor d = Descriptor::complex_1d<jex_dcomplex>(n);
    ASSERT_EQ(d.commit(), 0);
    EXPECT_EQ(d[JEX_DFT_WORK_SIZE], work) << n;
    EXPECT_EQ(d[JEX_DFT_MAX_WORK_SIZE], (work + 63) / 64 * 64) << n;
    EXPECT_EQ(d.get<void*>(JEX_DFT_WORK_BUFFERS) != nullptr, work > 0);
    EXPECT_EQ(d.get<uintptr_t>(JEX_DFT_WORK_BUFFERS) % 64, 0u);
  }
}

// floor(sqrt(b ln b / 313600) + 1/2), b the bytes, limited by the core's threads.
TEST(Commit, ThreadsOfACall) {
  const struct {
    jex_int n, count, limit, users, word_58, threads;
    bool one_call;
  } rows[] = {
      {1000, 1, 8, 1, 0, 1, true},     // one transform
      {1000, 1, 8, 1, 1, 2, true},     // the core keeps it for its parallel drivers: 2 at least
      {100000, 1, 64, 1, 1, 9, true},  // b = 1.6e6: 8.54
      {1000, 3, 8, 1, 0, 1, false},    // b = 48000: 1.28
      {1000, 30, 8, 1, 0, 4, false},   // b = 480000: 4.47
      {1000, 300, 8, 1, 0, 8, false}, {1000, 300, 2, 1, 0, 2, false},
      {1000, 300, 8, 4, 0, 1, false},
  };
  for (const auto& r : rows) {
    Descriptor d = Descriptor::complex_1d<jex_dcomplex>(r.n);
    d[JEX_DFT_NUMBER_OF_TRANSFORMS] = r.count;
    d[JEX_DFT_INPUT_DISTANCE] = r.n;
    d[JEX_DFT_THREADS] = r.limit;
    d[JEX_DFT_USER_THREADS] = r.users;
    d[JEX_DFT_KERNEL_AUX] = r.word_58;
    ASSERT_EQ(d.commit(), 0);
    const double bytes = 16.0 * r.n * r.count;
    const int t = int(std::floor(std::sqrt(bytes * std::log(bytes) / 313600) + 0.5));
    const int least = r.count == 1 ? 2 : 1;
    const bool is_one = r.users > 1 || (r.count == 1 && !r.word_58);
    EXPECT_EQ(d[JEX_DFT_THREADS], is_one ? 1 : std::min(r.limit, std::max(t, least)))
        << r.n << " x " << r.count;
    EXPECT_EQ((d[JEX_DFT_LAYOUT_FLAGS] & 5) == 5, r.one_call);
    EXPECT_EQ(d[JEX_DFT_LAYOUT_FLAGS] & 2, 0);
    if (r.users > 1) {
      const auto* slots = d.get<const jex_int*>(JEX_DFT_PER_THREAD_SLOTS);
      for (int i = 0; i < r.users; ++i) EXPECT_EQ(slots[i], 0);
    }
    // A transform left to parallel drivers has no kernels, and says so.
    if (r.word_58) {
      std::vector<jex_dcomplex> x(r.n);
      EXPECT_EQ(d.compute(true, x.data()), 7);
    }
  }
}

jex_int cleanups = 0;
jex_int count_cleanup(jex_dft_descriptor*) { return ++cleanups; }

TEST(Commit, KeepsTheAuxiliaryBuffersAndTheCleanup) {
  cleanups = 0;
  {
    Descriptor d = Descriptor::complex_1d<jex_dcomplex>(100);
    const int words[] = {JEX_DFT_AUX_BUFFER_A, JEX_DFT_AUX_BUFFER_B, JEX_DFT_AUX_BUFFER_C};
    void* buffers[3];
    for (int i = 0; i < 3; ++i) d.set(words[i], buffers[i] = jex_serv_jex_malloc(64, 16));
    d.set(JEX_DFT_CLEANUP_PENDING, 1);
    d.set(JEX_DFT_CLEANUP_FN, &count_cleanup);
    for (int round = 0; round < 2; ++round) {
      ASSERT_EQ(d.commit(), 0);
      for (int i = 0; i < 3; ++i) EXPECT_EQ(d.get<void*>(words[i]), buffers[i]);
      EXPECT_EQ(cleanups, 0);
    }
    EXPECT_EQ(jex_dft_free_allocated_buffers(d), 0);
    for (const int word : words) EXPECT_EQ(d.get<void*>(word), nullptr);
    EXPECT_EQ(cleanups, 1);
  }
  EXPECT_EQ(cleanups, 1) << "the second release has nothing to clean";
}

}  // namespace
