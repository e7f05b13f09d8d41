// Products and solves with triangles: error bounds, and what may depend on what.

#include "blas/level2/triangular.h"

namespace jex::test {
namespace {

constexpr auto all_storages = {Storage::full, Storage::band, Storage::packed};

template <class T>
struct Triangular : testing::Test {};
TYPED_TEST_SUITE(Triangular, Element4);

TYPED_TEST(Triangular, ProductsAreWithinTheBound) {
  using T = TypeParam;
  for_triangles<T>(60, all_storages, [](Random&, Triangle<T>& a, Vector<T>& x) {
    const std::vector<T> before = results(x, a.n);
    a.run(Task::product, x.data(), x.inc());
    const std::vector<T> after = results(x, a.n);
    for (int i = 0; i < a.n; ++i) {
      Exact sum = 0;
      long double size = 0;
      for (int j = 0; j < a.n; ++j) {
        sum += a.at(i, j) * exact(before[j]);
        size += size_of(a.at(i, j)) * size_of(exact(before[j]));
      }
      const long double error = size_of(exact(after[i]) - sum);
      if (!(error <= tolerance<T>(a.n) * size))
        FAIL() << "element " << i << ": error " << error << " of " << size;
    }
    expect_rest_unchanged(a, x, after);
  });
}

TYPED_TEST(Triangular, SolvesLeaveSmallResiduals) {
  using T = TypeParam;
  for_triangles<T>(60, all_storages, [](Random&, Triangle<T>& a, Vector<T>& x) {
    const std::vector<T> b = results(x, a.n);
    a.run(Task::solve, x.data(), x.inc());
    const std::vector<T> solution = results(x, a.n);
    for (int i = 0; i < a.n; ++i) {
      Exact residual = exact(b[i]);
      long double size = 0;
      for (int j = 0; j < a.n; ++j) {
        residual -= a.at(i, j) * exact(solution[j]);
        size += size_of(a.at(i, j)) * size_of(exact(solution[j]));
      }
      if (!(size_of(residual) <= tolerance<T>(a.n) * size))
        FAIL() << "equation " << i << ": residual " << size_of(residual) << " of " << size;
    }
    expect_rest_unchanged(a, x, solution);
  });
}

// Errors of both steps, carried through the solve by the comparison matrix: |diagonal| and
// -|other entries| of op(A), whose inverse bounds that of op(A).
TYPED_TEST(Triangular, SolveUndoesProduct) {
  using T = TypeParam;
  for_triangles<T>(15, all_storages, [](Random&, Triangle<T>& a, Vector<T>& x) {
    const std::vector<T> before = results(x, a.n);
    a.run(Task::product, x.data(), x.inc());
    a.run(Task::solve, x.data(), x.inc());
    const std::vector<T> after = results(x, a.n);
    std::vector<long double> bound(a.n);
    for (int step = 0; step < a.n; ++step) {
      const int i = a.lower() ? step : a.n - 1 - step;
      for (int j = 0; j < a.n; ++j) {
        const long double entry = size_of(a.at(i, j));
        bound[i] += 3 * tolerance<T>(a.n) * entry * size_of(exact(before[j]));
        if (j != i) bound[i] += entry * bound[j];
      }
      bound[i] /= std::abs(a.at(i, i));
      const long double error = size_of(exact(after[i]) - exact(before[i]));
      if (!(error <= bound[i])) FAIL() << "element " << i << ": " << error << " of " << bound[i];
    }
  });
}

template <class T>
bool is_nan(T a) {
  const Exact value = exact(a);
  return std::isnan(value.real()) || std::isnan(value.imag());
}

// A NaN in one element of x must reach the results that depend on that element, and no others: a
// wrong walk, or a lane too many, carries it elsewhere.
TYPED_TEST(Triangular, NaNReachesWhatDependsOnIt) {
  using T = TypeParam;
  for_triangles<T>(40, all_storages, [](Random& random, Triangle<T>& a, Vector<T>& x) {
    if (a.n == 0) return;
    const int place = random.between(0, a.n - 1);
    const Task task = random.pick({Task::product, Task::solve});
    const int inc = x.inc();
    memset(static_cast<void*>(x.data() + (inc < 0 ? (1 - a.n) * inc : 0) + place * inc), 0xff,
           sizeof(T));
    a.run(task, x.data(), inc);
    const std::vector<T> after = results(x, a.n);
    for (int i = 0; i < a.n; ++i) {
      const bool behind = i == place || (a.k > 0 && (a.lower() ? i > place : i < place));
      EXPECT_EQ(is_nan(after[i]), task == Task::product ? a.holds(i, place) : behind)
          << (task == Task::product ? "product" : "solve") << " with NaN in " << place
          << ", element " << i;
    }
  });
}

// n = 0 touches nothing, so that no operand need exist.
TYPED_TEST(Triangular, EmptyReturnsAtOnce) {
  using E = TriangularEntries<TypeParam>;
  const int n = 0, k = 3, one = 1;
  for (const auto run : {E::trmv, E::trsv}) run("U", "N", "N", &n, nullptr, &one, nullptr, &one);
  for (const auto run : {E::tbmv, E::tbsv})
    run("L", "T", "N", &n, &k, nullptr, &one, nullptr, &one);
  for (const auto run : {E::tpmv, E::tpsv}) run("U", "N", "U", &n, nullptr, nullptr, &one);
}

// Small integers: every product, sum and quotient is exact, and so must be the results.
TYPED_TEST(Triangular, IntegersAreExact) {
  using T = TypeParam;
  for_triangles<T>(40, all_storages, [](Random& random, Triangle<T>& a, Vector<T>& x) {
    if (a.n > 40) return;
    T* const entries = a.data();
    const auto integer = [](int number) {
      T value = {};
      const Real<T> real = number;
      memcpy(&value, &real, sizeof real);
      return value;
    };
    // The storage once more, entry by entry, few entries beside the diagonal. On it are
    // numbers whose inverses, rounded to float or to double, spoil the quotients.
    for (int j = 0; j < a.n; ++j)
      for (int i = 0; i < a.n; ++i)
        if (const int place = a.place_of(i, j); place >= 0)
          entries[place] = integer(i == j ? random.pick({3, 41, 47, 49, 55, 61, 98})
                                          : random.between(0, 3) / 3 * random.between(-1, 1));
    std::vector<T> solution(a.n), product(a.n);
    for (int i = 0; i < a.n; ++i) solution[i] = integer(random.between(-4, 4));
    a.accept();
    for (int i = 0; i < a.n; ++i) {
      Exact sum = 0;
      for (int j = 0; j < a.n; ++j) sum += a.at(i, j) * exact(solution[j]);
      const Real<T> real = sum.real();
      memcpy(&product[i], &real, sizeof real);
    }
    const int inc = x.inc();
    const auto put = [&](const std::vector<T>& values) {
      for (int i = 0; i < a.n; ++i) x.data()[(inc < 0 ? (1 - a.n) * inc : 0) + i * inc] = values[i];
    };
    const auto expect = [&](const std::vector<T>& values, const char* task) {
      const std::vector<T> after = results(x, a.n);
      for (int i = 0; i < a.n; ++i)
        EXPECT_EQ(exact(after[i]), exact(values[i])) << task << ", element " << i;
    };
    put(solution);
    a.run(Task::product, x.data(), inc);
    expect(product, "product");
    put(product);
    a.run(Task::solve, x.data(), inc);
    expect(solution, "solve");
  });
}

}  // namespace
}  // namespace jex::test
