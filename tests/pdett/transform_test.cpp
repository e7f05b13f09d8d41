// Each transform against its formula, forward then backward, and where it reads and writes.
#include "pdett/trig.h"
#include "support/guarded.h"

#include <thread>

using namespace jex::test;

namespace {

template <class R>
class Transforms : public testing::Test {};
using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(Transforms, Precisions);

// Root mean square error relative to that of the results: running sums of n / 2 terms in types 0
// and 1, and in types 4 and 5 of odd n, none in the others.
template <class R>
double allowed(int type, int n) {
  const double eps = std::numeric_limits<R>::epsilon();
  const double order = std::log2(double(n)) + 1;
  if (type == 2 || type == 3 || (type > 3 && n % 2 == 0)) return eps * 2 * std::sqrt(order);
  return eps * (2 + (type < 2 ? 2 : 6) * std::sqrt(double(n)));
}

// Results at every index, or at some of many.
template <class R>
double error_of(int type, bool forward, const std::vector<R>& f, const R* result, const Angles& w,
                bool scaled = true) {
  const int n = int(f.size()) - 1;
  const int step = n > 500 ? 2 * (n / 200) + 1 : 1;
  long double error = 0, size = 0;
  for (int at = 0; at <= n; at += step) {
    const long double exact = formula(type, forward, f, w, at, scaled);
    error += (result[at] - exact) * (result[at] - exact);
    size += exact * exact;
  }
  return size == 0 ? double(error) : double(sqrtl(error / size));
}

std::vector<int> lengths() {
  std::vector<int> n;
  for (int i = 2; i <= 200; ++i) n.push_back(i);
  for (int i : {1000, 1024, 1155, 2047, 4096, 5000}) n.push_back(i);
  return n;
}

TYPED_TEST(Transforms, FollowTheFormulas) {
  using R = TypeParam;
  for (const int n : lengths()) {
    const Angles w(n);
    for (int type = 0; type < 6; ++type) {
      Trig<R> trig(n, type, n % 2 ? Spelling::two_underscores : Spelling::one_underscore);
      trig.ipar[2] = 0;
      ASSERT_EQ(trig.commit(), 0);
      for (const bool forward : {true, false}) {
        // The ends that a type has no point for may hold anything.
        const std::vector<R> f = random_line<R>(n, n * 12 + type * 2 + forward);
        Guarded memory((n + 1) * sizeof(R) + 32);
        R* const line = static_cast<R*>(memory.place((n + 1) * sizeof(R), n % 3 ? 0 : sizeof(R),
                                                     n % 2 ? Against::back : Against::front));
        std::copy(f.begin(), f.end(), line);
        ASSERT_EQ(trig.run(forward, line), 0);
        EXPECT_FALSE(!(error_of<R>(type, forward, f, line, w) <= allowed<R>(type, n)))
            << "type " << type << " n " << n << " forward " << forward << " error "
            << error_of<R>(type, forward, f, line, w) << " allowed " << allowed<R>(type, n);
        const Range range = range_of(type, n);
        for (const int end : {0, n}) {
          if (end < range.first || end > range.last) {
            EXPECT_EQ(line[end], 0) << type << " " << n;
          }
        }
      }
    }
  }
}

TYPED_TEST(Transforms, ForwardThenBackwardAndWithoutTheScale) {
  using R = TypeParam;
  for (const int n : {2, 3, 17, 64, 1000}) {
    const Angles w(n);
    for (int type = 0; type < 6; ++type) {
      Trig<R> trig(n, type);
      std::vector<R> f = random_line<R>(n, n + type);
      const Range range = range_of(type, n);
      for (int i = 0; i <= n; ++i)
        if (i < range.first || i > range.last) f[i] = 0;
      trig.ipar[9] = 3;
      ASSERT_EQ(trig.commit(f), 0);
      std::vector<R> there = f;
      ASSERT_EQ(trig.run(true, there.data()), 0);
      ASSERT_EQ(trig.run(false, there.data()), 0);
      for (int i = 0; i <= n; ++i)
        EXPECT_NEAR(there[i], f[i], 20 * allowed<R>(0, n)) << type << " " << n << " " << i;

      trig.ipar[10] = 1;
      std::vector<R> plain = f;
      ASSERT_EQ(trig.run(true, plain.data()), 0);
      EXPECT_LE((error_of<R>(type, true, f, plain.data(), w, false)), allowed<R>(type, n));
    }
  }
}

TYPED_TEST(Transforms, ThreadsShareAHandle) {
  using R = TypeParam;
  constexpr int n = 600, threads = 4;
  Trig<R> trig(n, 1);
  trig.ipar[9] = threads;
  ASSERT_EQ(trig.commit(), 0);
  const std::vector<R> f = random_line<R>(n, 3);
  std::vector<R> expected = f;
  ASSERT_EQ(trig.run(true, expected.data()), 0);
  std::vector<int> wrong(threads);
  std::vector<std::thread> all;
  for (int t = 0; t < threads; ++t)
    all.emplace_back([&, t] {
      jex_int ipar[11], stat;
      std::copy(trig.ipar, trig.ipar + 11, ipar);
      for (int i = 0; i < 200; ++i) {
        std::vector<R> line = f;
        trig.entries.forward(line.data(), &trig.handle, ipar, trig.par.data(), &stat);
        wrong[t] += stat != 0 || line != expected;
      }
    });
  for (std::thread& thread : all) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(threads));
}

}  // namespace
