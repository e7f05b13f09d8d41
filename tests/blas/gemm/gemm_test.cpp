// The matrix multiply: real types bit for bit, complex ones within bounds, nothing read or written
// beside the operands, and the work buffer given back.

#include "blas/gemm/gemm_model.h"
#include "blas/level1/level1.h"
#include "serv/memory_fixture.h"

#include <jex/core_imports.h>

namespace jex::test {
namespace {

template <class T>
T scalar(Random& random) {
  const auto part = [&] {
    return Real<T>(random.pick({0.0, -0.0, 1.0, -1.0, random.real(-2, 2), random.real(-2, 2)}));
  };
  if constexpr (is_complex<T>)
    return {part(), random.between(0, 1) ? Real<T>(0) : part()};
  else
    return part();
}

// Sizes around the edges of tiles, small problems and blocks; at most one large one.
int size(Random& random, bool large, std::initializer_list<int> edges) {
  if (large) return random.pick(edges) + random.between(-3, 3);
  return random.between(0, 3) ? random.between(0, 40) : random.between(0, 9);
}

template <class T>
Multiply<T> problem(Random& random) {
  const int large = random.between(0, 4);
  Multiply<T> q;
  q.m = size(random, large == 0, {128, 256, 512, 700, 1024});
  q.n = size(random, large == 1, {64, 128, 240, 512});
  q.k = size(random, large >= 2, {64, 128, 240, 256, 480, 512, 700});
  q.transa = random.pick({'N', 'n', 'T', 't', 'C', 'c'});
  q.transb = random.pick({'N', 'n', 'T', 't', 'C', 'c'});
  q.alpha = scalar<T>(random);
  q.beta = scalar<T>(random);
  return q;
}

template <class T>
std::string text(const Multiply<T>& q) {
  std::string s = std::string(1, q.transa) + q.transb;
  for (const int n : {q.m, q.n, q.k}) s += " " + std::to_string(n);
  return s;
}

template <class TA, class T>
struct Call {
  Multiply<T> q;
  GeneralMatrix<TA> a;
  GeneralMatrix<T> b, c;

