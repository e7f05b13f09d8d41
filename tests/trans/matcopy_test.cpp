// The copies, transpositions and sums against plain models, bit for bit: every letter, order,
// distance and type, operands against unreadable pages.

#include "blas/level1/level1.h"
#include "trans/entries.h"

#include <ctype.h>

namespace jex::test {
namespace {

template <class T>
struct Trans : testing::Test {};
TYPED_TEST_SUITE(Trans, All4);

// An array of a call in guarded memory, and the model's. All of it has values, between the lines
// too.
template <class T>
class Array {
 public:
  Array(Case& c, int64_t span)
      : memory_(span * sizeof(T) + 32),
        p_(static_cast<T*>(memory_.place(span * sizeof(T), 4 * c.random.between(0, 3),
                                         c.random.pick({Against::front, Against::back})))),
        model(span) {
    for (int64_t i = 0; i < span; ++i) p_[i] = model[i] = c.value<T>();
  }
  T* data() { return p_; }
  void expect_model(const char* name) const {
    for (size_t i = 0; i < model.size(); ++i)
      ASSERT_TRUE(same_bits(p_[i], model[i])) << name << " differs at element " << i;
  }

 private:
  Guarded memory_;
  T* p_;

 public:
  std::vector<T> model;
};

// A factor of 1 moves.
template <class T>
T scaled(T alpha, T a, bool conj) {
  if (conj) a = conjugate(a);
  T one{};
  reinterpret_cast<Real<T>&>(one) = 1;
  return same_bits(alpha, one) ? a : multiply(a, alpha);
}

template <class T>
T scale_factor(Case& c) {
  T alpha{};
  if (c.random.between(0, 1)) return c.value<T>();
  reinterpret_cast<Real<T>&>(alpha) = c.random.pick({0, 1, 1, -1});
  return alpha;
}

// Either case; "?" is no letter.
struct Letter {
  char letter;
  bool transposes, conjugates, known;
  Letter(Case& c) : letter(c.random.pick({'N', 'T', 'C', 'R', 'T', 'C', '?'})) {
    known = letter != '?';
    transposes = letter == 'T' || letter == 'C';
    conjugates = letter == 'C' || letter == 'R';
    if (c.random.between(0, 1)) letter = char(tolower(letter));
    c.text += std::string(" ") + letter;
  }
};

struct Ordering {
  char letter;
  bool column_major, known;
  Ordering(Case& c) : letter(c.random.pick({'R', 'C', 'r', 'c', 'R', 'C', 'X'})) {
    column_major = toupper(letter) == 'C';
    known = letter != 'X';
    c.text += std::string(" ordering=") + letter;
  }
};

// Lines and their length; what the caller names depends on the order.
struct Shape {
  int m, n;
  Shape(Case& c) {
    const auto extent = [&] {
      return c.random.between(0, 5) ? c.random.between(0, 40) : c.random.between(-1, 150);
    };
    m = extent(), n = c.random.between(0, 2) ? extent() : m;
    c.text += " m=" + std::to_string(m) + " n=" + std::to_string(n);
  }
  int rows(Ordering o) const { return o.column_major ? n : m; }
  int cols(Ordering o) const { return o.column_major ? m : n; }
};

int64_t span(int lines, int length, int ld, int stride = 1) {
  return lines < 1 || length < 1 ? 0 : int64_t(lines - 1) * ld + (length - 1) * stride + 1;
}

// A leading dimension for a line: often exact.
int distance(Case& c, int length, int stride = 1) {
  const int least = length < 1 ? 1 : (length - 1) * stride + 1;
  const int ld = least + c.random.pick({0, 0, 1, 7});
  c.text += " ld=" + std::to_string(ld);
  return ld;
}

template <class Check>
void for_seeds(unsigned count, Check check) {
  for (const unsigned seed : case_seeds(count)) {
    Case c(seed, 1);
    check(c);
    if (testing::Test::HasFailure()) FAIL() << c.text;
  }
}

template <class T>
void check_omatcopy(Case& c, Shape s, Ordering order, Letter trans, bool strides) {
  const T alpha = scale_factor<T>(c);
  const auto [lines, length] = trans.transposes ? std::pair(s.n, s.m) : std::pair(s.m, s.n);
  const int stridea = strides ? c.random.between(1, 3) : 1;
  const int strideb = strides ? c.random.between(1, 3) : 1;
  const int lda = distance(c, s.n, stridea), ldb = distance(c, length, strideb);
  Array<T> a(c, span(s.m, s.n, lda, stridea)), b(c, span(lines, length, ldb, strideb));
  if (strides)
    TransEntries<T>::omatcopy2(order.letter, trans.letter, s.rows(order), s.cols(order), alpha,
                               a.data(), lda, stridea, b.data(), ldb, strideb);
  else
    TransEntries<T>::omatcopy(order.letter, trans.letter, s.rows(order), s.cols(order), alpha,
                              a.data(), lda, b.data(), ldb);
  if (order.known && trans.known)
    for (int i = 0; i < s.m; ++i)
      for (int k = 0; k < s.n; ++k)
        b.model[trans.transposes ? k * ldb + i * strideb : i * ldb + k * strideb] =
            scaled(alpha, a.model[i * lda + k * stridea], trans.conjugates);
  a.expect_model("A");
  b.expect_model("B");
}

TYPED_TEST(Trans, Omatcopy) {
  for_seeds(400, [](Case& c) { check_omatcopy<TypeParam>(c, c, c, c, false); });
}

TYPED_TEST(Trans, Omatcopy2) {
  for_seeds(300, [](Case& c) { check_omatcopy<TypeParam>(c, c, c, c, true); });
}

// The larger the matrix, the other the way: tiles, lines asked for ahead, results written past the
// caches; the last with every beginning of B towards a cache line.
TYPED_TEST(Trans, TransposesLargeMatrices) {
  using T = TypeParam;
  const int line = 64 / sizeof(T), large = 2200 / int(sqrt(sizeof(T)));
  for_seeds(10, [&](Case& c) {
    const int m = c.random.between(large, large + 100), n = c.random.between(large, large + 100);
    const int ldb = c.seed % 3 ? (m + 2 * line) / line * line : m + 1, beyond = c.seed % line;
    const bool conj = c.random.between(0, 1);
    const T alpha = scale_factor<T>(c);
    c.values = Values::plain;
    Array<T> a(c, int64_t(m) * n);
    std::vector<T> b(int64_t(n) * ldb + 2 * line);
    T* const aligned = reinterpret_cast<T*>((uintptr_t(b.data()) + 63) / 64 * 64) + beyond;
    TransEntries<T>::omatcopy('R', conj ? 'C' : 'T', m, n, alpha, a.data(), n, aligned, ldb);
    for (int i = 0; i < m; ++i)
      for (int k = 0; k < n; ++k)
        ASSERT_TRUE(same_bits(aligned[int64_t(k) * ldb + i],
                              scaled(alpha, a.model[int64_t(i) * n + k], conj)))
            << i << " " << k;
    for (int k = 0; k < n; ++k)
      for (int i = m; i < ldb; ++i) ASSERT_EQ(magnitude(aligned[int64_t(k) * ldb + i]), 0);
  });
}

template <class T>
void check_imatcopy(Case& c, Shape s, Ordering order, Letter trans) {
  const T alpha = scale_factor<T>(c);
  const auto [lines, length] = trans.transposes ? std::pair(s.n, s.m) : std::pair(s.m, s.n);
  const int lda = distance(c, s.n);
  const int ldb = c.random.between(0, 1) ? std::max(lda, std::max(1, length)) : distance(c, length);
  Array<T> ab(c, std::max(span(s.m, s.n, lda), span(lines, length, ldb)));
  TransEntries<T>::imatcopy(order.letter, trans.letter, s.rows(order), s.cols(order), alpha,
                            ab.data(), lda, ldb);
  const std::vector<T> old = ab.model;
  if (order.known && trans.known)
    for (int i = 0; i < s.m; ++i)
      for (int k = 0; k < s.n; ++k)
        ab.model[trans.transposes ? k * ldb + i : i * ldb + k] =
            scaled(alpha, old[i * lda + k], trans.conjugates);
  ab.expect_model("AB");
}

TYPED_TEST(Trans, Imatcopy) {
  for_seeds(600, [](Case& c) { check_imatcopy<TypeParam>(c, c, c, c); });
}

TYPED_TEST(Trans, TransposesLargeSquaresInPlace) {
  using T = TypeParam;
  for_seeds(6, [](Case& c) {
    const int n = c.random.between(250, 420), ld = n + c.random.pick({0, 0, 3});
    Array<T> ab(c, int64_t(n) * ld);
    TransEntries<T>::imatcopy('C', 'T', n, n, scale_factor<T>(c), ab.data(), ld, ld);
    Case again(c.seed, 1);  // the same numbers: the factor and the old elements
    (void)(again.random.between(250, 420) + again.random.pick({0, 0, 3}));
    Array<T> old(again, int64_t(n) * ld);
    const T alpha = scale_factor<T>(again);
    for (int i = 0; i < n; ++i)
      for (int k = 0; k < n; ++k)
        ab.model[k * ld + i] = scaled(alpha, old.model[i * ld + k], false);
    ab.expect_model("AB");
  });
}

// Positions of the permutation beyond 32 bits.
TEST(TransInPlace, DistancesOfWhichTheProductIsLarge) {
  const int ld = 50000;
  std::vector<float> ab(3 * ld);
  for (int i = 0; i < 3; ++i)
    for (int k = 0; k < 2; ++k) ab[i * ld + k] = float(10 * i + k + 1);
  jex_trans_jex_simatcopy('R', 'T', 3, 2, 2, ab.data(), ld, ld);
  for (int i = 0; i < 3; ++i)
    for (int k = 0; k < 2; ++k) EXPECT_EQ(ab[k * ld + i], 2 * float(10 * i + k + 1));
}

// Sums of two terms, each a product: no factor of 1 is special.
template <class T>
void check_omatadd(Case& c, Shape s, Ordering order, Letter ta, Letter tb) {
  const T alpha = scale_factor<T>(c), beta = scale_factor<T>(c);
  const bool both = ta.transposes && tb.transposes;
  const auto lines = [&](Letter t) { return t.transposes && !both ? s.n : s.m; };
  const auto length = [&](Letter t) { return t.transposes && !both ? s.m : s.n; };
  const int lda = distance(c, length(ta)), ldb = distance(c, length(tb));
  const int ldc = distance(c, both ? s.m : s.n);
  Array<T> a(c, span(lines(ta), length(ta), lda)), b(c, span(lines(tb), length(tb), ldb));
  Array<T> sum(c, span(both ? s.n : s.m, both ? s.m : s.n, ldc));
  TransEntries<T>::omatadd(order.letter, ta.letter, tb.letter, s.rows(order), s.cols(order), alpha,
                           a.data(), lda, beta, b.data(), ldb, sum.data(), ldc);
  const auto term = [&](Array<T>& x, int ld, Letter t, T f, int i, int k) {
    const T e = x.model[t.transposes ? k * ld + i : i * ld + k];
    return multiply(t.conjugates ? conjugate(e) : e, f);
  };
  if (ta.known && tb.known)
    for (int i = 0; i < (both ? s.n : s.m); ++i)
      for (int k = 0; k < (both ? s.m : s.n); ++k)
        sum.model[i * ldc + k] = add(term(a, lda, ta, alpha, i, k), term(b, ldb, tb, beta, i, k));
  a.expect_model("A");
  b.expect_model("B");
  sum.expect_model("C");
}

TYPED_TEST(Trans, Omatadd) {
  for_seeds(600, [](Case& c) {
    const Shape s(c);
    const Ordering order(c);
    const Letter ta(c), tb(c);
    check_omatadd<TypeParam>(c, s, order, ta, tb);
  });
}

}  // namespace
}  // namespace jex::test
