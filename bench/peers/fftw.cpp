// Peer library: FFTW, planned by its measuring mode. One symbol for each precision and kind:
//   zfft_, cfft_(n, x, y)       y := forward transform of x, n complex elements, unscaled
//   zfft2d_, zfft3d_, cfft2d_.. the same of n x n, n x n x n elements
//   drfft_, srfft_(n, x, y)     n numbers to n/2 + 1 complex elements; drfft2d_: n x n
// A plan is made at the first call of its length, on arrays of its own, and kept.
#include <map>

#include <fftw3.h>

namespace {

struct Double {
  using Plan = fftw_plan;
  using Real = double;
  using Complex = fftw_complex;
  static constexpr auto complex = fftw_plan_dft;
  static constexpr auto real = fftw_plan_dft_r2c;
  static constexpr auto run_complex = fftw_execute_dft;
  static constexpr auto run_real = fftw_execute_dft_r2c;
  static constexpr auto allocate = fftw_malloc;
  static constexpr auto release = fftw_free;
};
struct Single {
  using Plan = fftwf_plan;
  using Real = float;
  using Complex = fftwf_complex;
  static constexpr auto complex = fftwf_plan_dft;
  static constexpr auto real = fftwf_plan_dft_r2c;
  static constexpr auto run_complex = fftwf_execute_dft;
  static constexpr auto run_real = fftwf_execute_dft_r2c;
  static constexpr auto allocate = fftwf_malloc;
  static constexpr auto release = fftwf_free;
};

template <class P, int rank, bool is_real>
typename P::Plan plan_for(int n) {
  static std::map<int, typename P::Plan> plans;
  typename P::Plan& plan = plans[n];
  if (!plan) {
    size_t points = 1;
    int lengths[rank];
    for (int& length : lengths) points *= size_t(length = n);
    auto* x = P::allocate((points + points / n * 2) * sizeof(typename P::Complex));
    auto* y = P::allocate((points + points / n * 2) * sizeof(typename P::Complex));
    auto* result = static_cast<typename P::Complex*>(y);
    if constexpr (is_real)
      plan = P::real(rank, lengths, static_cast<typename P::Real*>(x), result, FFTW_MEASURE);
    else
      plan = P::complex(rank, lengths, static_cast<typename P::Complex*>(x), result, FFTW_FORWARD,
                        FFTW_MEASURE);
    P::release(x);
    P::release(y);
  }
  return plan;
}

// The plan of the last call is at hand, so that no search is timed.
template <class P, int rank, bool is_real>
void run(int n, void* x, void* y) {
  static int last = 0;
  static typename P::Plan plan;
  if (n != last) plan = plan_for<P, rank, is_real>(last = n);
  auto* result = static_cast<typename P::Complex*>(y);
  if constexpr (is_real)
    P::run_real(plan, static_cast<typename P::Real*>(x), result);
  else
    P::run_complex(plan, static_cast<typename P::Complex*>(x), result);
}

}  // namespace

#define FFT(name, P, rank, is_real)                                                             \
  extern "C" __attribute__((visibility("default"))) void name(const int* n, void* x, void* y) { \
    run<P, rank, is_real>(*n, x, y);                                                            \
  }
FFT(zfft_, Double, 1, false)
FFT(cfft_, Single, 1, false)
FFT(drfft_, Double, 1, true)
FFT(srfft_, Single, 1, true)
FFT(zfft2d_, Double, 2, false)
FFT(cfft2d_, Single, 2, false)
FFT(drfft2d_, Double, 2, true)
FFT(zfft3d_, Double, 3, false)
FFT(cfft3d_, Single, 3, false)
