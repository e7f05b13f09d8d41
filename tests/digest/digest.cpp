// jex-digest: one line for each kernel whose order of sums is told: its name and a digest of every
// bit that it leaves behind over a fixed set of calls. Builds for different systems print the same.
// "jex-digest spoiled" changes one bit of one result.

#include <jex/core.h>

#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <utility>

namespace {

constexpr int order = 150, stride = order + 3;

// The operands of every call. Elements are multiples of 1/4096 between -1 and 1, the diagonal of a
// is above 2 so that solves stay small; whatever the type of the elements, the bits are the same
// everywhere.
template <class R>
struct Operands {
  alignas(64) R a[2 * stride * order], b[2 * stride * order], c[2 * stride * order];
  alignas(64) R x[2 * 3 * order], y[2 * 3 * order];
  jex_int columns[8 * order], rows[order + 1];

  // parts: reals of an element
  void fill(int parts) {
    uint32_t state = 1;
    const auto next = [&] {
      state = state * 1664525 + 1013904223;
      return R(int(state >> 19) - 4096) / 4096;
    };
    for (R* array : {a, b, c})
      for (int i = 0; i < 2 * stride * order; ++i) array[i] = next();
    for (R* vector : {x, y})
      for (int i = 0; i < 2 * 3 * order; ++i) vector[i] = next();
    for (int i = 0; i < order; ++i) a[parts * (i * stride + i)] = 3 + next();
    // Row i of a sparse matrix has up to eight entries: columns ..., i - 6, i - 3, i.
    int count = 0;
    for (int i = 0; i < order; ++i) {
      rows[i] = count;
      for (int e = i < 24 ? i / 3 : 7; e >= 0; --e) columns[count++] = i - 3 * e;
    }
    rows[order] = count;
  }
};

class Digest {
 public:
  void add(const void* from, size_t size) {
    const auto* words = static_cast<const char*>(from);
    for (size_t i = 0; i < size; i += sizeof(uint32_t)) {
      uint32_t word;
      memcpy(&word, words + i, sizeof word);
      value_ = (value_ ^ word) * 0x100000001b3;
    }
  }
  void print(const char* name) const {
    printf("%-36s %016llx\n", name, static_cast<unsigned long long>(value_));
  }

 private:
  uint64_t value_ = 0xcbf29ce484222325;  // Fowler, Noll and Vo's hash, of words
};

bool spoiled = false;

template <class T>
struct Real {
  using type = T;
};
template <>
struct Real<jex_scomplex> {
  using type = float;
};
template <>
struct Real<jex_dcomplex> {
  using type = double;
};

// One entry over its calls: digests what they return and leave in the operands.
template <class T, class Entry>
class Kernel {
  using R = typename Real<T>::type;
  static inline Operands<R> operands;

 public:
  static inline T* const a = reinterpret_cast<T*>(operands.a);
  static inline T* const b = reinterpret_cast<T*>(operands.b);
  static inline T* const c = reinterpret_cast<T*>(operands.c);
  static inline T* const x = reinterpret_cast<T*>(operands.x);
  static inline T* const y = reinterpret_cast<T*>(operands.y);
  static inline jex_int *const columns = operands.columns, *const rows = operands.rows;

  Kernel(const char* name, Entry entry) : name_(name), entry_(entry) {}
  ~Kernel() { digest_.print(name_); }

  template <class... A>
  void operator()(A... arguments) {
    operands.fill(sizeof(T) / sizeof(R));
    if constexpr (std::is_void_v<decltype(entry_(arguments...))>) {
      entry_(arguments...);
    } else {
      const auto result = entry_(arguments...);
      digest_.add(&result, sizeof result);
    }
    if (std::exchange(spoiled, false)) reinterpret_cast<unsigned char*>(y)[1] ^= 1;
    digest_.add(&operands, offsetof(Operands<R>, columns));
  }

