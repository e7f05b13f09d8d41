// Level-1 cases: every routine at three lengths, on aligned and on displaced vectors, unit strides.
//
// Timed calls come in pairs that undo each other (alpha and 1 / alpha, a rotation and its inverse),
// so that the data stays in range however often a call is repeated.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include <jex/types.h>

#include "case.h"

namespace jex::bench {
namespace {

const jex_int one = 1;

/// What a level-1 runner sees of a problem.
struct Vectors {
  jex_int n;
  void* x;
  void* y;
  int parity;        // of the next call, 0 or 1
  double result[2];  // of the last call: a real, a complex number or an index
};

using Runner = void (*)(const Entry&, Vectors&, long calls);

// jex's complex structs and C's _Complex come back in different ways.
template <class T>
struct Fortran {
  using Result = T;
};
template <>
struct Fortran<jex_scomplex> {
  using Result = _Complex float;
};
template <>
struct Fortran<jex_dcomplex> {
  using Result = _Complex double;
};

void store(Vectors& v, double r) { v.result[0] = r; }
void store(Vectors& v, jex_scomplex r) { v.result[0] = r.re, v.result[1] = r.im; }
void store(Vectors& v, jex_dcomplex r) { v.result[0] = r.re, v.result[1] = r.im; }
void store(Vectors& v, _Complex float r) { v.result[0] = __real__ r, v.result[1] = __imag__ r; }
void store(Vectors& v, _Complex double r) { v.result[0] = __real__ r, v.result[1] = __imag__ r; }

/// A pair of scalars, of which the second undoes the first.
template <class T>
const T* undoing(int parity) {
  if constexpr (std::is_same_v<T, jex_scomplex> || std::is_same_v<T, jex_dcomplex>) {
    static const T pair[2] = {{1, 1}, {0.5, -0.5}};
    return &pair[parity];
  } else {
    static const T pair[2] = {2, 0.5};
    return &pair[parity];
  }
}

template <class T>
const T* opposite(int parity) {
  if constexpr (std::is_same_v<T, jex_scomplex> || std::is_same_v<T, jex_dcomplex>) {
    static const T pair[2] = {{0.5, 0.25}, {-0.5, -0.25}};
    return &pair[parity];
  } else {
    static const T pair[2] = {0.5, -0.5};
    return &pair[parity];
  }
}

template <class T>
void axpy(const Entry& entry, Vectors& v, long calls) {
  auto* f =
      entry
          .as<void(const jex_int*, const T*, const void*, const jex_int*, void*, const jex_int*)>();
  for (; calls > 0; --calls, v.parity ^= 1) f(&v.n, opposite<T>(v.parity), v.x, &one, v.y, &one);
}

template <class Alpha>
void scal(const Entry& entry, Vectors& v, long calls) {
  auto* f = entry.as<void(const jex_int*, const Alpha*, void*, const jex_int*)>();
  for (; calls > 0; --calls, v.parity ^= 1) f(&v.n, undoing<Alpha>(v.parity), v.x, &one);
}

/// copy and swap.
void move(const Entry& entry, Vectors& v, long calls) {
  auto* f = entry.as<void(const jex_int*, void*, const jex_int*, void*, const jex_int*)>();
  for (; calls > 0; --calls) f(&v.n, v.x, &one, v.y, &one);
}

template <class R>
void rot(const Entry& entry, Vectors& v, long calls) {
  static const R c = R(0.8), s[2] = {R(0.6), R(-0.6)};
  auto* f = entry.as<void(const jex_int*, void*, const jex_int*, void*, const jex_int*, const R*,
                          const R*)>();
  for (; calls > 0; --calls, v.parity ^= 1) f(&v.n, v.x, &one, v.y, &one, &c, &s[v.parity]);
}

template <class R>
void rotm(const Entry& entry, Vectors& v, long calls) {
  // flag -1 and h11, h21, h12, h22: all four in use.
  static const R param[2][5] = {{-1, R(0.8), R(-0.6), R(0.6), R(0.8)},
                                {-1, R(0.8), R(0.6), R(-0.6), R(0.8)}};
  auto* f =
      entry.as<void(const jex_int*, void*, const jex_int*, void*, const jex_int*, const R*)>();
  for (; calls > 0; --calls, v.parity ^= 1) f(&v.n, v.x, &one, v.y, &one, param[v.parity]);
}

template <class Result>
void dot_returning(const Entry& entry, Vectors& v, long calls) {
  auto* f =
      entry.as<Result(const jex_int*, const void*, const jex_int*, const void*, const jex_int*)>();
  for (; calls > 0; --calls) store(v, f(&v.n, v.x, &one, v.y, &one));
}

template <class Result>
void dot(const Entry& entry, Vectors& v, long calls) {
  if (entry.abi == Abi::module) {
    dot_returning<Result>(entry, v, calls);
  } else {
    dot_returning<typename Fortran<Result>::Result>(entry, v, calls);
  }
}

void sdsdot(const Entry& entry, Vectors& v, long calls) {
  static const float addend = 0.5f;
  auto* f = entry.as<float(const jex_int*, const float*, const void*, const jex_int*, const void*,
                           const jex_int*)>();
  for (; calls > 0; --calls) store(v, f(&v.n, &addend, v.x, &one, v.y, &one));
}

/// nrm2, asum, i?amax, i?amin.
template <class Result>
void reduce(const Entry& entry, Vectors& v, long calls) {
  auto* f = entry.as<Result(const jex_int*, const void*, const jex_int*)>();
  for (; calls > 0; --calls) store(v, f(&v.n, v.x, &one));
}

/// How the function results of two libraries may differ.
enum class Outcome { none, sum, norm, index };

struct Routine {
  const char* name;
  char type;          // of the elements
  int reads, writes;  // vectors
  double flops;       // for each element
  Outcome outcome;
  bool double_result;  // computed and returned in double, whatever the elements
  Runner run;
};

// clang-format off
constexpr Routine routines[] = {
    {"saxpy",  's', 2, 1,  2, Outcome::none,  false, axpy<float>},
    {"daxpy",  'd', 2, 1,  2, Outcome::none,  false, axpy<double>},
    {"caxpy",  'c', 2, 1,  8, Outcome::none,  false, axpy<jex_scomplex>},
    {"zaxpy",  'z', 2, 1,  8, Outcome::none,  false, axpy<jex_dcomplex>},
    {"sdot",   's', 2, 0,  2, Outcome::sum,   false, dot<float>},
    {"ddot",   'd', 2, 0,  2, Outcome::sum,   false, dot<double>},
    {"cdotu",  'c', 2, 0,  8, Outcome::sum,   false, dot<jex_scomplex>},
    {"cdotc",  'c', 2, 0,  8, Outcome::sum,   false, dot<jex_scomplex>},
    {"zdotu",  'z', 2, 0,  8, Outcome::sum,   false, dot<jex_dcomplex>},
    {"zdotc",  'z', 2, 0,  8, Outcome::sum,   false, dot<jex_dcomplex>},
    {"dsdot",  's', 2, 0,  2, Outcome::sum,   true,  dot<double>},
    {"sdsdot", 's', 2, 0,  2, Outcome::sum,   false, sdsdot},
    {"snrm2",  's', 1, 0,  2, Outcome::norm,  false, reduce<float>},
    {"dnrm2",  'd', 1, 0,  2, Outcome::norm,  false, reduce<double>},
    {"scnrm2", 'c', 1, 0,  4, Outcome::norm,  false, reduce<float>},
    {"dznrm2", 'z', 1, 0,  4, Outcome::norm,  false, reduce<double>},
    {"sasum",  's', 1, 0,  1, Outcome::sum,   false, reduce<float>},
    {"dasum",  'd', 1, 0,  1, Outcome::sum,   false, reduce<double>},
    {"scasum", 'c', 1, 0,  2, Outcome::sum,   false, reduce<float>},
    {"dzasum", 'z', 1, 0,  2, Outcome::sum,   false, reduce<double>},
    {"isamax", 's', 1, 0,  0, Outcome::index, false, reduce<jex_int>},
    {"idamax", 'd', 1, 0,  0, Outcome::index, false, reduce<jex_int>},
    {"icamax", 'c', 1, 0,  1, Outcome::index, false, reduce<jex_int>},
    {"izamax", 'z', 1, 0,  1, Outcome::index, false, reduce<jex_int>},
    {"isamin", 's', 1, 0,  0, Outcome::index, false, reduce<jex_int>},
    {"idamin", 'd', 1, 0,  0, Outcome::index, false, reduce<jex_int>},
    {"icamin", 'c', 1, 0,  1, Outcome::index, false, reduce<jex_int>},
    {"izamin", 'z', 1, 0,  1, Outcome::index, false, reduce<jex_int>},
    {"srot",   's', 2, 2,  6, Outcome::none,  false, rot<float>},
    {"drot",   'd', 2, 2,  6, Outcome::none,  false, rot<double>},
    {"csrot",  'c', 2, 2, 12, Outcome::none,  false, rot<float>},
    {"zdrot",  'z', 2, 2, 12, Outcome::none,  false, rot<double>},
    {"srotm",  's', 2, 2,  6, Outcome::none,  false, rotm<float>},
    {"drotm",  'd', 2, 2,  6, Outcome::none,  false, rotm<double>},
    {"sscal",  's', 1, 1,  1, Outcome::none,  false, scal<float>},
    {"dscal",  'd', 1, 1,  1, Outcome::none,  false, scal<double>},
    {"cscal",  'c', 1, 1,  6, Outcome::none,  false, scal<jex_scomplex>},
    {"zscal",  'z', 1, 1,  6, Outcome::none,  false, scal<jex_dcomplex>},
    {"csscal", 'c', 1, 1,  2, Outcome::none,  false, scal<float>},
    {"zdscal", 'z', 1, 1,  2, Outcome::none,  false, scal<double>},
    {"scopy",  's', 1, 1,  0, Outcome::none,  false, move},
    {"dcopy",  'd', 1, 1,  0, Outcome::none,  false, move},
    {"ccopy",  'c', 1, 1,  0, Outcome::none,  false, move},
    {"zcopy",  'z', 1, 1,  0, Outcome::none,  false, move},
    {"sswap",  's', 2, 2,  0, Outcome::none,  false, move},
    {"dswap",  'd', 2, 2,  0, Outcome::none,  false, move},
    {"cswap",  'c', 2, 2,  0, Outcome::none,  false, move},
    {"zswap",  'z', 2, 2,  0, Outcome::none,  false, move},
};
// clang-format on

bool is_complex(char type) { return type == 'c' || type == 'z'; }
bool is_double(char type) { return type == 'd' || type == 'z'; }
int reals(char type) { return is_complex(type) ? 2 : 1; }
int real_size(char type) { return is_double(type) ? 8 : 4; }
int element_size(char type) { return reals(type) * real_size(type); }

/// Vectors a routine has: copy writes one that it does not read.
int vectors(const Routine& r) { return std::strstr(r.name, "copy") ? 2 : r.reads; }

/// Memory on a 64-byte line, displaced by some bytes.
class Buffer {
 public:
  Buffer(size_t bytes, size_t displacement)
      : base_(std::aligned_alloc(64, (bytes + displacement + 127) / 64 * 64)),
        displacement_(displacement) {
    if (!base_) throw std::bad_alloc();
  }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  ~Buffer() { std::free(base_); }
  void* data() const { return static_cast<char*>(base_) + displacement_; }

