// The frame of the triangular tests: random triangles in all storages, in guarded memory, and what
// they are as dense matrices in long double.
#pragma once

#include "support/exact.h"

#include <jex/exports.h>

#include <gtest/gtest.h>

namespace jex::test {

using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
enum class Storage { full, band, packed };
enum class Task { product, solve };

template <class T>
struct TriangularEntries;
#define JEX_TEST_TRIANGULAR(t, T)                    \
  template <>                                        \
  struct TriangularEntries<T> {                      \
    static constexpr auto gemv = jex_blas_##t##gemv; \
    static constexpr auto trmv = jex_blas_##t##trmv; \
    static constexpr auto trsv = jex_blas_##t##trsv; \
    static constexpr auto tbmv = jex_blas_##t##tbmv; \
    static constexpr auto tbsv = jex_blas_##t##tbsv; \
    static constexpr auto tpmv = jex_blas_##t##tpmv; \
    static constexpr auto tpsv = jex_blas_##t##tpsv; \
  };
JEX_TEST_TRIANGULAR(s, float)
JEX_TEST_TRIANGULAR(d, double)
JEX_TEST_TRIANGULAR(c, jex_scomplex)
JEX_TEST_TRIANGULAR(z, jex_dcomplex)

// A triangle with all options of a call. What is not an entry is NaN: the other triangle, a unit
// diagonal, the gaps below the columns and the corners of a band.
template <class T>
class Triangle {
 public:
  char uplo, trans, diag;
  int n, k, lda;
  Storage storage;

  Triangle(Random& random, Storage storage, const char* options, int n)
      : uplo(either(random, options[0])),
        trans(either(random, options[1])),
        diag(either(random, options[2])),
        n(n),
        k(storage == Storage::band ? random.between(0, random.pick({3, 12, 90})) : n - 1),
        lda(std::max(1, storage == Storage::band ? k + 1 : n) + random.between(0, 5)),
        storage(storage),
        count_(count()),
        memory_(count_ * sizeof(T) + 32),
        a_(static_cast<T*>(memory_.place(count_ * sizeof(T), 4 * random.between(0, 3),
                                         random.pick({Against::front, Against::back})))),
        copy_(count_) {
    memset(static_cast<void*>(copy_.data()), 0xff, count_ * sizeof(T));
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < n; ++i)
        if (const int place = place_of(i, j); place >= 0) copy_[place] = entry(random, i == j);
    memcpy(static_cast<void*>(a_), copy_.data(), count_ * sizeof(T));
  }

  bool upper() const { return toupper(uplo) == 'U'; }
  bool plain() const { return toupper(trans) == 'N'; }
  bool unit() const { return toupper(diag) == 'U'; }
  // Do the entries of op(A) lie below the diagonal?
  bool lower() const { return upper() != plain(); }
  T* data() { return a_; }
  bool unchanged() const { return memcmp(a_, copy_.data(), count_ * sizeof(T)) == 0; }

  // Entry (i, j) of op(A), 0 where none is stored.
  Exact at(int i, int j) const {
    if (i == j && unit()) return 1;
    const int place = plain() ? place_of(i, j) : place_of(j, i);
    if (place < 0) return 0;
    const Exact a = exact(copy_[place]);
    return is_complex<T> && toupper(trans) == 'C' ? std::conj(a) : a;
  }
  bool holds(int i, int j) const {
    return i == j || (plain() ? place_of(i, j) : place_of(j, i)) >= 0;
  }

  // Index of the entry (i, j) of A, or -1.
  int place_of(int i, int j) const {
    if ((upper() ? i > j : i < j) || std::abs(i - j) > k || (i == j && unit())) return -1;
    if (storage == Storage::full) return i + j * lda;
    if (storage == Storage::band) return (upper() ? k : 0) + i - j + j * lda;
    return upper() ? i + j * (j + 1) / 2 : i + j * (2 * n - 1 - j) / 2;
  }
  // Takes the entries as they are now for the triangle's own.
  void accept() { memcpy(static_cast<void*>(copy_.data()), a_, count_ * sizeof(T)); }

