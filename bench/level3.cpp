// Level-3 cases on square matrices.
//
// beta = 1/2 keeps C in range however often a product is repeated; the triangular kernels, which
// overwrite B, get it anew before each call: one copy of n^2 elements beside n^3 products.

#include <cstring>

#include <jex/types.h>

#include "case.h"
#include "operands.h"

namespace jex::bench {
namespace {

struct Operands {
  jex_int n;
  void *a, *b, *c, *start;
  size_t bytes;
};

struct Routine;
using Runner = void (*)(const Routine&, const Entry&, Operands&, long calls);

struct Routine {
  const char *name, *options;  // options: the letters of the call
  char type;
  double products;  // as a share of n^3
  Runner run;
};

template <class T>
void gemm(const Routine& r, const Entry& entry, Operands& v, long calls) {
  static const T one = real<T>(1), half = real<T>(0.5);
  auto* f = entry.as<void(const char*, const char*, const jex_int*, const jex_int*, const jex_int*,
                          const T*, const void*, const jex_int*, const void*, const jex_int*,
                          const T*, void*, const jex_int*)>();
  for (; calls > 0; --calls)
    f(r.options, r.options + 1, &v.n, &v.n, &v.n, &one, v.a, &v.n, v.b, &v.n, &half, v.c, &v.n);
}

// C := A A^T + C / 2
template <class T>
void syrk(const Routine& r, const Entry& entry, Operands& v, long calls) {
  static const T one = real<T>(1), half = real<T>(0.5);
  auto* f = entry.as<void(const char*, const char*, const jex_int*, const jex_int*, const T*,
                          const void*, const jex_int*, const T*, void*, const jex_int*)>();
  for (; calls > 0; --calls)
    f(r.options, r.options + 1, &v.n, &v.n, &one, v.a, &v.n, &half, v.c, &v.n);
}

// C := A B + C / 2, A symmetric
template <class T>
void symm(const Routine& r, const Entry& entry, Operands& v, long calls) {
  static const T one = real<T>(1), half = real<T>(0.5);
  auto* f =
      entry
          .as<void(const char*, const char*, const jex_int*, const jex_int*, const T*, const void*,
                   const jex_int*, const void*, const jex_int*, const T*, void*, const jex_int*)>();
  for (; calls > 0; --calls)
    f(r.options, r.options + 1, &v.n, &v.n, &one, v.a, &v.n, v.b, &v.n, &half, v.c, &v.n);
}

// trmm and trsm
template <class T>
void triangular(const Routine& r, const Entry& entry, Operands& v, long calls) {
  static const T one = real<T>(1);
  auto* f =
      entry
          .as<void(const char*, const char*, const char*, const char*, const jex_int*,
                   const jex_int*, const T*, const void*, const jex_int*, void*, const jex_int*)>();
  const char* o = r.options;
  for (; calls > 0; --calls) {
    std::memcpy(v.c, v.start, v.bytes);
    f(o, o + 1, o + 2, o + 3, &v.n, &v.n, &one, v.a, &v.n, v.c, &v.n);
  }
}

#define TYPE(t, letter, T)                                                                    \
  {#t "gemm", "NN", letter, 1, gemm<T>}, {#t "gemm", "TN", letter, 1, gemm<T>},               \
      {#t "gemm", "NT", letter, 1, gemm<T>}, {#t "syrk", "LN", letter, 0.5, syrk<T>},         \
      {#t "syrk", "UT", letter, 0.5, syrk<T>}, {#t "symm", "LL", letter, 1, symm<T>},         \
      {#t "symm", "RU", letter, 1, symm<T>}, {#t "trmm", "LLNN", letter, 0.5, triangular<T>}, \
      {#t "trmm", "RUNN", letter, 0.5, triangular<T>},                                        \
      {#t "trsm", "LLNN", letter, 0.5, triangular<T>},                                        \
      {#t "trsm", "LUTN", letter, 0.5, triangular<T>}, {                                      \
#t "trsm", "RUNN", letter, 0.5, triangular < T>                                           \
  }
const Routine routines[] = {TYPE(s, 's', float),
                            TYPE(d, 'd', double),
                            TYPE(c, 'c', jex_scomplex),
                            TYPE(z, 'z', jex_dcomplex),
                            {"cgemm3m", "NN", 'c', 1, gemm<jex_scomplex>},
                            {"zgemm3m", "NN", 'z', 1, gemm<jex_dcomplex>}};
#undef TYPE

template <class R>
class ProductProblem : public Problem {
 public:
  ProductProblem(const Routine& routine, jex_int n)
      : routine_(routine),
        count_(size_t(n) * n * reals(routine.type)),
        arrays_(4 * count_ * sizeof(R)) {
    v_ = {n,
          arrays_.take<R>(count_),
          arrays_.take<R>(count_),
          arrays_.take<R>(count_),
          arrays_.take<R>(count_),
          count_ * sizeof(R)};
  }

  void fill() override {
    Random random;
    random.fill(static_cast<R*>(v_.a), count_, R(1) / v_.n);
    for (jex_int i = 0; i < v_.n; ++i)
      set_diagonal(static_cast<R*>(v_.a), size_t(i) * v_.n + i, i, reals(routine_.type));
    random.fill(static_cast<R*>(v_.b), count_, R(1));
    random.fill(static_cast<R*>(v_.c), count_, R(1));
    std::memcpy(v_.start, v_.b, v_.bytes);
  }

  void run(const Entry& entry, long calls) override { routine_.run(routine_, entry, v_, calls); }

  double deviation(const Problem& problem) const override {
    const auto& other = static_cast<const ProductProblem&>(problem);
    return largest_difference(static_cast<R*>(v_.c), static_cast<R*>(other.v_.c), count_) /
           (std::numeric_limits<R>::epsilon() * (64 + 4 * std::sqrt(double(v_.n))));
  }

 private:
  const Routine& routine_;
  size_t count_;
  Arrays arrays_;
  Operands v_;
};

Work work(const Routine& r, double n) {
  const double bytes = n * n * reals(r.type) * (is_double(r.type) ? 8 : 4);
  return {.read_bytes = 3 * bytes,
          .written_bytes = bytes,
          .flops = 2 * r.products * n * n * n * (reals(r.type) == 2 ? 4 : 1),
          .footprint = 3 * bytes,
          .is_double = is_double(r.type)};
}

}  // namespace

void add_level3(std::vector<Case>& cases) {
  for (const Routine& routine : routines) {
    for (const jex_int n : {4, 8, 16, 33, 50, 64, 100, 200, 500, 1000, 2000}) {
      auto make = [&routine, n]() -> std::unique_ptr<Problem> {
        if (is_double(routine.type)) return std::make_unique<ProductProblem<double>>(routine, n);
        return std::make_unique<ProductProblem<float>>(routine, n);
      };
      const std::string name =
          std::string(routine.name) + "/" + std::to_string(n) + "/" + routine.options;
      cases.push_back({name, routine.name, "level3", work(routine, n), n == 200, make});
    }
  }
}

}  // namespace jex::bench