 private:
  void* base_;
  size_t displacement_;
};

/// The larger one; NaN counts as infinite.
double worse(double worst, double d) {
  if (d <= worst) return worst;
  return std::isnan(d) ? std::numeric_limits<double>::infinity() : d;
}

struct Offsets {
  const char* name;
  int x, y;  // elements
  bool quick;
};
constexpr Offsets offsets[] = {
    {"aligned", 0, 0, true}, {"x+1", 1, 0, true}, {"x+1,y+1", 1, 1, false}};

// y begins 17 lines after a line that x's place alone would give it: large vectors all begin at
// the same place of a page, where a load waits for the store of 4096 bytes before.
constexpr size_t y_shift = 17 * 64;

template <class R>
class VectorProblem : public Problem {
 public:
  VectorProblem(const Routine& routine, jex_int n, const Offsets& at)
      : routine_(routine),
        count_(size_t(n) * reals(routine.type)),
        x_(count_ * sizeof(R), at.x * element_size(routine.type)),
        y_(vectors(routine) > 1 ? count_ * sizeof(R) + y_shift : 64,
           vectors(routine) > 1 ? y_shift + at.y * element_size(routine.type) : 0),
        v_{n, x_.data(), y_.data(), 0, {0, 0}} {}

  void fill() override {
    v_.parity = 0;
    v_.result[0] = v_.result[1] = 0;
    fill(x(), 1);
    if (vectors(routine_) > 1) fill(y(), 2);
    if (routine_.outcome == Outcome::index) plant_extremes();
  }

