// syr2k_nb and her2k_nb: the columns of the panel are those of syr2k and her2k, the others stay.

#include "blas/level3/operand.h"

namespace jex::test {
namespace {

template <class T, class S, class Panel, class Whole>
void check(Panel panel, Whole whole) {
  for (const unsigned seed : case_seeds(40))
    for (const char uplo : {'U', 'L'})
      for (const char trans : {'N', is_complex<T> && !is_complex<S> ? 'C' : 'T'}) {
        Random random(seed);
        const int n = random.between(0, random.pick({10, 40, 140})), k = random.between(0, 30);
        const int nb = random.between(-1, n + 3), width = std::max(0, std::min(n, nb));
        Matrix<T> a(random, trans == 'N' ? n : k, trans == 'N' ? k : n),
            b(random, a.rows, a.columns);
        Matrix<T> c(random, n, n, triangle_of(uplo));
        const T alpha = factor<T>(random);
        const S beta = factor<S>(random);
        panel(&uplo, &trans, &n, &nb, &k, &alpha, a.data(), &a.ld, b.data(), &b.ld, &beta, c.data(),
              &c.ld);
        EXPECT_TRUE(c.unchanged(false)) << "beside the triangle";
        // The whole update of the same C.
        std::vector<T> model(size_t(c.ld) * n);
        c.for_elements([&](int i, int j) { model[i + j * c.ld] = c.before(i, j); });
        whole(&uplo, &trans, &n, &k, &alpha, a.data(), &a.ld, b.data(), &b.ld, &beta, model.data(),
              &c.ld);
        const double bound = 50 * (k + 8) * std::numeric_limits<Real<T>>::epsilon() *
                             (2 * k * 8 * std::abs(wide(alpha)) + 8 * std::abs(wide(beta)) + 1);
        c.for_elements([&](int i, int j) {
          const bool in = uplo == 'U' ? j >= n - width : j < width;
          const Wide other = wide(in ? model[i + j * c.ld] : c.before(i, j));
          EXPECT_TRUE(std::abs(wide(c.at(i, j)) - other) <= (in ? bound : 0)) << i << " " << j;
        });
        if (testing::Test::HasFailure())
          FAIL() << "JEX_CASE=" << seed << " " << uplo << trans << " " << n << " " << nb << " "
                 << k;
      }
}

TEST(Rank2kPanel, IsPartOfTheWholeUpdate) {
  check<float, float>(jex_blas_ssyr2k_nb, jex_blas_xssyr2k);
  check<double, double>(jex_blas_dsyr2k_nb, jex_blas_xdsyr2k);
  check<jex_scomplex, jex_scomplex>(jex_blas_csyr2k_nb, jex_blas_xcsyr2k);
  check<jex_dcomplex, jex_dcomplex>(jex_blas_zsyr2k_nb, jex_blas_xzsyr2k);
  check<jex_scomplex, float>(jex_blas_cher2k_nb, jex_blas_xcher2k);
  check<jex_dcomplex, double>(jex_blas_zher2k_nb, jex_blas_xzher2k);
}

}  // namespace
}  // namespace jex::test
