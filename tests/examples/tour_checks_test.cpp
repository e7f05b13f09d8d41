// The checks of the tour hold with the module's kernels and fail with each kernel spoiled.
#include <cmath>
#include <functional>
#include <limits>
#include <ostream>

#include <gtest/gtest.h>

#include "families/errors.h"
#include "tour/family.h"
#include "tour/text.h"
#include "tour/tour.h"

#include "support/process.h"

namespace jex::tour {
namespace {

const Module& good() { return *module(); }

using Int = const jex_int*;
using Real = const double*;

// Off by about 1e-12, some 4,500 eps.
constexpr double off = 1 + 1e-12;

double wrong_dot(Int n, Real x, Int incx, Real y, Int incy) {
  return good().jex_blas_ddot(n, x, incx, y, incy) * off;
}
double nan_dot(Int, Real, Int, Real, Int) { return std::nan(""); }
// Takes the last product of short sums for nothing: what a wrong tail would do.
double short_dot(Int n, Real x, Int incx, Real y, Int incy) {
  const jex_int fewer = *n - 1;
  return good().jex_blas_ddot(&fewer, x, incx, y, incy);
}
double wrong_nrm2(Int n, Real x, Int incx) { return good().jex_blas_dnrm2(n, x, incx) * off; }
double wrong_asum(Int n, Real x, Int incx) { return good().jex_blas_dasum(n, x, incx) * off; }
void wrong_axpy(Int n, Real alpha, Real x, Int incx, double* y, Int incy) {
  const double wrong = *alpha * off;
  good().jex_blas_daxpy(n, &wrong, x, incx, y, incy);
}
void wrong_scal(Int n, Real alpha, double* x, Int incx) {
  const double wrong = *alpha * off;
  good().jex_blas_dscal(n, &wrong, x, incx);
}
jex_int next_index(Int n, Real x, Int incx) { return good().jex_blas_idamax(n, x, incx) + 1; }
// The second largest element in place of the largest.
jex_int second_index(Int n, Real x, Int incx) {
  std::vector<double> rest(x, x + *n);
  rest[good().jex_blas_idamax(n, x, incx) - 1] = 0;
  return good().jex_blas_idamax(n, rest.data(), incx);
}

void wrong_symmetric(Int first, Int last, Int m, Real alpha, Real a, Int columns, Int begin,
                     Int end, Real x, double* y) {
  const double wrong = *alpha * off;
  good().jex_spblas_dcsr1nslnf__mvout_par(first, last, m, &wrong, a, columns, begin, end, x, y);
}
// Leaves the last unknown of a solve as it was.
void short_lower(Int m, Real alpha, Real a, Int columns, Int begin, Int end, double* y) {
  const jex_int fewer = *m - 1;
  good().jex_spblas_dcsr1ntlnf__svout_seq(&fewer, alpha, a, columns, begin, end, y);
}
void nan_transposed(Int, Real, Real, Int, Int, Int, double* y) { *y = std::nan(""); }

// An entry that does nothing, with any parameters.
template <class Result, class... Parameters>
void skip(Result (*&entry)(Parameters...)) {
  entry = [](Parameters...) -> Result { return Result(); };
}

// The same buffer for each request, and what it held stays.
void* one_buffer(uint32_t, jex_int) {
  alignas(128) static double numbers[5000];
  return numbers;
}

struct Spoiled {
  const char *family, *name;
  void (*spoil)(Module&);
};

class SpoiledKernel : public testing::TestWithParam<Spoiled> {};

// One family, or all of them.
bool tour_holds(const Module& kernels, const std::string& family, std::string* printed) {
  const test::Folder folder;
  Options options;
  options.out = folder / "out";
  options.family = family;
  testing::internal::CaptureStdout();
  const bool holds = show(options, kernels);
  *printed = testing::internal::GetCapturedStdout();
  return holds;
}

TEST(Tour, HoldsWithTheModule) {
  std::string printed;
  EXPECT_TRUE(tour_holds(good(), "", &printed));
  EXPECT_EQ(printed.find("FAILS"), printed.npos) << printed;
  EXPECT_NE(printed.find("holds"), printed.npos) << printed;
}

TEST_P(SpoiledKernel, IsFound) {
  Module spoiled = good();
  GetParam().spoil(spoiled);
  std::string printed;
  EXPECT_FALSE(tour_holds(spoiled, GetParam().family, &printed));
  EXPECT_NE(printed.find("FAILS"), printed.npos) << printed;
}

const Spoiled spoiled_kernels[] = {
    {"level1", "ddot", [](Module& m) { m.jex_blas_ddot = wrong_dot; }},
    {"level1", "ddot_nan", [](Module& m) { m.jex_blas_ddot = nan_dot; }},
    {"level1", "ddot_tail", [](Module& m) { m.jex_blas_ddot = short_dot; }},
    {"level1", "dnrm2", [](Module& m) { m.jex_blas_dnrm2 = wrong_nrm2; }},
    {"level1", "dasum", [](Module& m) { m.jex_blas_dasum = wrong_asum; }},
    {"level1", "daxpy", [](Module& m) { m.jex_blas_daxpy = wrong_axpy; }},
    {"level1", "dscal", [](Module& m) { m.jex_blas_dscal = wrong_scal; }},
    {"level1", "idamax_next", [](Module& m) { m.jex_blas_idamax = next_index; }},
    {"level1", "idamax_second", [](Module& m) { m.jex_blas_idamax = second_index; }},
    {"level2", "dsymv", [](Module& m) { skip(m.jex_blas_dsymv); }},
    {"level2", "dtrsv", [](Module& m) { skip(m.jex_blas_dtrsv); }},
    {"level3", "dsyrk", [](Module& m) { skip(m.jex_blas_xdsyrk); }},
    {"level3", "dtrsm", [](Module& m) { skip(m.jex_blas_xdtrsm); }},
    {"sparse", "dcsrsymv", [](Module& m) { m.jex_spblas_dcsr1nslnf__mvout_par = wrong_symmetric; }},
    {"sparse", "dcsrsv", [](Module& m) { m.jex_spblas_dcsr1ntlnf__svout_seq = short_lower; }},
    {"sparse", "dcsrsv_t", [](Module& m) { m.jex_spblas_dcsr1ttlnf__svout_seq = nan_transposed; }},
    {"trigonometric", "forward",
     [](Module& m) {
       m.jex_pdett_d_forward_trig_transform = m.jex_pdett_d_backward_trig_transform;
     }},
    {"trigonometric", "backward",
     [](Module& m) {
       m.jex_pdett_d_backward_trig_transform = m.jex_pdett_d_forward_trig_transform;
     }},
    {"extended", "dtrsv", [](Module& m) { skip(m.jex_blas_dtrsv); }},
    {"integers", "mul", [](Module& m) { skip(m.jex_gmp___gmpz_mul); }},
    {"integers", "invert", [](Module& m) { skip(m.jex_gmp___gmpz_invert); }},
    {"integers", "powm_sec", [](Module& m) { skip(m.jex_gmp___gmpz_powm_sec); }},
    {"integers", "powm_ui", [](Module& m) { skip(m.jex_gmp___gmpz_powm_ui); }},
    {"integers", "probab_prime", [](Module& m) { skip(m.jex_gmp___gmpz_probab_prime_p); }},
    {"memory", "allocate",
     [](Module& m) {
       m.jex_serv_allocate = one_buffer;
       skip(m.jex_serv_deallocate);
     }},
    {"memory", "freebuffers", [](Module& m) { skip(m.jex_serv_freebuffers); }},
};
INSTANTIATE_TEST_SUITE_P(Families, SpoiledKernel, testing::ValuesIn(spoiled_kernels),
                         [](const auto& info) {
                           return info.param.family + std::string("_") + info.param.name;
                         });

TEST(Check, HoldsUpToItsBoundAndNoFurther) {
  const double eps = std::numeric_limits<double>::epsilon();
  EXPECT_TRUE(compare("q", "", 1 + 4 * eps, 1.0L, 1, 4).holds());
  EXPECT_FALSE(compare("q", "", 1 + 5 * eps, 1.0L, 1, 4).holds());
  EXPECT_TRUE(compare("q", "", 1 + 5 * eps, 1.0L, 2, 4).holds());
  EXPECT_FALSE(compare("q", "", std::nan(""), 1.0L, 1, 4).holds());
  EXPECT_FALSE(compare("q", "", HUGE_VAL, 1.0L, 1, 4).holds());
  EXPECT_EQ(compare("q", "", -6, -2.0L, 3, 4).condition, 1.5);
}

TEST(Check, MeasuresOfErrorKeepANan) {
  const double nan = std::nan("");
  double worst = 0;
  for (const double error : {1.0, 3.0, 2.0}) keep_worst(worst, error);
  EXPECT_EQ(worst, 3);
  for (const double error : {nan, 1.0}) keep_worst(worst, error);
  EXPECT_TRUE(std::isnan(worst));

  RelativeError error;
  error.add(3, 3);
  EXPECT_EQ(error.in_eps(), 0);
  error.add(4 + 20 * std::numeric_limits<double>::epsilon(), 4);
  EXPECT_NEAR(error.in_eps(), 4, 1e-9);
  error.add(nan, 0);
  error.add(1, 1);
  EXPECT_FALSE(error.in_eps() <= 1e300);

  using Numbers = std::vector<double>;
  EXPECT_EQ(differing(Numbers{1, 0.0, nan}, Numbers{1, 0.0, nan}), 0u);
  EXPECT_EQ(differing(Numbers{1, 0.0, nan}, Numbers{2, -0.0, 0}), 3u);
  EXPECT_TRUE(exactly("", "", 0, "bits").holds());
  EXPECT_FALSE(exactly("", "", 1, "bits").holds());
}

TEST(Text, PrintableKeepsUtf8AndReplacesTheRest) {
  EXPECT_EQ(printable("caf\xc3\xa9 \xe2\x88\x9a \xf0\x9f\x8c\x9e"),
            "caf\xc3\xa9 \xe2\x88\x9a \xf0\x9f\x8c\x9e");
  EXPECT_EQ(printable("a\tb\x7f\x1b"), "a?b??");
  EXPECT_EQ(printable("\xe9t\xe9"), "?t?");               // Latin 1
  EXPECT_EQ(printable("\xc0\xaf\xed\xa0\x80"), "?????");  // overlong, surrogate
  EXPECT_EQ(printable("\xef\xbf\xbf"), "???");            // no character
  EXPECT_EQ(printable("\xc2\x85"), "??");                 // a control
  EXPECT_EQ(printable("\xe2\x88"), "??");                 // cut short
  EXPECT_EQ(printable("abcdef", 3), "abc...");
  EXPECT_EQ(printable("ab\xc3\xa9", 3), "ab...");  // never half a character
}

TEST(CommandLine, IsRead) {
  const Options none = parse({});
  EXPECT_FALSE(none.help);
  EXPECT_EQ(none.out, "jex-tour-out");
  EXPECT_EQ(none.file, "");
  const Options all = parse({"data.csv", "--out", "o", "--family", "level1"});
  EXPECT_EQ(all.file, "data.csv");
  EXPECT_EQ(all.out, "o");
  EXPECT_EQ(all.family, "level1");
  EXPECT_EQ(all.json, "");
  EXPECT_TRUE(parse({"--help"}).help);
  const Options sized =
      parse({"--size", "64", "--threads", "3", "--family", "poisson", "--json", "r.json"});
  EXPECT_EQ(sized.size, 64);
  EXPECT_EQ(sized.threads, 3);
  EXPECT_EQ(sized.json, "r.json");
}

}  // namespace
}  // namespace jex::tour