  void run(const Entry& entry, long calls) override { routine_.run(entry, v_, calls); }

  double deviation(const Problem& problem) const override {
    const auto& other = static_cast<const VectorProblem&>(problem);
    double worst = 0;
    for (int i = 0; i < 2; ++i) {
      worst = worse(worst, std::abs(v_.result[i] - other.v_.result[i]) / result_bound());
    }
    if (routine_.writes == 0) return worst;
    const double bound = 16 * std::numeric_limits<R>::epsilon();
    worst = worse(worst, distance(x(), other.x()) / bound);
    if (vectors(routine_) > 1) worst = worse(worst, distance(y(), other.y()) / bound);
    return worst;
  }

 private:
  R* x() const { return static_cast<R*>(v_.x); }
  R* y() const { return static_cast<R*>(v_.y); }

  /// Magnitudes in [0.5, 1). The sign is that of the element's number in every vector, so that the
  /// terms of a product mostly agree in sign and its value stands out of the rounding errors.
  /// Random numbers for a while, then the same again.
  void fill(R* v, uint32_t seed) {
    const int width = reals(routine_.type);
    uint32_t magnitude = seed * 747796405u, sign = 12345;
    const size_t period = std::min<size_t>(count_, 65536);
    for (size_t i = 0; i < period; i += width) {
      sign = sign * 1664525u + 1013904223u;
      for (int k = 0; k < width; ++k) {
        magnitude = magnitude * 1664525u + 1013904223u;
        const R m = R(0.5) + R(magnitude >> 9) * R(0x1p-24);
        v[i + k] = (sign & 0x80000000u) ? -m : m;
      }
    }
    for (size_t i = period; i < count_; i += period) {
      std::memcpy(v + i, v, std::min(period, count_ - i) * sizeof(R));
    }
  }