  void run(Task task, T* x, int inc) {
    using E = TriangularEntries<T>;
    const bool product = task == Task::product;
    if (storage == Storage::full)
      (product ? E::trmv : E::trsv)(&uplo, &trans, &diag, &n, a_, &lda, x, &inc);
    else if (storage == Storage::band)
      (product ? E::tbmv : E::tbsv)(&uplo, &trans, &diag, &n, &k, a_, &lda, x, &inc);
    else
      (product ? E::tpmv : E::tpsv)(&uplo, &trans, &diag, &n, a_, x, &inc);
  }

  std::string text() const {
    static const char* const names[] = {"full", "band", "packed"};
    return std::string(" ") + names[int(storage)] + " " + uplo + trans + diag +
           " n=" + std::to_string(n) + " k=" + std::to_string(k) + " lda=" + std::to_string(lda);
  }

 private:
  size_t count_;
  Guarded memory_;
  T* a_;
  std::vector<T> copy_;

  static char either(Random& random, char option) {
    return random.between(0, 1) ? option : char(tolower(option));
  }
  size_t count() const {
    if (n == 0) return 0;
    if (storage == Storage::packed) return n * (n + 1) / 2;
    return size_t(lda) * (n - 1) + (storage == Storage::band ? k + 1 : n);
  }
  // Entries beside the diagonal are small enough that no solution overflows.
  T entry(Random& random, bool diagonal) const {
    T a = random_value<T>(random, Values::plain);
    Real<T> parts[Parts<T>::count];
    memcpy(parts, &a, sizeof a);
    for (auto& part : parts) {
      if (diagonal)
        part += part < 0 ? Real<T>(-1) : Real<T>(1);
      else
        part *= Real<T>(3) / Real<T>(std::max(4, std::min(n, k)));
    }
    memcpy(&a, parts, sizeof a);
    return a;
  }
};

// Length of a case: around the widths of groups and blocks, or any.
inline int length(Random& random) {
  if (random.between(0, 1)) return random.between(0, 70);
  return random.pick(
      {0, 1, 2, 31, 32, 33, 34, 63, 64, 65, 66, 95, 96, 97, 127, 128, 129, 130, 200});
}

// body(random, triangle, x) for every storage and every combination of options.
template <class T, class Body>
void for_triangles(unsigned cases, std::initializer_list<Storage> storages, Body body) {
  for (const unsigned seed : case_seeds(cases))
    for (const Storage storage : storages)
      for (const char uplo : {'U', 'L'})
        for (const char trans : {'N', 'T', 'C'})
          for (const char diag : {'N', 'U'}) {
            Random random(seed);
            const char options[] = {uplo, trans, diag};
            Triangle<T> triangle(random, storage, options, length(random));
            const int inc = random.between(0, 2) ? 1 : random.pick({-3, -2, -1, 2, 3, 5});
            const size_t offset = 4 * random.between(0, 3);
            Vector<T> x(random, triangle.n, inc, offset,
                        random.pick({Against::front, Against::back}), Values::plain);
            body(random, triangle, x);
            if (testing::Test::HasFailure())
              FAIL() << "JEX_CASE=" << seed << triangle.text() << " inc=" << inc
                     << " offset=" << offset;
          }
}

// The elements of the walk as the module left them.
template <class T>
std::vector<T> results(Vector<T>& x, int n) {
  std::vector<T> values(n);
  const int inc = x.inc();
  for (int i = 0; i < n; ++i) values[i] = x.data()[(inc < 0 ? (1 - n) * inc : 0) + i * inc];
  return values;
}

// Nothing but the elements of the walk has changed.
template <class T>
void expect_rest_unchanged(Triangle<T>& triangle, Vector<T>& x, const std::vector<T>& values) {
  EXPECT_TRUE(triangle.unchanged());
  for (int i = 0; i < triangle.n; ++i) x.at(i) = values[i];
  EXPECT_EQ(x.difference(), "");
}

template <class T>
long double tolerance(int n) {
  return (is_complex<T> ? 4 : 1) * (n + 8) * (long double)(std::numeric_limits<Real<T>>::epsilon());
}

}  // namespace jex::test