 private:
  const char* name_;
  Entry entry_;
  Digest digest_;
};

constexpr jex_int lengths[] = {1, 2, 7, 16, 33, 100, 149};
constexpr jex_int increments[] = {1, 2, -1};
constexpr jex_int ld = stride, one = 1, last = order;
template <class T>
constexpr T scalar(typename Real<T>::type re) {
  if constexpr (sizeof(T) == sizeof re)
    return re;
  else
    return {re, 0};
}
template <class T>
constexpr T alpha = scalar<T>(0.75);
template <class T>
constexpr T beta = scalar<T>(-0.5);

template <class Call>
void each(const char* letters, Call call) {
  for (; *letters; ++letters) call(letters);
}
template <class Call>
void each_length(Call call) {
  for (const jex_int& n : lengths) call(&n);
}
template <class Call>
void each_vector(Call call) {
  for (const jex_int& n : lengths)
    for (const jex_int& inc : increments) call(&n, &inc);
}

// The signatures.

template <class T>
void axpy(auto k) {
  each_vector([&](auto n, auto inc) { k(n, &alpha<T>, k.x, inc, k.y, inc); });
}
template <class T>
void scal(auto k) {
  each_vector([&](auto n, auto inc) { k(n, &alpha<T>, k.x, inc); });
}
template <class T>
void of_one(auto k) {
  each_vector([&](auto n, auto inc) { k(n, k.x, inc); });
}
template <class T>
void of_two(auto k) {
  each_vector([&](auto n, auto inc) { k(n, k.x, inc, k.y, inc); });
}
template <class T>
void gemv(auto k) {
  each("NTC", [&](auto trans) {
    each_vector([&](auto n, auto inc) {
      k(trans, n, n, &alpha<T>, k.a, &ld, k.x, inc, &beta<T>, k.y, inc);
    });
  });
}
template <class T>
void triangular(auto k) {
  each("UL", [&](auto uplo) {
    each("NTC", [&](auto trans) {
      each_vector([&](auto n, auto inc) { k(uplo, trans, "N", n, k.a, &ld, k.x, inc); });
    });
  });
}
template <class T>
void gemm(auto k) {
  each("NTC", [&](auto transa) {
    each("NTC", [&](auto transb) {
      each_length([&](auto n) {
        k(transa, transb, n, &lengths[5], n, &alpha<T>, k.a, &ld, k.b, &ld, &beta<T>, k.c, &ld);
      });
    });
  });
}
template <class T>
void triangular_matrix(auto k) {
  each("LR", [&](auto side) {
    each("UL", [&](auto uplo) {
      each("NT", [&](auto trans) {
        each_length(
            [&](auto n) { k(side, uplo, trans, "N", n, n, &alpha<T>, k.a, &ld, k.b, &ld); });
      });
    });
  });
}
template <class T>
void syrk(auto k) {
  each("UL", [&](auto uplo) {
    each("NT", [&](auto trans) {
      each_length([&](auto n) { k(uplo, trans, n, n, &alpha<T>, k.a, &ld, &beta<T>, k.c, &ld); });
    });
  });
}
template <class T>
void omatcopy(auto k) {
  each("RC", [&](auto ordering) {
    each("NTCR", [&](auto trans) {
      each_length([&](auto n) { k(*ordering, *trans, *n, *n, alpha<T>, k.a, ld, k.b, ld); });
    });
  });
}
template <class T>
void csr_rows(auto k) {
  k(&one, &last, &last, &alpha<T>, k.a, k.columns, k.rows, k.rows + 1, k.x, k.y);
}
template <class T>
void csr_all(auto k) {
  k(&last, &alpha<T>, k.a, k.columns, k.rows, k.rows + 1, k.x, k.y);
}
template <class T>
void csr_solve(auto k) {
  k(&last, &alpha<T>, k.a, k.columns, k.rows, k.rows + 1, k.y);
}

// How an entry of this name and element type is called, from the table of the module.
#define DIGEST(call, T, name) \
  call<T>(Kernel<T, decltype(module.jex_##name)>("jex_" #name, module.jex_##name));

// t: letter of the type; r: its letters where the result is real.
#define TYPE(t, T, r)                                   \
  DIGEST(axpy, T, blas_##t##axpy)                       \
  DIGEST(scal, T, blas_##t##scal)                       \
  DIGEST(of_two, T, blas_##t##swap)                     \
  DIGEST(of_one, T, blas_i##t##amax)                    \
  DIGEST(of_one, T, blas_##r##asum)                     \
  DIGEST(of_one, T, blas_##r##nrm2)                     \
  DIGEST(gemv, T, blas_##t##gemv)                       \
  DIGEST(triangular, T, blas_##t##trmv)                 \
  DIGEST(triangular, T, blas_##t##trsv)                 \
  DIGEST(gemm, T, blas_x##t##gemm)                      \
  DIGEST(triangular_matrix, T, blas_x##t##trmm)         \
  DIGEST(triangular_matrix, T, blas_x##t##trsm)         \
  DIGEST(syrk, T, blas_x##t##syrk)                      \
  DIGEST(omatcopy, T, trans_jex_##t##omatcopy)          \
  DIGEST(csr_rows, T, spblas_##t##csr0ng__c__mvout_par) \
  DIGEST(csr_all, T, spblas_##t##csr0tg__c__mvout_seq)  \
  DIGEST(csr_solve, T, spblas_##t##csr0ntluc__svout_seq)

void print_all(const jex::Module& module) {
  TYPE(s, float, s)
  TYPE(d, double, d)
  TYPE(c, jex_scomplex, sc)
  TYPE(z, jex_dcomplex, dz)
  DIGEST(of_two, float, blas_sdot)
  DIGEST(of_two, double, blas_ddot)
  DIGEST(of_two, jex_scomplex, blas_cdotu)
  DIGEST(of_two, jex_scomplex, blas_cdotc)
  DIGEST(of_two, jex_dcomplex, blas_zdotu)
  DIGEST(of_two, jex_dcomplex, blas_zdotc)
}

}  // namespace

int main(int argc, char** argv) {
  spoiled = argc > 1 && !strcmp(argv[1], "spoiled");
  const jex::Module* module = jex::module();
  if (!module) return 1;
  print_all(*module);
}