  /// One largest and one smallest element, so that every library must find the same.
  void plant_extremes() {
    const int width = reals(routine_.type);
    for (int k = 0; k < width; ++k) {
      x()[count_ / width * 3 / 4 * width + k] = -2;
      x()[count_ / width * 2 / 3 * width + k] = R(0.25);
    }
  }

  /// Sums in any order: a few rounding errors for the square root of the number of terms.
  double result_bound() const {
    const bool in_double = sizeof(R) == 8 || routine_.double_result;
    const double eps = in_double ? 0x1p-52 : 0x1p-23;
    const double n = double(count_);
    switch (routine_.outcome) {
      case Outcome::sum:
        return 4 * eps * std::sqrt(n) * n;
      case Outcome::norm:
        return 4 * eps * std::sqrt(n) * std::abs(v_.result[0]);
      default:
        return 0.5;
    }
  }

  /// Largest difference, NaN as infinite. Equal blocks are passed over quickly: vectors are long.
  double distance(const R* a, const R* b) const {
    constexpr size_t block = 4096;
    double worst = 0;
    for (size_t begin = 0; begin < count_; begin += block) {
      const size_t end = std::min(begin + block, count_);
      int unequal = 0;
      for (size_t i = begin; i < end; ++i) unequal += a[i] != b[i];
      if (unequal == 0) continue;
      for (size_t i = begin; i < end; ++i) worst = worse(worst, std::abs(a[i] - b[i]));
    }
    return worst;
  }

  const Routine& routine_;
  size_t count_;
  Buffer x_, y_;
  Vectors v_;
};

Work work(const Routine& r, double n) {
  const double vector = n * element_size(r.type);
  return {.read_bytes = r.reads * vector,
          .written_bytes = r.writes * vector,
          .flops = r.flops * n,
          .footprint = vectors(r) * vector,
          .is_double = is_double(r.type),
          .in_place = vectors(r) == r.reads};
}

}  // namespace

void add_level1(std::vector<Case>& cases) {
  struct Length {
    const char* name;
    jex_int n;
    bool quick;
  };
  static constexpr Length lengths[] = {
      {"1000", 1000, true}, {"100000", 100000, true}, {"10000000", 10000000, false}};
  for (const Routine& routine : routines) {
    for (const Length& length : lengths) {
      for (const Offsets& at : offsets) {
        if (at.y != 0 && vectors(routine) < 2) continue;
        auto make = [&routine, n = length.n, &at]() -> std::unique_ptr<Problem> {
          if (is_double(routine.type))
            return std::make_unique<VectorProblem<double>>(routine, n, at);
          return std::make_unique<VectorProblem<float>>(routine, n, at);
        };
        cases.push_back({std::string(routine.name) + "/" + length.name + "/" + at.name,
                         routine.name, "level1", work(routine, length.n), length.quick && at.quick,
                         make});
      }
    }
  }
}

}  // namespace jex::bench
