// Fourier transforms: forward, complex, one dimension, from one array to another, unscaled. Rates
// count 5 n log2(n) operations, whatever the algorithm.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include <jex/core.h>
#include <jex/dft.h>

#include "case.h"

// FFTW asks these whether it may use AVX, and finds the program's answer before its own. Held to
// SSE2 like us, it shows what the algorithms are worth; with AVX it would exceed the SSE2 peak.
#define EXPORT extern "C" __attribute__((visibility("default")))
EXPORT int fftw_have_simd_avx() { return 0; }
EXPORT int fftwf_have_simd_avx() { return 0; }
EXPORT int fftw_have_simd_avx2() { return 0; }
EXPORT int fftwf_have_simd_avx2() { return 0; }

namespace jex::bench {
namespace {

template <class R>
class FftProblem : public Problem {
 public:
  explicit FftProblem(jex_int n)
      : n_(n), x_(allocate(n)), y_(allocate(n)), module_(*jex::module()) {
    constexpr jex_int precision = sizeof(R) == 8 ? JEX_DFT_DOUBLE : JEX_DFT_SINGLE;
    check(module_.jex_dft_create_descriptor_md(&descriptor_, precision, JEX_DFT_COMPLEX, 1, &n_));
    descriptor_->word[JEX_DFT_PLACEMENT] = JEX_DFT_NOT_IN_PLACE;
    // As a user of the core has it: the ready-made cases first.
    const auto breakdowns = sizeof(R) == 8 ? module_.jex_dft_apply_bkdowns_d_c2c_1d
                                           : module_.jex_dft_apply_bkdowns_s_c2c_1d;
    if (breakdowns(descriptor_) != 0)
      check(module_.jex_dft_commit_descriptor_core(descriptor_, nullptr));
    std::memcpy(&entry_, &descriptor_->word[JEX_DFT_FORWARD_ENTRY], sizeof entry_);
  }
  FftProblem(const FftProblem&) = delete;
  FftProblem& operator=(const FftProblem&) = delete;
  ~FftProblem() override {
    const jex_dft_breakdown* active;
    std::memcpy(&active, &descriptor_->word[JEX_DFT_ACTIVE_BREAKDOWN], sizeof active);
    if (active) active->release(descriptor_);
    module_.jex_dft_free_allocated_buffers(descriptor_);
    module_.jex_serv_jex_free(descriptor_);
    std::free(x_);
    std::free(y_);
  }

  void fill() override {
    uint32_t state = 1;
    for (jex_int i = 0; i < 2 * n_; ++i) {
      state = state * 1664525u + 1013904223u;
      x_[i] = R(int32_t(state)) * R(0x1p-31);
      y_[i] = 0;
    }
  }

  void run(const Entry& entry, long calls) override {
    if (entry.abi == Abi::module) {
      for (; calls > 0; --calls) entry_(descriptor_, x_, y_);
    } else {
      auto* f = entry.as<void(const jex_int*, void*, void*)>();
      for (; calls > 0; --calls) f(&n_, x_, y_);
    }
  }

  double deviation(const Problem& problem) const override {
    const auto& other = static_cast<const FftProblem&>(problem);
    double distance = 0, size = 0;
    for (jex_int i = 0; i < 2 * n_; ++i) {
      const double d = double(y_[i]) - double(other.y_[i]);
      distance += d * d;
      size += double(other.y_[i]) * double(other.y_[i]);
    }
    const double allowed = 4 * std::numeric_limits<R>::epsilon() * std::log2(2.0 * n_);
    return std::sqrt(distance / size) / allowed;
  }

 private:
  static R* allocate(jex_int n) {
    void* p = std::aligned_alloc(64, (size_t(n) * 2 * sizeof(R) + 63) / 64 * 64);
    if (!p) throw std::bad_alloc();
    return static_cast<R*>(p);
  }
  static void check(jex_int status) {
    if (status != 0) std::abort();
  }

  jex_int n_;
  R *x_, *y_;
  const Module& module_;
  jex_dft_descriptor* descriptor_ = nullptr;
  jex_dft_compute_2 entry_;
};

template <class R>
void add(std::vector<Case>& cases, const char* routine, jex_int n) {
  const double bytes = 2.0 * n * sizeof(R);
  const Work work{.read_bytes = bytes,
                  .written_bytes = bytes,
                  .flops = 5 * n * std::log2(double(n)),
                  .footprint = 2 * bytes,
                  .is_double = sizeof(R) == 8,
                  .in_place = false};
  const bool is_quick = n == 64 || n == 1024 || n == 1000 || n == 65536;
  cases.push_back({std::string(routine) + "/" + std::to_string(n), routine, "fft", work, is_quick,
                   [n] { return std::make_unique<FftProblem<R>>(n); }});
}

}  // namespace

void add_fft(std::vector<Case>& cases) {
  std::vector<jex_int> lengths;
  for (jex_int n = 2; n <= 64; ++n) lengths.push_back(n);
  for (int order = 7; order <= 22; ++order) lengths.push_back(1 << order);
  for (const jex_int n : {80,    96,    100,   120,    144,     240,  360,  500,   720,   1000,
                          1200,  1536,  1920,  2187,   3125,    5000, 6000, 10000, 15625, 16807,
                          30030, 44100, 60000, 100000, 1000000, 101,  149,  1009,  10007})
    lengths.push_back(n);
  for (const jex_int n : lengths) {
    add<double>(cases, "zfft", n);
    add<float>(cases, "cfft", n);
  }
}

}  // namespace jex::bench
