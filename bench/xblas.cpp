// Extra-precision matrix-vector products of square matrices, unit strides. beta = 1/2 keeps y in
// range however often a product is repeated.

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <jex/types.h>

#include "case.h"

namespace jex::bench {
namespace {

template <class T>
class ProductProblem : public Problem {
 public:
  ProductProblem(jex_int n, jex_int trans)
      : n_(n), trans_(trans), a_(size_t(n) * n * parts), x_(n * parts), y_(n * parts) {}

  void fill() override {
    uint32_t state = 1;
    for (auto* array : {&a_, &x_, &y_})
      for (Real& value : *array) {
        state = state * 1664525u + 1013904223u;
        value = (Real(state >> 8) * Real(0x1p-24) - Real(0.5)) / (array == &a_ ? n_ : 1);
      }
  }

  void run(const Entry& entry, long calls) override {
    static const jex_int one = 1, extra = 214;
    static const Real half[2] = {Real(0.5), 0};
    auto* f = entry.as<void(const jex_int*, const jex_int*, const jex_int*, const Real*,
                            const Real*, const jex_int*, const Real*, const jex_int*, const Real*,
                            Real*, const jex_int*, const jex_int*)>();
    for (; calls > 0; --calls)
      f(&trans_, &n_, &n_, half, a_.data(), &n_, x_.data(), &one, half, y_.data(), &one, &extra);
  }

  double deviation(const Problem& problem) const override {
    const auto& other = static_cast<const ProductProblem&>(problem);
    double worst = 0;
    for (size_t i = 0; i < y_.size(); ++i) {
      const double d = std::abs(double(y_[i]) - double(other.y_[i])) /
                       std::abs(double(y_[i]) * std::numeric_limits<Real>::epsilon());
      if (!(d <= worst)) worst = std::isnan(d) ? std::numeric_limits<double>::infinity() : d;
    }
    return worst / 2;
  }

 private:
  static constexpr int parts = T::parts;
  using Real = typename T::Real;

  jex_int n_, trans_;
  std::vector<Real> a_, x_, y_;
};

template <class R, int p>
struct Type {
  using Real = R;
  static constexpr int parts = p;
};

template <class T>
void add(std::vector<Case>& cases, const char* routine) {
  const double element = T::parts * sizeof(typename T::Real);
  for (const jex_int trans : {111, 112})
    for (const jex_int n : {50, 200, 1000}) {
      const double products = double(n) * n * (T::parts == 2 ? 4 : 1);
      const Work work{.read_bytes = double(n) * n * element,
                      .written_bytes = n * element,
                      .flops = 2 * products,
                      .footprint = double(n) * n * element,
                      .is_double = true};
      cases.push_back(
          {std::string(routine) + "/" + std::to_string(n) + (trans == 111 ? "/N" : "/T"), routine,
           "xblas", work, n == 200,
           [n, trans] { return std::make_unique<ProductProblem<T>>(n, trans); }});
    }
}

}  // namespace

void add_xblas(std::vector<Case>& cases) {
  add<Type<float, 1>>(cases, "sgemv_x");
  add<Type<double, 1>>(cases, "dgemv_x");
  add<Type<float, 2>>(cases, "cgemv_x");
  add<Type<double, 2>>(cases, "zgemv_x");
}

}  // namespace jex::bench
