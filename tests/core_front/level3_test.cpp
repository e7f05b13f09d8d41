// The front of level 3: C forms against whole numbers, and the same bits for every thread count.

#include "core_front/matrices.h"
#include "front/blas/level3.h"

#include <jex/blas.h>
#include <jex/core.h>

#include <gtest/gtest.h>

#include <thread>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace jex::test {
namespace {

// As many shares as threads, near in size, that end where units do and cover everything.
TEST(Shares, GiveEveryThreadItsPart) {
  for (const int threads : {1, 2, 3, 7})
    for (const int n : {0, 1, 47, 48, 100, 1000, 2000, 2003}) {
      const front::Shares shares(n, 48, 1e12, threads);
      ASSERT_EQ(shares.parts(), std::clamp(n / 48, 1, threads)) << n;
      int next = 0;
      for (int i = 0; i < shares.parts(); ++i) {
        EXPECT_EQ(shares.begin(i), next);
        EXPECT_EQ(shares.begin(i) % 48, 0);
        EXPECT_LE(shares.count(i), n / shares.parts() + 2 * 48);
        next += shares.count(i);
      }
      EXPECT_EQ(next, n);
    }
}

template <class T>
struct Gemm;
#define JEX_TEST_GEMM(t, T)                         \
  template <>                                       \
  struct Gemm<T> {                                  \
    static constexpr auto fortran = jex_##t##gemm_; \
    static constexpr auto c = jex_cblas_##t##gemm;  \
  };
JEX_TEST_GEMM(s, float)
JEX_TEST_GEMM(d, double)
JEX_TEST_GEMM(c, jex_scomplex)
JEX_TEST_GEMM(z, jex_dcomplex)

template <class T>
struct FrontOfGemm : testing::Test {};
using All4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(FrontOfGemm, All4);

Matrix times(const Matrix& a, const Matrix& b) {
  Matrix c(a.m, b.n);
  for (int i = 0; i < a.m; ++i)
    for (int j = 0; j < b.n; ++j)
      for (int p = 0; p < a.n; ++p) c(i, j) += a(i, p) * b(p, j);
  return c;
}

Layout layout(int m, int n, bool by_rows, int spare) {
  return {Kind::full, by_rows, Part::all, m, n, 0, 0, std::max(1, by_rows ? n : m) + spare};
}

// By columns and by rows, all pairs of operations.
TYPED_TEST(FrontOfGemm, CFormsComputeTheProduct) {
  using T = TypeParam;
  for (const unsigned seed : case_seeds(200)) {
    Random random(seed);
    const bool by_rows = random.between(0, 1);
    const int m = random.between(0, 12), n = random.between(0, 20), k = random.between(0, 20);
    const char ops[] = {random.pick({'N', 'T', 'C'}), random.pick({'N', 'T', 'C'})};
    const auto stored = [&](char op, int rows, int columns) {
      return op == 'N' ? layout(rows, columns, by_rows, random.between(0, 2))
                       : layout(columns, rows, by_rows, random.between(0, 2));
    };
    const Layout la = stored(ops[0], m, k), lb = stored(ops[1], k, n),
                 lc = layout(m, n, by_rows, random.between(0, 2));
    const Matrix a = random_matrix<T>(random, la), b = random_matrix<T>(random, lb);
    Matrix c = random_matrix<T>(random, lc);
    const Number alpha = whole<T>(random), beta = whole<T>(random);
    const auto ma = la.in_memory<T>(a), mb = lb.in_memory<T>(b);
    auto mc = lc.in_memory<T>(c);
    const Matrix product = times(a.op(ops[0]), b.op(ops[1]));
    for (int i = 0; i < m; ++i)
      for (int j = 0; j < n; ++j) c(i, j) = alpha * product(i, j) + beta * c(i, j);
    const auto option = [](char op) {
      return op == 'N' ? JEX_CBLAS_NO_TRANS : op == 'T' ? JEX_CBLAS_TRANS : JEX_CBLAS_CONJ_TRANS;
    };
    const T ea = element<T>(alpha), eb = element<T>(beta);
    const auto scalar = [](const T& x) {
      if constexpr (is_complex<T>)
        return &x;
      else
        return x;
    };
    Gemm<T>::c(by_rows ? JEX_CBLAS_ROW_MAJOR : JEX_CBLAS_COL_MAJOR, option(ops[0]), option(ops[1]),
               m, n, k, scalar(ea), ma.data(), la.ld, mb.data(), lb.ld, scalar(eb), mc.data(),
               lc.ld);
    ASSERT_EQ(difference(mc, lc.in_memory<T>(c)), "")
        << "JEX_CASE=" << seed << (by_rows ? " rows " : " columns ") << ops[0] << ops[1] << " " << m
        << " " << n << " " << k;
  }
}

template <class T>
std::vector<T> product(int threads, int m, int n, int k, const char* ops) {
  Random random(7);
  const auto fill = [&](int count) {
    std::vector<T> x(count);
    for (T& e : x) e = random_value<T>(random, Values::plain);
    return x;
  };
  const std::vector<T> a = fill(m * k), b = fill(k * n);
  std::vector<T> c = fill(m * n);
  T alpha = a[0], beta = b[0];
  const int lda = ops[0] == 'N' ? m : k, ldb = ops[1] == 'N' ? k : n;
  jex_set_num_threads(threads);
  EXPECT_EQ(jex_get_num_threads(), threads);
  Gemm<T>::fortran(ops, ops + 1, &m, &n, &k, &alpha, a.data(), &lda, b.data(), &ldb, &beta,
                   c.data(), &m);
  jex_set_num_threads(0);
  return c;
}

TYPED_TEST(FrontOfGemm, ThreadsChangeNoBit) {
  struct Shape {
    int m, n, k;
  };
  for (const auto& [m, n, k] : {Shape{301, 203, 150}, Shape{151, 403, 130}, Shape{2, 900, 700}})
    for (const char* ops : {"NN", "TT"}) {
      const auto one = product<TypeParam>(1, m, n, k, ops);
      for (const int threads : {2, 3, 7}) {
        const auto many = product<TypeParam>(threads, m, n, k, ops);
        EXPECT_EQ(memcmp(one.data(), many.data(), one.size() * sizeof(one[0])), 0)
            << threads << " threads, " << m << " " << n << " " << k << " " << ops;
      }
    }
}

// Callers on several threads share one pool, and a child process makes its own.
TEST(Threads, ServeManyCallersAndChildren) {
  const auto expected = product<double>(1, 300, 300, 100, "NN");
  jex_set_num_threads(3);
  const auto right = [&] {
    Random random(7);
    std::vector<double> a(300 * 100), b(100 * 300), c(300 * 300);
    for (auto* x : {&a, &b, &c})
      for (double& e : *x) e = random_value<double>(random, Values::plain);
    const int n = 300, k = 100;
    jex_dgemm_("N", "N", &n, &n, &k, &a[0], a.data(), &n, b.data(), &k, &b[0], c.data(), &n);
    return c == expected;
  };
  std::vector<std::thread> callers;
  std::atomic<int> wrong{0};
  for (int i = 0; i < 4; ++i)
    callers.emplace_back([&] {
      for (int turn = 0; turn < 10; ++turn) wrong += !right();
    });
  for (auto& caller : callers) caller.join();
  EXPECT_EQ(wrong, 0);
#ifndef _WIN32
  const pid_t child = fork();
  if (child == 0) _exit(right() ? 0 : 1);
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
#endif
  jex_set_num_threads(0);
}

}  // namespace
}  // namespace jex::test
