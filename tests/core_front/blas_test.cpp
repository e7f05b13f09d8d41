// Every entry of the front against the module's entry of the same routine: same operands in, same
// bytes out. The rows are those of the front's list; the module's entry is found by the name alone,
// so a row that calls another routine, or mixes up its arguments, is seen.

#include <jex/blas.h>
#include <jex/exports.h>

#include "core_front/argument.h"

#include <gtest/gtest.h>

#include <array>
#include <math.h>
#include <string.h>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

// A scalar, or a vector of up to 5 elements with increments up to 3.
using Operand = jex::test::ArgumentMemory<16 * 16>;
using jex::test::argument;

// The first integer is n, the others are increments: 2 for the first vector, -3 for the second.
// Reals depend on the position of the argument, so that no two arguments can stand for each other.
template <class T>
Operand operand(size_t position) {
  Operand result;
  if constexpr (std::is_same_v<T, jex_int>) {
    const jex_int value = position == 0 ? 5 : position < 4 ? 2 : -3;
    memset(result.bytes, 0, sizeof result.bytes);
    memcpy(result.bytes, &value, sizeof value);
  } else {
    constexpr bool single = std::is_same_v<T, float> || std::is_same_v<T, jex_scomplex>;
    using Real = std::conditional_t<single, float, double>;
    for (size_t i = 0; i * sizeof(Real) < sizeof result.bytes; ++i) {
      const Real value = Real(cos(double(i * i + 1) + 10 * double(position)));
      memcpy(result.bytes + i * sizeof(Real), &value, sizeof value);
    }
  }
  return result;
}

template <class R>
bool same_result(R module, R front) {
  return memcmp(&module, &front, sizeof module) == 0;
}
bool same_result(jex_scomplex module, jex_f77_c front) {
  return module.re == __real__ front && module.im == __imag__ front;
}
bool same_result(jex_dcomplex module, jex_f77_z front) {
  return module.re == __real__ front && module.im == __imag__ front;
}
bool same_result(jex_int module, jex_cblas_index front) { return module == jex_int(front) + 1; }

template <class R>
bool is_zero(const R& value) {
  const R zero{};
  return memcmp(&value, &zero, sizeof value) == 0;
}

// Runs both entries on copies of the same operands. A front with one argument more than the
// module's entry stores its result there.
template <class R, class... A, class S, class... B>
void agree(R (*entry)(A...), S (*front)(B...)) {
  constexpr bool stores = sizeof...(B) == sizeof...(A) + 1;
  static_assert(stores || sizeof...(B) == sizeof...(A));
  using Operands = std::array<Operand, sizeof...(B)>;
  Operands before{};
  [&]<size_t... i>(std::index_sequence<i...>) {
    ((before[i] = operand<std::remove_const_t<std::remove_pointer_t<A>>>(i)), ...);
  }
  (std::index_sequence_for<A...>{});
  Operands expected = before, actual = before;

  const auto call_entry = [&]<size_t... i>(std::index_sequence<i...>) {
    return entry(argument<A>(expected[i])...);
  };
  const auto call_front = [&]<size_t... i>(std::index_sequence<i...>) {
    return front(argument<B>(actual[i])...);
  };
  constexpr auto entry_arguments = std::index_sequence_for<A...>{};
  constexpr auto front_arguments = std::index_sequence_for<B...>{};
  if constexpr (std::is_void_v<R>) {
    call_entry(entry_arguments);
    call_front(front_arguments);
    EXPECT_FALSE(expected == before) << "the operands show nothing of the routine";
  } else {
    const R result = call_entry(entry_arguments);
    EXPECT_FALSE(is_zero(result)) << "the operands show nothing of the routine";
    if constexpr (stores) {
      call_front(front_arguments);
      memcpy(expected.back().bytes, &result, sizeof result);
    } else {
      EXPECT_TRUE(same_result(result, call_front(front_arguments)));
    }
  }
  for (size_t i = 0; i < expected.size(); ++i)
    EXPECT_TRUE(actual[i] == expected[i]) << "argument " << i + 1;
}

// The module has no entry for this one.
float jex_blas_scabs1(const jex_scomplex* x) { return fabsf(x->re) + fabsf(x->im); }

struct Row {
  const char* symbol;
  void (*check)();
};
void PrintTo(const Row& row, std::ostream* out) { *out << row.symbol; }

#define ROW(symbol, name) {#symbol, [] { agree(jex_blas_##name, symbol); }},
#define JEX_F77(result, name, params, call) ROW(jex_##name##_, name)
#define JEX_F77_SUB(name, params, call) ROW(jex_##name##sub_, name)
#define JEX_CBLAS(result, name, params, call) ROW(jex_cblas_##name, name)
#define JEX_CBLAS_SUB(name, params, call) ROW(jex_cblas_##name##_sub, name)
const Row rows[] = {
#include "front/blas/level1.inc"
};

class Front : public testing::TestWithParam<Row> {};
TEST_P(Front, AgreesWithTheModule) { GetParam().check(); }
INSTANTIATE_TEST_SUITE_P(Level1, Front, testing::ValuesIn(rows),
                         [](const auto& info) { return std::string(info.param.symbol); });

// Worked by hand: the comparison above would not see a routine that both sides get wrong.
TEST(FrontResults, ComplexDotProducts) {
  const jex_int n = 2, one = 1;
  const jex_scomplex x[] = {{1, 2}, {3, -1}}, y[] = {{2, -1}, {1, 4}};
  const jex_dcomplex u[] = {{1, 2}, {3, -1}}, v[] = {{2, -1}, {1, 4}};
  const jex_f77_c cu = jex_cdotu_(&n, x, &one, y, &one), cc = jex_cdotc_(&n, x, &one, y, &one);
  const jex_f77_z zu = jex_zdotu_(&n, u, &one, v, &one), zc = jex_zdotc_(&n, u, &one, v, &one);
  EXPECT_TRUE(same_result(jex_scomplex{11, 14}, cu));
  EXPECT_TRUE(same_result(jex_scomplex{-1, 8}, cc));
  EXPECT_TRUE(same_result(jex_dcomplex{11, 14}, zu));
  EXPECT_TRUE(same_result(jex_dcomplex{-1, 8}, zc));
}

TEST(FrontResults, SumsInDouble) {
  const jex_int n = 3, one = 1;
  const float x[] = {1, 1, 1}, y[] = {1e8f, 1, -1e8f}, sb = 0.5f;
  EXPECT_EQ(jex_dsdot_(&n, x, &one, y, &one), 1.0);
  EXPECT_EQ(jex_cblas_sdsdot(3, sb, x, 1, y, 1), 1.5f);
}

// Fortran counts from 1 with 0 for "none"; C counts from 0.
TEST(FrontResults, IndicesOfBothLanguages) {
  const double x[] = {1, -7, 7, 0};
  const jex_int n = 4, none = 0, one = 1, back = -1;
  EXPECT_EQ(jex_idamax_(&n, x, &one), 2);
  EXPECT_EQ(jex_idamin_(&n, x, &one), 4);
  EXPECT_EQ(jex_idamax_(&none, x, &one), 0);
  EXPECT_EQ(jex_idamax_(&n, x, &back), 0);
  EXPECT_EQ(jex_cblas_idamax(4, x, 1), 1u);
  EXPECT_EQ(jex_cblas_idamin(4, x, 1), 3u);
  EXPECT_EQ(jex_cblas_idamax(1, x, 1), 0u);
  EXPECT_EQ(jex_cblas_idamax(0, x, 1), 0u);
  EXPECT_EQ(jex_cblas_idamax(4, x, -1), 0u);
}

}  // namespace
