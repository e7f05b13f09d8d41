// Trigonometric transforms of one line, and Poisson's equation on a square.
//
// Transforms: forward and backward in turn, so that the line keeps its size; rates count
// 2.5 n log2(n) operations. Poisson: zero on all sides, on a square of such a size that the lowest
// frequency keeps its amplitude; rates count points, so that GFLOP/s read as 1e9 points a second.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include <jex/core.h>

#include "case.h"

namespace jex::bench {
namespace {

template <class R>
std::vector<R> noise(size_t size) {
  std::vector<R> x(size);
  uint32_t state = 1;
  for (R& v : x) {
    state = state * 1664525u + 1013904223u;
    v = R(int32_t(state)) * R(0x1p-31);
  }
  return x;
}

template <class R>
double distance(const std::vector<R>& x, const std::vector<R>& y, double factor) {
  double error = 0, size = 0;
  for (size_t i = 0; i < x.size(); ++i) {
    const double expected = factor * double(y[i]), d = double(x[i]) - expected;
    error += d * d;
    size += expected * expected;
  }
  return std::sqrt(error / size) / std::numeric_limits<R>::epsilon();
}

void check(jex_int status) {
  if (status != 0) std::abort();
}

template <class R>
struct Entries;
#define JEX_ENTRIES(t, R)                                                              \
  template <>                                                                          \
  struct Entries<R> {                                                                  \
    static constexpr auto init = &Module::jex_pdett_##t##_init_trig_transform;         \
    static constexpr auto commit = &Module::jex_pdett_##t##_commit_trig_transform;     \
    static constexpr auto forward = &Module::jex_pdett_##t##_forward_trig_transform;   \
    static constexpr auto backward = &Module::jex_pdett_##t##_backward_trig_transform; \
  };
JEX_ENTRIES(d, double)
JEX_ENTRIES(s, float)
#undef JEX_ENTRIES

template <class R>
class TrigProblem : public Problem {
 public:
  TrigProblem(jex_int type, jex_int n)
      : type_(type), n_(n), par_(2 * n + 1), x_(n + 1), y_(n + 1), module_(*jex::module()) {
    jex_int stat;
    (module_.*Entries<R>::init)(&n_, &type_, ipar_, par_.data(), &stat);
    (module_.*Entries<R>::commit)(x_.data(), &handle_, ipar_, par_.data(), &stat);
    check(stat);
  }
  TrigProblem(const TrigProblem&) = delete;
  ~TrigProblem() override {
    jex_int stat;
    module_.jex_pdett_free_trig_transform(&handle_, ipar_, &stat);
  }
  void fill() override {
    x_ = noise<R>(n_ + 1);
    // Ends for which the type has no point.
    if (type_ == 0 || type_ == 3 || type_ == 5) x_[0] = 0;
    if (type_ == 0 || type_ == 2 || type_ == 4) x_[n_] = 0;
    y_ = x_;
    forward_ = true;
  }
  void run(const Entry& entry, long calls) override {
    if (entry.abi == Abi::module) {
      jex_int stat;
      for (; calls > 0; --calls, forward_ = !forward_)
        (module_.*(forward_ ? Entries<R>::forward : Entries<R>::backward))(
            y_.data(), &handle_, ipar_, par_.data(), &stat);
    } else {
      auto* f = entry.as<void(const jex_int*, const R*, R*)>();
      for (; calls > 0; --calls) f(&n_, x_.data(), y_.data());
    }
  }
  // The peer's sums are unscaled and count every point twice.
  double deviation(const Problem& other) const override {
    return distance(y_, static_cast<const TrigProblem&>(other).y_, 1.0 / n_) /
           (4 + 6 * std::sqrt(double(n_)));
  }

