// Peer library: FFTW, planned by its measuring mode. One symbol for each precision:
//   zfft_(n, x, y): y := forward transform of x, n complex elements, unscaled
// A plan is made at the first call of its length, on arrays of its own, and kept.
#include <map>

#include <fftw3.h>

namespace {

template <class Plan, class Complex>
struct Functions {
  Plan (*plan)(int, Complex*, Complex*, int, unsigned);
  void (*execute)(Plan, Complex*, Complex*);
  void* (*allocate)(size_t);
  void (*release)(void*);
};
const Functions<fftw_plan, fftw_complex> doubles = {fftw_plan_dft_1d, fftw_execute_dft, fftw_malloc,
                                                    fftw_free};
const Functions<fftwf_plan, fftwf_complex> singles = {fftwf_plan_dft_1d, fftwf_execute_dft,
                                                      fftwf_malloc, fftwf_free};

template <class Plan, class Complex>
Plan plan_for(const Functions<Plan, Complex>& f, int n) {
  static std::map<int, Plan> plans;
  Plan& plan = plans[n];
  if (!plan) {
    auto* x = static_cast<Complex*>(f.allocate(n * sizeof(Complex)));
    auto* y = static_cast<Complex*>(f.allocate(n * sizeof(Complex)));
    plan = f.plan(n, x, y, FFTW_FORWARD, FFTW_MEASURE);
    f.release(x);
    f.release(y);
  }
  return plan;
}

}  // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))

// The plan of the last call, so that no search is timed.
#define FFT(name, Plan, Complex, functions)                \
  EXPORT void name(const int* n, Complex* x, Complex* y) { \
    static int last = 0;                                   \
    static Plan plan;                                      \
    if (*n != last) plan = plan_for(functions, last = *n); \
    functions.execute(plan, x, y);                         \
  }
FFT(zfft_, fftw_plan, fftw_complex, doubles)
FFT(cfft_, fftwf_plan, fftwf_complex, singles)
