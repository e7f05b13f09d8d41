// Level 3 on matrices with structure: the same bits for every number of threads.

#include "support/vectors.h"

#include <jex/blas.h>
#include <jex/core.h>

#include <gtest/gtest.h>

#include <functional>

namespace jex::test {
namespace {

template <class T>
std::vector<T> filled(size_t count, unsigned seed, double scale = 1) {
  Random random(seed);
  std::vector<T> x(count);
  for (size_t i = 0; i < count * Parts<T>::count; ++i)
    reinterpret_cast<Real<T>*>(x.data())[i] = Real<T>(scale * random.real(-1, 1));
  return x;
}

// call(c) with one thread and with several, on the same C.
template <class T>
void expect_same(const std::string& what, const std::vector<T>& start,
                 const std::function<void(T*)>& call) {
  jex_set_num_threads(1);
  auto one = start;
  call(one.data());
  EXPECT_NE(memcmp(one.data(), start.data(), one.size() * sizeof(T)), 0) << what << " did nothing";
  for (const int threads : {2, 3, 7}) {
    jex_set_num_threads(threads);
    auto many = start;
    call(many.data());
    EXPECT_EQ(memcmp(one.data(), many.data(), one.size() * sizeof(T)), 0)
        << what << ", " << threads << " threads";
  }
  jex_set_num_threads(0);
}

// An update's orders leave a last block of 1, 2 and 63 columns; k is beyond a block of steps.
template <class T, class S, class RankK, class Rank2k>
void check_updates(const char* name, RankK rank_k, Rank2k rank_2k, const char* transposed) {
  for (const int n : {193, 322, 447})
    for (const char* uplo : {"U", "L"})
      for (const char* trans : {"N", transposed}) {
        const int k = 300, ld = *trans == 'N' ? n : k;
        const auto a = filled<T>(size_t(n) * k, 1), b = filled<T>(size_t(n) * k, 2),
                   c = filled<T>(size_t(n) * n, 3);
        const T alpha = filled<T>(1, 4)[0];
        const S real = filled<S>(1, 5)[0], beta = filled<S>(1, 6)[0];
        const std::string what = std::string(name) + uplo + trans + " " + std::to_string(n);
        expect_same<T>(what, c, [&](T* c) {
          rank_k(uplo, trans, &n, &k, &real, a.data(), &ld, &beta, c, &n);
        });
        expect_same<T>(what + " 2k", c, [&](T* c) {
          rank_2k(uplo, trans, &n, &k, &alpha, a.data(), &ld, b.data(), &ld, &beta, c, &n);
        });
      }
}

// Right-hand sides beyond a panel of 1,024 by one.
template <class T, class Symm, class Trmm>
void check_sides(const char* name, Symm symm, std::initializer_list<Trmm> triangular) {
  const int order = 150, vectors = 1025;
  const auto a = filled<T>(size_t(order) * order, 1, 0.02);
  auto dominant = a;
  for (int i = 0; i < order; ++i) reinterpret_cast<Real<T>&>(dominant[i * (order + 1)]) += 1;
  const auto b = filled<T>(size_t(order) * vectors, 2), c = filled<T>(size_t(order) * vectors, 3);
  const T alpha = filled<T>(1, 4)[0], beta = filled<T>(1, 5)[0];
  for (const char* side : {"L", "R"}) {
    const int m = *side == 'L' ? order : vectors, n = *side == 'L' ? vectors : order;
    for (const char* uplo : {"U", "L"}) {
      const std::string what = std::string(name) + side + uplo;
      expect_same<T>(what + " symm", c, [&](T* c) {
        symm(side, uplo, &m, &n, &alpha, a.data(), &order, b.data(), &m, &beta, c, &m);
      });
      for (const auto entry : triangular)
        expect_same<T>(what + " triangular", b, [&](T* b) {
          entry(side, uplo, "N", "N", &m, &n, &alpha, dominant.data(), &order, b, &m);
        });
    }
  }
}

TEST(Level3Threads, ChangeNoBitOfUpdates) {
  check_updates<float, float>("s", jex_ssyrk_, jex_ssyr2k_, "T");
  check_updates<double, double>("d", jex_dsyrk_, jex_dsyr2k_, "T");
  check_updates<jex_scomplex, float>("c", jex_cherk_, jex_cher2k_, "C");
  check_updates<jex_dcomplex, double>("z", jex_zherk_, jex_zher2k_, "C");
  check_updates<jex_dcomplex, jex_dcomplex>("z sy", jex_zsyrk_, jex_zsyr2k_, "T");
}

TEST(Level3Threads, ChangeNoBitBesideSymmetricAndTriangularMatrices) {
  check_sides<float>("s", jex_ssymm_, {jex_strmm_, jex_strsm_});
  check_sides<double>("d", jex_dsymm_, {jex_dtrmm_, jex_dtrsm_});
  check_sides<jex_scomplex>("c", jex_chemm_, {jex_ctrmm_, jex_ctrsm_});
  check_sides<jex_dcomplex>("z", jex_zsymm_, {jex_ztrmm_, jex_ztrsm_});
}

}  // namespace
}  // namespace jex::test
