// Level-2 cases: products, rank-one and rank-two updates and triangular kernels on square matrices,
// unit strides; triangles full, packed, and as bands of a few diagonals.
//
// beta = 1/2 keeps y in range however often a product is repeated, updates come in pairs of
// opposite alpha, and the triangular kernels, which overwrite their vector, get it anew before each
// call: one copy of n elements on both sides beside n^2 / 2 products.

#include <cstring>

#include <jex/types.h>

#include "case.h"
#include "operands.h"

namespace jex::bench {
namespace {

const jex_int one = 1;
const jex_int beside = 8;  // diagonals of a band beside the main one
const jex_int band_ld = beside + 1;

/// Operands of a call. The diagonal of A is near 1 and the rest of a row small beside it.
struct Operands {
  jex_int n;
  void *a, *x, *y, *start;
  size_t vector_bytes;
  int parity;  // of the next call, 0 or 1
};

struct Routine;
using Runner = void (*)(const Routine&, const Entry&, Operands&, long calls);

struct Routine {
  const char *name, *options;  // options: the letters of the call
  char type;
  int products;  // of numbers, for each entry that is read
  int written;   // 0 the vector y, 1 the matrix, 2 the vector x
  Runner run;

  bool is_triangle() const { return name[1] != 'g'; }
  bool is_packed() const { return is_triangle() && name[2] == 'p'; }
  bool is_band() const { return is_triangle() && name[2] == 'b'; }
  double entries(double n) const {
    return is_band() ? n * band_ld : is_triangle() ? n * n / 2 : n * n;
  }
  // Place of the diagonal of row and column i.
  size_t diagonal(size_t n, size_t i) const {
    const bool upper = options[0] == 'U';
    if (is_band()) return i * band_ld + (upper ? beside : 0);
    if (is_packed()) return upper ? i * (i + 3) / 2 : i * n - i * (i - 1) / 2;
    return i * n + i;
  }
};

/// gemv, and sbmv and hbmv: a size or a width behind n, and the leading dimension of A.
template <class T>
void sized_product(const Routine& r, const Entry& entry, Operands& v, const jex_int& size,
                   const jex_int& lda, long calls) {
  static const T half = real<T>(0.5);
  auto* f =
      entry
          .as<void(const char*, const jex_int*, const jex_int*, const T*, const void*,
                   const jex_int*, const void*, const jex_int*, const T*, void*, const jex_int*)>();
  for (; calls > 0; --calls)
    f(r.options, &v.n, &size, &half, v.a, &lda, v.x, &one, &half, v.y, &one);
}
template <class T>
void gemv(const Routine& r, const Entry& entry, Operands& v, long calls) {
  sized_product<T>(r, entry, v, v.n, v.n, calls);
}
template <class T>
void sbmv(const Routine& r, const Entry& entry, Operands& v, long calls) {
  sized_product<T>(r, entry, v, beside, band_ld, calls);
}

/// symv and hemv.
template <class T>
void symv(const Routine& r, const Entry& entry, Operands& v, long calls) {
  static const T half = real<T>(0.5);
  auto* f = entry.as<void(const char*, const jex_int*, const T*, const void*, const jex_int*,
                          const void*, const jex_int*, const T*, void*, const jex_int*)>();
  for (; calls > 0; --calls) f(r.options, &v.n, &half, v.a, &v.n, v.x, &one, &half, v.y, &one);
}

/// spmv and hpmv.
template <class T>
void spmv(const Routine& r, const Entry& entry, Operands& v, long calls) {
  static const T half = real<T>(0.5);
  auto* f = entry.as<void(const char*, const jex_int*, const T*, const void*, const void*,
                          const jex_int*, const T*, void*, const jex_int*)>();
  for (; calls > 0; --calls) f(r.options, &v.n, &half, v.a, v.x, &one, &half, v.y, &one);
}

/// Of opposite signs, for calls in pairs. A real alpha is the first part of a complex one.
template <class T>
const T alphas[2] = {real<T>(0.5), real<T>(-0.5)};

template <class T>
void ger(const Routine&, const Entry& entry, Operands& v, long calls) {
  auto* f = entry.as<void(const jex_int*, const jex_int*, const T*, const void*, const jex_int*,
                          const void*, const jex_int*, void*, const jex_int*)>();
  for (; calls > 0; --calls, v.parity ^= 1)
    f(&v.n, &v.n, &alphas<T>[v.parity], v.x, &one, v.y, &one, v.a, &v.n);
}

/// syr and her.
template <class T>
void syr(const Routine& r, const Entry& entry, Operands& v, long calls) {
  auto* f = entry.as<void(const char*, const jex_int*, const T*, const void*, const jex_int*, void*,
                          const jex_int*)>();
  for (; calls > 0; --calls, v.parity ^= 1)
    f(r.options, &v.n, &alphas<T>[v.parity], v.x, &one, v.a, &v.n);
}

/// spr and hpr.
template <class T>
void spr(const Routine& r, const Entry& entry, Operands& v, long calls) {
  auto* f =
      entry.as<void(const char*, const jex_int*, const T*, const void*, const jex_int*, void*)>();
  for (; calls > 0; --calls, v.parity ^= 1)
    f(r.options, &v.n, &alphas<T>[v.parity], v.x, &one, v.a);
}

/// syr2 and her2.
template <class T>
void syr2(const Routine& r, const Entry& entry, Operands& v, long calls) {
  auto* f = entry.as<void(const char*, const jex_int*, const T*, const void*, const jex_int*,
                          const void*, const jex_int*, void*, const jex_int*)>();
  for (; calls > 0; --calls, v.parity ^= 1)
    f(r.options, &v.n, &alphas<T>[v.parity], v.x, &one, v.y, &one, v.a, &v.n);
}

/// spr2 and hpr2.
template <class T>
void spr2(const Routine& r, const Entry& entry, Operands& v, long calls) {
  auto* f = entry.as<void(const char*, const jex_int*, const T*, const void*, const jex_int*,
                          const void*, const jex_int*, void*)>();
  for (; calls > 0; --calls, v.parity ^= 1)
    f(r.options, &v.n, &alphas<T>[v.parity], v.x, &one, v.y, &one, v.a);
}

/// trmv and trsv, tpmv and tpsv, tbmv and tbsv.
void triangular(const Routine& r, const Entry& entry, Operands& v, long calls) {
  using Text = const char*;
  using Int = const jex_int*;
  auto* full = entry.as<void(Text, Text, Text, Int, const void*, Int, void*, Int)>();
  auto* packed = entry.as<void(Text, Text, Text, Int, const void*, void*, Int)>();
  auto* band = entry.as<void(Text, Text, Text, Int, Int, const void*, Int, void*, Int)>();
  const Text o = r.options;
  for (; calls > 0; --calls) {
    std::memcpy(v.x, v.start, v.vector_bytes);
    if (r.is_band())
      band(o, o + 1, o + 2, &v.n, &beside, v.a, &band_ld, v.x, &one);
    else if (r.is_packed())
      packed(o, o + 1, o + 2, &v.n, v.a, v.x, &one);
    else
      full(o, o + 1, o + 2, &v.n, v.a, &v.n, v.x, &one);
  }
}

// The routines of one type. S: of its symmetric matrices, he(r) or sy(r), hp or sp, hb or sb.
#define UPLO(name, letter, products, written, run) \
  {name, "U", letter, products, written, run}, { name, "L", letter, products, written, run }
#define TRIANGLE(t, letter, tr)                                                                   \
  {#t #tr "mv", "LNN", letter, 1, 2, triangular}, {#t #tr "mv", "UTN", letter, 1, 2, triangular}, \
      {#t #tr "sv", "LNN", letter, 1, 2, triangular},                                             \
      {#t #tr "sv", "UNN", letter, 1, 2, triangular}, {                                           \
#t #tr "sv", "LTN", letter, 1, 2, triangular                                                  \
  }
#define TYPE(t, letter, T, s, y, u)                                                         \
  {#t "gemv", "N", letter, 1, 0, gemv<T>}, {#t "gemv", "T", letter, 1, 0, gemv<T>},         \
      UPLO(#t #s #y "mv", letter, 2, 0, symv<T>), {#t "ger" #u, "", letter, 1, 1, ger<T>},  \
      UPLO(#t #s "pmv", letter, 2, 0, spmv<T>), UPLO(#t #s "bmv", letter, 2, 0, sbmv<T>),   \
      UPLO(#t #s #y "r", letter, 1, 1, syr<T>), UPLO(#t #s #y "r2", letter, 2, 1, syr2<T>), \
      UPLO(#t #s "pr", letter, 1, 1, spr<T>), UPLO(#t #s "pr2", letter, 2, 1, spr2<T>),     \
      TRIANGLE(t, letter, tr), TRIANGLE(t, letter, tp), TRIANGLE(t, letter, tb)
const Routine routines[] = {TYPE(s, 's', float, s, y, ), TYPE(d, 'd', double, s, y, ),
                            TYPE(c, 'c', jex_scomplex, h, e, u),
                            TYPE(z, 'z', jex_dcomplex, h, e, u)};
#undef UPLO
#undef TRIANGLE
#undef TYPE

template <class R>
class MatrixProblem : public Problem {
 public:
  MatrixProblem(const Routine& routine, jex_int n)
      : routine_(routine),
        vector_(size_t(n) * reals(routine.type)),
        matrix_(vector_ * n),
        arrays_((matrix_ + 3 * vector_) * sizeof(R)) {
    v_ = {n,
          arrays_.take<R>(matrix_),
          arrays_.take<R>(vector_),
          arrays_.take<R>(vector_),
          arrays_.take<R>(vector_),
          vector_ * sizeof(R),
          0};
  }

  void fill() override {
    v_.parity = 0;
    Random random;
    random.fill(static_cast<R*>(v_.a), matrix_, R(1) / v_.n);
    for (jex_int i = 0; i < v_.n; ++i)
      set_diagonal(static_cast<R*>(v_.a), routine_.diagonal(v_.n, i), i, reals(routine_.type));
    random.fill(static_cast<R*>(v_.x), vector_, R(1));
    random.fill(static_cast<R*>(v_.y), vector_, R(1));
    std::memcpy(v_.start, v_.x, v_.vector_bytes);
  }

  void run(const Entry& entry, long calls) override { routine_.run(routine_, entry, v_, calls); }

  double deviation(const Problem& problem) const override {
    const auto& other = static_cast<const MatrixProblem&>(problem);
    const size_t count = routine_.written == 1 ? matrix_ : vector_;
    return largest_difference(outcome(v_), outcome(other.v_), count) /
           (std::numeric_limits<R>::epsilon() * (64 + 4 * std::sqrt(double(v_.n))));
  }

 private:
  const R* outcome(const Operands& v) const {
    return static_cast<const R*>(routine_.written == 0 ? v.y : routine_.written == 1 ? v.a : v.x);
  }

  const Routine& routine_;
  size_t vector_, matrix_;
  Arrays arrays_;
  Operands v_;
};

Work work(const Routine& r, double n) {
  const double element = reals(r.type) * (is_double(r.type) ? 8 : 4);
  const double matrix = r.entries(n) * element, vector = n * element;
  return {.read_bytes = matrix + 2 * vector,
          .written_bytes = r.written == 1 ? matrix : vector,
          .flops = 2 * r.products * r.entries(n) * (reals(r.type) == 2 ? 4 : 1),
          .footprint = matrix + 2 * vector,
          .is_double = is_double(r.type)};
}

}  // namespace

void add_level2(std::vector<Case>& cases) {
  for (const Routine& routine : routines) {
    for (const jex_int n : {50, 200, 2000}) {
      auto make = [&routine, n]() -> std::unique_ptr<Problem> {
        if (is_double(routine.type)) return std::make_unique<MatrixProblem<double>>(routine, n);
        return std::make_unique<MatrixProblem<float>>(routine, n);
      };
      std::string name = std::string(routine.name) + "/" + std::to_string(n);
      if (*routine.options) name += std::string("/") + routine.options;
      cases.push_back({name, routine.name, "level2", work(routine, n), n == 200, make});
    }
  }
}

}  // namespace jex::bench
