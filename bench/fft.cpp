// Fourier transforms: forward, from one array to another, unscaled; complex or real, one dimension
// or several of the same length. Rates count 5 n log2(n) operations, half of that for real ones,
// whatever the algorithm.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

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

// rank dimensions of length n; with is_real to the half spectrum.
struct Shape {
  jex_int n;
  int rank = 1;
  bool is_real = false;

  size_t points() const {
    size_t all = 1;
    for (int i = 0; i < rank; ++i) all *= size_t(n);
    return all;
  }
  size_t operands() const { return is_real ? points() : 2 * points(); }
  size_t results() const { return is_real ? points() / n * (n / 2 + 1) * 2 : 2 * points(); }
};

template <class R>
class FftProblem : public Problem {
 public:
  explicit FftProblem(const Shape& shape)
      : n_(shape.n),
        operands_(shape.operands()),
        results_(shape.results()),
        x_(allocate(operands_)),
        y_(allocate(results_)),
        module_(*jex::module()) {
    constexpr bool is_double = sizeof(R) == 8;
    const std::vector<jex_int> lengths(shape.rank, n_);
    check(module_.jex_dft_create_descriptor_md(
        &descriptor_, is_double ? JEX_DFT_DOUBLE : JEX_DFT_SINGLE,
        shape.is_real ? JEX_DFT_REAL : JEX_DFT_COMPLEX, shape.rank, lengths.data()));
    descriptor_->word[JEX_DFT_PLACEMENT] = JEX_DFT_NOT_IN_PLACE;
    descriptor_->word[JEX_DFT_CONJUGATE_EVEN_STORAGE] = JEX_DFT_INTERLEAVED;
    // Rows of the half spectrum without gaps, as the peers have them.
    for (int i = 1, step = n_ / 2 + 1; shape.is_real && i < shape.rank; ++i, step *= n_)
      descriptor_[i].word[JEX_DFT_OUTPUT_STRIDE] = step;
    // As a user of the core has it: the ready-made cases first.
    const auto breakdowns =
        is_double ? module_.jex_dft_apply_bkdowns_d_c2c_1d : module_.jex_dft_apply_bkdowns_s_c2c_1d;
    if (shape.is_real || shape.rank > 1 || breakdowns(descriptor_) != 0)
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
    for (size_t i = 0; i < operands_; ++i) {
      state = state * 1664525u + 1013904223u;
      x_[i] = R(int32_t(state)) * R(0x1p-31);
    }
    std::fill(y_, y_ + results_, R(0));
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
    for (size_t i = 0; i < results_; ++i) {
      const double d = double(y_[i]) - double(other.y_[i]);
      distance += d * d;
      size += double(other.y_[i]) * double(other.y_[i]);
    }
    const double allowed = 4 * std::numeric_limits<R>::epsilon() * std::log2(2.0 * results_);
    return std::sqrt(distance / size) / allowed;
  }

 private:
  static R* allocate(size_t numbers) {
    void* p = std::aligned_alloc(64, (numbers * sizeof(R) + 63) / 64 * 64);
    if (!p) throw std::bad_alloc();
    return static_cast<R*>(p);
  }
  static void check(jex_int status) {
    if (status != 0) std::abort();
  }

  jex_int n_;
  size_t operands_, results_;
  R *x_, *y_;
  const Module& module_;
  jex_dft_descriptor* descriptor_ = nullptr;
  jex_dft_compute_2 entry_;
};

template <class R>
void add(std::vector<Case>& cases, const char* routine, const Shape& shape) {
  const double points = double(shape.points());
  const double bytes_in = double(shape.operands()) * sizeof(R),
               bytes_out = double(shape.results()) * sizeof(R);
  const Work work{.read_bytes = bytes_in,
                  .written_bytes = bytes_out,
                  .flops = (shape.is_real ? 2.5 : 5.0) * points * std::log2(points),
                  .footprint = bytes_in + bytes_out,
                  .is_double = sizeof(R) == 8,
                  .in_place = false};
  const jex_int n = shape.n;
  const bool is_quick =
      shape.rank == 1 ? n == 64 || n == 1024 || n == 1000 || n == 65536 : shape.points() == 65536;
  cases.push_back({std::string(routine) + "/" + std::to_string(n), routine, "fft", work, is_quick,
                   [shape] { return std::make_unique<FftProblem<R>>(shape); }});
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
    add<double>(cases, "zfft", {n});
    add<float>(cases, "cfft", {n});
    add<double>(cases, "drfft", {.n = n, .is_real = true});
    add<float>(cases, "srfft", {.n = n, .is_real = true});
  }
  for (const jex_int n : {64, 256, 1000, 1024}) {
    add<double>(cases, "zfft2d", {.n = n, .rank = 2});
    add<float>(cases, "cfft2d", {.n = n, .rank = 2});
    add<double>(cases, "drfft2d", {.n = n, .rank = 2, .is_real = true});
  }
  for (const jex_int n : {32, 128}) {
    add<double>(cases, "zfft3d", {.n = n, .rank = 3});
    add<float>(cases, "cfft3d", {.n = n, .rank = 3});
  }
}

}  // namespace jex::bench