 private:
  jex_int type_, n_, ipar_[11] = {};
  std::vector<R> par_, x_, y_;
  const Module& module_;
  jex_dft_dfti_handle handle_ = nullptr;
  bool forward_ = true;
};

class PoissonProblem : public Problem {
 public:
  explicit PoissonProblem(jex_int n)
      : n_(n),
        f_(size_t(n + 1) * (n + 1)),
        sides_(n + 1),
        par_(3 * n + 20),
        module_(*jex::module()) {
    const double zero = 0;
    jex_int stat;
    module_.jex_pdepl_d_init_helmholtz_2d(&zero, &length_, &zero, &length_, &n_, &n_, "DDDD", &zero,
                                          ipar_, par_.data(), &stat);
    const double* s = sides_.data();
    module_.jex_pdepl_d_commit_helmholtz_2d(f_.data(), s, s, s, s, &handle_, ipar_, par_.data(),
                                            &stat);
    check(stat);
  }
  PoissonProblem(const PoissonProblem&) = delete;
  ~PoissonProblem() override {
    jex_int stat;
    module_.jex_pdepl_free_helmholtz_2d(&handle_, ipar_, &stat);
  }
  void fill() override {
    f_ = noise<double>(f_.size());
    for (jex_int i = 0; i <= n_; ++i)
      f_[i] = f_[size_t(n_) * (n_ + 1) + i] = f_[size_t(i) * (n_ + 1)] =
          f_[size_t(i) * (n_ + 1) + n_] = 0;
  }
  void run(const Entry& entry, long calls) override {
    if (entry.abi == Abi::module) {
      const double* s = sides_.data();
      jex_int stat;
      for (; calls > 0; --calls)
        module_.jex_pdepl_d_helmholtz_2d(f_.data(), s, s, s, s, &handle_, ipar_, par_.data(),
                                         &stat);
    } else {
      auto* f = entry.as<void(const jex_int*, const double*, double*)>();
      for (; calls > 0; --calls) f(&n_, &length_, f_.data());
    }
  }
  double deviation(const Problem& other) const override {
    return distance(f_, static_cast<const PoissonProblem&>(other).f_, 1) / (100.0 * n_);
  }

 private:
  jex_int n_, ipar_[80] = {};
  double length_ = 3.14159265358979323846 * std::sqrt(2.0);
  std::vector<double> f_, sides_, par_;
  const Module& module_;
  jex_dft_dfti_handle handle_ = nullptr;
};

template <class R>
void add_trig(std::vector<Case>& cases, jex_int type, jex_int n) {
  const std::string routine =
      std::string(sizeof(R) == 8 ? "d" : "s") + "trig" + std::to_string(type);
  const double bytes = double(n) * sizeof(R);
  const Work work{.read_bytes = bytes,
                  .written_bytes = bytes,
                  .flops = 2.5 * n * std::log2(double(n)),
                  .footprint = bytes,
                  .is_double = sizeof(R) == 8,
                  .in_place = true};
  cases.push_back({routine + "/" + std::to_string(n), routine, "pde", work,
                   type < 3 && (n == 64 || n == 1024 || n == 65536),
                   [type, n] { return std::make_unique<TrigProblem<R>>(type, n); }});
}

}  // namespace

void add_pde(std::vector<Case>& cases) {
  for (jex_int type = 0; type < 6; ++type)
    for (int order = 6; order <= 16; ++order) {
      add_trig<double>(cases, type, 1 << order);
      add_trig<float>(cases, type, 1 << order);
    }
  for (const jex_int n : {256, 1024, 2048}) {
    const double points = double(n + 1) * (n + 1);
    const Work work{.read_bytes = 8 * points,
                    .written_bytes = 8 * points,
                    .flops = points,
                    .footprint = 8 * points,
                    .is_double = true,
                    .in_place = true};
    cases.push_back({"dpoisson/" + std::to_string(n + 1), "dpoisson", "pde", work, n == 1024,
                     [n] { return std::make_unique<PoissonProblem>(n); }});
  }
}

}  // namespace jex::bench
