// Sparse-vector kernels: indices may repeat, and the order of the values is the order of the work.

#include "blas/level1/level1.h"

namespace jex::test {
namespace {

// nz values and 1-based indices into a dense vector; the indices lie against a guard page too.
template <class T>
struct SparseCase {
  static constexpr int dense_length = 40;
  int nz;
  Guarded memory;
  jex_int* indx;
  Vector<T> x, y;

  explicit SparseCase(Case& c)
      : nz(c.n),
        memory(longest * sizeof(jex_int)),
        indx(static_cast<jex_int*>(
            memory.place(std::max(nz, 0) * sizeof(jex_int), 4 * c.random.between(0, 3),
                         c.random.pick({Against::front, Against::back})))),
        x(c.vector<T>(1)),
        y(Vector<T>(c.random, dense_length, 1, 4 * c.random.between(0, 3), Against::back,
                    c.values)) {
    for (int i = 0; i < nz; ++i) indx[i] = c.random.between(1, dense_length);
  }
  T& gathered(int i) { return y.at(indx[i] - 1); }
};

template <class T>
struct Level1Sparse : testing::Test {};
TYPED_TEST_SUITE(Level1Sparse, All4);

TYPED_TEST(Level1Sparse, Axpyi) {
  using T = TypeParam;
  for_cases([](Case& c) {
    SparseCase<T> s(c);
    const T alpha = factor<T>(c);
    Entries<T>::axpyi(&s.nz, &alpha, s.x.data(), s.indx, s.y.data());
    for (int i = 0; i < s.nz && !is_zero(alpha); ++i)
      s.gathered(i) = add(s.gathered(i), multiply(s.x.at(i), alpha));
    expect_model(s.x, s.y);
  });
}

TYPED_TEST(Level1Sparse, GatherAndScatter) {
  using T = TypeParam;
  for_cases([](Case& c) {
    SparseCase<T> s(c);
    const int kind = c.random.between(0, 2);
    if (kind == 0) Entries<T>::gthr(&s.nz, s.y.data(), s.x.data(), s.indx);
    if (kind == 1) Entries<T>::gthrz(&s.nz, s.y.data(), s.x.data(), s.indx);
    if (kind == 2) Entries<T>::sctr(&s.nz, s.x.data(), s.indx, s.y.data());
    for (int i = 0; i < s.nz; ++i) {
      if (kind == 2)
        s.gathered(i) = s.x.at(i);
      else
        s.x.at(i) = s.gathered(i);
      if (kind == 1) s.gathered(i) = T{};
    }
    expect_model(s.x, s.y);
  });
}

// The gathered dot product adds in the order of the dense one.
TYPED_TEST(Level1Sparse, DotiEqualsDenseDot) {
  using T = TypeParam;
  for_cases([](Case& c) {
    SparseCase<T> s(c);
    const int one = 1;
    // At odds with x about the boundary, so that the dense product is not peeled.
    std::vector<char> room(std::max(s.nz, 0) * sizeof(T) + 32);
    T* dense = reinterpret_cast<T*>((uintptr_t(room.data()) + 15) / 16 * 16);
    if (uintptr_t(dense) % 16 == uintptr_t(s.x.data()) % 16)
      dense = reinterpret_cast<T*>(reinterpret_cast<char*>(dense) + 4);
    for (int i = 0; i < s.nz; ++i) dense[i] = s.gathered(i);
    if constexpr (is_complex<T>) {
      EXPECT_PRED2(same_bits<T>, Entries<T>::dotui(&s.nz, s.x.data(), s.indx, s.y.data()),
                   Entries<T>::dotu(&s.nz, s.x.data(), &one, dense, &one));
      EXPECT_PRED2(same_bits<T>, Entries<T>::dotci(&s.nz, s.x.data(), s.indx, s.y.data()),
                   Entries<T>::dotc(&s.nz, s.x.data(), &one, dense, &one));
    } else {
      EXPECT_PRED2(same_bits<T>, Entries<T>::doti(&s.nz, s.x.data(), s.indx, s.y.data()),
                   Entries<T>::dot(&s.nz, s.x.data(), &one, dense, &one));
    }
    expect_model(s.x, s.y);
  });
}

template <class T>
struct Level1SparseRotation : testing::Test {};
TYPED_TEST_SUITE(Level1SparseRotation, Real2);

TYPED_TEST(Level1SparseRotation, Roti) {
  using T = TypeParam;
  for_cases([](Case& c) {
    SparseCase<T> s(c);
    const T cosine = factor<T>(c), sine = factor<T>(c);
    Entries<T>::roti(&s.nz, s.x.data(), s.indx, s.y.data(), &cosine, &sine);
    for (int i = 0; i < s.nz; ++i) {
      const T x = s.x.at(i), y = s.gathered(i);
      s.x.at(i) = x * cosine + y * sine;
      s.gathered(i) = y * cosine - x * sine;
    }
    expect_model(s.x, s.y);
  });
}

}  // namespace
}  // namespace jex::test