  Call(Random& random, const Multiply<T>& q, Values values)
      : q(q),
        a(random, is_plain(q.transa) ? q.m : q.k, is_plain(q.transa) ? q.k : q.m, values),
        b(random, is_plain(q.transb) ? q.k : q.n, is_plain(q.transb) ? q.n : q.k, values),
        c(random, q.m, q.n, values) {
    if (!is_zero(q.beta)) return;
    for (int j = 0; j < q.n; ++j)  // must not be read
      for (int i = 0; i < q.m; ++i)
        memset(static_cast<void*>(c.data() + (&c.at(i, j) - &c.at(0, 0))), 0xff, sizeof(T));
  }
  template <class Entry>
  void run(Entry entry) {
    entry(&q.transa, &q.transb, &q.m, &q.n, &q.k, &q.alpha, a.data(), a.lda_address(), b.data(),
          b.lda_address(), &q.beta, c.data(), c.lda_address());
  }
};

template <class R, class Entry>
void check_real(Entry entry, int block, const Multiply<R>& q, Random& random, Values values) {
  Call<R, R> call(random, q, values);
  // The last columns are matrix-vector products, which have a model of their own.
  const bool small = q.m < 4 || q.k < 8 || q.n < 8;
  if (!is_zero(q.alpha)) {
    multiply_model(q, call.a, call.b, call.c, block);
    for (int j = small ? q.n : q.n / 4 * 4; j < q.n; ++j) {
      const bool plain = is_plain(q.transb);
      std::vector<R> x(q.k), y(q.m);
      for (int p = 0; p < q.k; ++p) x[p] = element_of(call.b, q.transb, p, j);
      // Where B's row is contiguous, and where it has an increment, the kernel adds differently.
      const int inc = plain ? 1 : *call.b.lda_address();
      const R* const source = call.b.data() + (plain ? ptrdiff_t(j) * *call.b.lda_address() : j);
      for (int i = 0; i < q.m; ++i) y[i] = call.c.at(i, j);
      GeneralEntries<R>::gemv(&q.transa, &call.a.m, &call.a.n, &q.alpha, call.a.data(),
                              call.a.lda_address(), source, &inc, &q.beta, y.data(),
                              std::vector<int>{1}.data());
      for (int i = 0; i < q.m; ++i) call.c.at(i, j) = y[i];
    }
  } else {
    for (int j = 0; j < q.n; ++j)
      for (int i = 0; i < q.m; ++i)
        call.c.at(i, j) = is_zero(q.beta) ? R(0)
                          : q.beta == 1   ? call.c.at(i, j)
                                          : call.c.at(i, j) * q.beta;
  }
  call.run(entry);
  expect_model(call.a, call.b, call.c);
}

template <class R, class Entry>
void check_cases(Entry entry, int block) {
  for (const unsigned seed : case_seeds(300)) {
    Random random(seed);
    const auto q = problem<R>(random);
    check_real<R>(entry, block, q, random, random.between(0, 2) ? Values::plain : Values::special);
    if (testing::Test::HasFailure()) FAIL() << "JEX_CASE=" << seed << " " << text(q);
  }
}

int single_block() { return jex_serv_l2cache() == 3 ? 480 : 240; }

TEST(Gemm, DoubleInTheToldOrder) { check_cases<double>(jex_blas_xdgemm, 128); }
TEST(Gemm, SingleInTheToldOrder) { check_cases<float>(jex_blas_xsgemm, single_block()); }

// Wider than a block of columns, taller than a block of rows, deeper than a block of steps.
TEST(Gemm, BlocksInAllDirections) {
  Random random(1);
  for (const char transb : {'N', 'T'}) {
    check_real<double>(jex_blas_xdgemm, 128, {517, 2003, 130, 'N', transb, 1, -0.5}, random,
                       Values::plain);
    check_real<float>(jex_blas_xsgemm, single_block(), {517, 203, 500, 'T', transb, 0.5f, 1},
                      random, Values::plain);
  }
}

// B read across its columns, with rows that meet in the cache or do not, by every way: the last
// step and the last row have no neighbour.
TEST(Gemm, BAcrossItsColumns) {
  Random random(2);
  for (const int n : {256, 257})
    for (const int mk : {9, 19, 45}) {
      check_real<double>(jex_blas_xdgemm, 128, {mk, n, mk, 'N', 'T', 1, -0.5}, random,
                         Values::plain);
      check_real<float>(jex_blas_xsgemm, single_block(), {mk, n, mk, 'T', 'T', 0.5f, 0}, random,
                        Values::special);
    }
}

// Error of an element in units of eps times the sum of the magnitudes of its terms.
template <class TA, class T, class Entry>
void check_complex(Entry entry, bool by_parts) {
  for (const unsigned seed : case_seeds(120)) {
    Random random(seed);
    auto q = problem<T>(random);
    Call<TA, T> call(random, q, Values::plain);
    const GeneralMatrix<T>& before = call.c;
    std::vector<T> old(size_t(q.m) * q.n);
    for (int j = 0; j < q.n; ++j)
      for (int i = 0; i < q.m; ++i) old[i + size_t(j) * q.m] = call.c.at(i, j);
    call.run(entry);
    for (int j = 0; j < q.n; ++j)
      for (int i = 0; i < q.m; ++i) {
        const auto [value, scale] =
            exact_element(q, call.a, call.b, old[i + size_t(j) * q.m], i, j);
        T& ours = call.c.data()[&call.c.at(i, j) - &call.c.at(0, 0)];
        const double bound =
            std::numeric_limits<Real<T>>::epsilon() * scale * (by_parts ? 4 : 1) * (q.k + 8);
        if (is_zero(q.alpha) && is_zero(q.beta))
          EXPECT_TRUE(same_bits(ours, T{}));
        else
          EXPECT_TRUE(std::abs(std::complex<double>(ours.re, ours.im) - value) <= bound)
              << ours.re << " " << ours.im << " for " << value << " at " << i << " " << j;
        call.c.at(i, j) = ours;
      }
    expect_model(call.a, call.b, before);
    if (testing::Test::HasFailure()) FAIL() << "JEX_CASE=" << seed << " " << text(q);
  }
}

TEST(Gemm, ComplexWithinBounds) {
  check_complex<jex_scomplex, jex_scomplex>(jex_blas_xcgemm, false);
  check_complex<jex_dcomplex, jex_dcomplex>(jex_blas_xzgemm, false);
}
TEST(Gemm, ThreeProductsWithinBounds) {
  check_complex<jex_scomplex, jex_scomplex>(jex_blas_xcgemm3m, true);
  check_complex<jex_dcomplex, jex_dcomplex>(jex_blas_xzgemm3m, true);
}
TEST(Gemm, RealTimesComplexWithinBounds) {
  check_complex<float, jex_scomplex>(jex_blas_xscgemm, false);
  check_complex<double, jex_dcomplex>(jex_blas_xdzgemm, false);
}

// The pieces put together are the multiply, bit for bit.
#define JEX_TEST_PIECES(p, R, T)                                                          \
  TEST(GemmPieces, p) {                                                                   \
    jex_int rows, columns, steps, a_bytes, b_bytes;                                       \
    jex_blas_##p##gemm_blk_info(&rows, &columns, &steps, &a_bytes, &b_bytes);             \
    for (const char op : {'N', 'T', 'C'}) {                                               \
      Random random(op);                                                                  \
      Multiply<T> q{                                                                      \
          rows - 1, columns - 1, steps - 1, op == 'C' ? 'N' : op, op, {2, -1}, {0.5, 1}}; \
      Call<R, T> whole(random, q, Values::plain);                                         \
      Guarded place_a(a_bytes), place_b(b_bytes);                                         \
      R* const a = static_cast<R*>(place_a.place(a_bytes, 0, Against::back));             \
      R* const b = static_cast<R*>(place_b.place(b_bytes, 0, Against::back));             \
      T* const c = &whole.c.at(0, 0);                                                     \
      jex_blas_##p##gemm_mscale(&q.m, &q.n, &q.beta, c, whole.c.lda_address());           \
      (op == 'T' ? jex_blas_##p##gemm_copyat : jex_blas_##p##gemm_copyan)(                \
          &q.m, &q.k, whole.a.data(), whole.a.lda_address(), a);                          \
      (op == 'N'   ? jex_blas_##p##gemm_copybn                                            \
       : op == 'T' ? jex_blas_##p##gemm_copybt                                            \
                   : jex_blas_##p##gemm_copybc)(&q.n, &q.k, &q.alpha, whole.b.data(),     \
                                                whole.b.lda_address(), b);                \
      jex_blas_##p##gemm_inner(&q.m, &q.n, &q.k, a, b, c, whole.c.lda_address());         \
      whole.run(jex_blas_x##p##gemm);                                                     \
      expect_model(whole.a, whole.b, whole.c);                                            \
    }                                                                                     \
  }
JEX_TEST_PIECES(sc, float, jex_scomplex)
JEX_TEST_PIECES(dz, double, jex_dcomplex)

template <class T, class Entry>
void check_nothing_read(Entry entry) {
  T* const nowhere = nullptr;
  const int zero = 0, nine = 9;
  T none{}, unity{};
  reinterpret_cast<Real<T>&>(unity) = 1;
  const auto call = [&](const int& m, const int& n, const T& alpha, const T& beta, T* c) {
    entry("N", "T", &m, &n, &nine, &alpha, nowhere, &nine, nowhere, &nine, &beta, c, &nine);
  };
  call(zero, nine, unity, none, nowhere);
  call(nine, zero, unity, none, nowhere);
  call(nine, nine, none, unity, nowhere);
  std::vector<T> c(81);
  memset(static_cast<void*>(c.data()), 0xff, 81 * sizeof(T));
  call(nine, nine, none, none, c.data());
  for (const T& e : c) EXPECT_TRUE(same_bits(e, T{}));
}

TEST(Gemm, ReadsNothingInVain) {
  check_nothing_read<float>(jex_blas_xsgemm);
  check_nothing_read<double>(jex_blas_xdgemm);
  check_nothing_read<jex_scomplex>(jex_blas_xcgemm);
  check_nothing_read<jex_dcomplex>(jex_blas_xzgemm3m);
}

class GemmMemory : public Memory {};

template <class T, class Entry>
void multiply_ones(Entry entry, int n) {
  std::vector<T> a(size_t(n) * n), b(a), c(a);
  T one{};
  reinterpret_cast<Real<T>&>(one) = 1;
  entry("N", "N", &n, &n, &n, &one, a.data(), &n, b.data(), &n, &one, c.data(), &n);
}

// The buffer is in no use after a call, and the next one finds it in the thread's cache.
TEST_F(GemmMemory, BufferIsGivenBack) {
  const auto twice = [](auto multiply, uint32_t size) {
    jex_serv_jex_thread_free_buffers();
    multiply();
    const Held first = held();
    EXPECT_EQ(last_record().req[0], size);
    for (const uint32_t inuse : last_record().inuse) EXPECT_EQ(inuse, 0u);
    multiply();
    EXPECT_EQ(held(), first);
  };
  twice([] { multiply_ones<double>(jex_blas_xdgemm, 140); }, 140 * 1024 + 551168);
  const uint32_t single = single_block() * (256 + 2048) + 16512;
  twice([] { multiply_ones<float>(jex_blas_xsgemm, 140); }, single);
  twice([] { multiply_ones<jex_scomplex>(jex_blas_xcgemm, 140); }, single);
  twice([] { multiply_ones<jex_dcomplex>(jex_blas_xzgemm, 140); }, 128 * (4096 + 64) + 16512);
}

// Nothing beyond the buffer is written: the hook keeps a mark behind each block.
TEST_F(GemmMemory, BufferHoldsTheLargestBlocks) {
  const int n = 530;
  const auto check = [&](auto multiply) {
    jex_serv_jex_thread_free_buffers();
    const int faults = xmalloc.faults;
    multiply();
    jex_serv_jex_thread_free_buffers();
    EXPECT_EQ(xmalloc.faults, faults);
  };
  check([&] { multiply_ones<float>(jex_blas_xsgemm, n); });
  check([&] { multiply_ones<double>(jex_blas_xdgemm, n); });
  check([&] { multiply_ones<jex_scomplex>(jex_blas_xcgemm3m, n); });
  check([&] { multiply_ones<jex_dcomplex>(jex_blas_xzgemm, n); });
}

// There is no other way without a buffer, and no check.
TEST_F(GemmMemory, NoBufferEndsTheProgram) {
  jex_serv_jex_thread_free_buffers();
  EXPECT_DEATH(
      {
        xmalloc.fail_in = 1;
        multiply_ones<double>(jex_blas_xdgemm, 140);
      },
      "");
}

}  // namespace
}  // namespace jex::test
