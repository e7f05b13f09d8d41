// Level-2 cases: products, rank-one updates and triangular kernels on square matrices, unit
// strides.
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
  double entries;  // of the matrix that are read, as a share of n^2
  int written;     // 0 the vector y, 1 the matrix, 2 the vector x
  Runner run;
};

template <class T>
void gemv(const Routine& r, const Entry& entry, Operands& v, long calls) {
  static const T half = real<T>(0.5);
  auto* f =
      entry
          .as<void(const char*, const jex_int*, const jex_int*, const T*, const void*,
                   const jex_int*, const void*, const jex_int*, const T*, void*, const jex_int*)>();
  for (; calls > 0; --calls)
    f(r.options, &v.n, &v.n, &half, v.a, &v.n, v.x, &one, &half, v.y, &one);
}

/// symv and hemv.
template <class T>
void symv(const Routine& r, const Entry& entry, Operands& v, long calls) {
  static const T half = real<T>(0.5);
  auto* f = entry.as<void(const char*, const jex_int*, const T*, const void*, const jex_int*,
                          const void*, const jex_int*, const T*, void*, const jex_int*)>();
  for (; calls > 0; --calls) f(r.options, &v.n, &half, v.a, &v.n, v.x, &one, &half, v.y, &one);
}

template <class T>
void ger(const Routine&, const Entry& entry, Operands& v, long calls) {
  static const T alpha[2] = {real<T>(0.5), real<T>(-0.5)};
  auto* f = entry.as<void(const jex_int*, const jex_int*, const T*, const void*, const jex_int*,
                          const void*, const jex_int*, void*, const jex_int*)>();
  for (; calls > 0; --calls, v.parity ^= 1)
    f(&v.n, &v.n, &alpha[v.parity], v.x, &one, v.y, &one, v.a, &v.n);
}

/// trmv and trsv.
void triangular(const Routine& r, const Entry& entry, Operands& v, long calls) {
  auto* f = entry.as<void(const char*, const char*, const char*, const jex_int*, const void*,
                          const jex_int*, void*, const jex_int*)>();
  for (; calls > 0; --calls) {
    std::memcpy(v.x, v.start, v.vector_bytes);
    f(r.options, r.options + 1, r.options + 2, &v.n, v.a, &v.n, v.x, &one);
  }
}

#define TYPE(t, letter, T, sy, u)                                                               \
  {#t "gemv", "N", letter, 1, 0, gemv<T>}, {#t "gemv", "T", letter, 1, 0, gemv<T>},             \
      {#t #sy "mv", "U", letter, 0.5, 0, symv<T>}, {#t #sy "mv", "L", letter, 0.5, 0, symv<T>}, \
      {#t "ger" #u, "", letter, 1, 1, ger<T>}, {#t "trmv", "LNN", letter, 0.5, 2, triangular},  \
      {#t "trmv", "UTN", letter, 0.5, 2, triangular},                                           \
      {#t "trsv", "LNN", letter, 0.5, 2, triangular},                                           \
      {#t "trsv", "UNN", letter, 0.5, 2, triangular}, {                                         \
#t "trsv", "LTN", letter, 0.5, 2, triangular                                                \
  }
const Routine routines[] = {TYPE(s, 's', float, sy, ), TYPE(d, 'd', double, sy, ),
                            TYPE(c, 'c', jex_scomplex, he, u), TYPE(z, 'z', jex_dcomplex, he, u)};
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
    set_diagonal(static_cast<R*>(v_.a), v_.n, reals(routine_.type));
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
  const double matrix = n * n * r.entries * element, vector = n * element;
  // Two real operations for each real product; symmetric products use each entry twice.
  const double products = r.run == &triangular ? n * n / 2 : n * n;
  return {.read_bytes = matrix + 2 * vector,
          .written_bytes = r.written == 1 ? matrix : vector,
          .flops = 2 * products * (reals(r.type) == 2 ? 4 : 1),
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
