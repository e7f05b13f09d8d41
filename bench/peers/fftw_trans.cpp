// Peer library: transposition by FFTW's plans of rank 0, measured on arrays of their own and kept.
#include <cstdint>
#include <map>

#include <fftw3.h>

namespace {

using Int = int32_t;

// Shape of a transposition; in place or not.
struct Shape {
  Int m, n, lda, ldb;
  bool in_place;
  auto operator<=>(const Shape&) const = default;
};

// FFTW's functions by precision and element.
#define FFTW_TYPE(name, P, T, plan_many, execute_many)                                         \
  struct name {                                                                                \
    using Element = T;                                                                         \
    using Plan = P##plan;                                                                      \
    static T* allocate(size_t count) { return static_cast<T*>(P##malloc(count * sizeof(T))); } \
    static void free(T* p) { P##free(p); }                                                     \
    static Plan plan(const P##iodim* dims, T* a, T* b) { return plan_many; }                   \
    static void execute(Plan plan, T* a, T* b) { execute_many; }                               \
    using Dim = P##iodim;                                                                      \
  };
constexpr unsigned flags = FFTW_MEASURE | FFTW_UNALIGNED;
FFTW_TYPE(Single, fftwf_, float, fftwf_plan_guru_r2r(0, nullptr, 2, dims, a, b, nullptr, flags),
          fftwf_execute_r2r(plan, a, b))
FFTW_TYPE(Double, fftw_, double, fftw_plan_guru_r2r(0, nullptr, 2, dims, a, b, nullptr, flags),
          fftw_execute_r2r(plan, a, b))
FFTW_TYPE(ComplexSingle, fftwf_, fftwf_complex,
          fftwf_plan_guru_dft(0, nullptr, 2, dims, a, b, FFTW_FORWARD, flags),
          fftwf_execute_dft(plan, a, b))
FFTW_TYPE(ComplexDouble, fftw_, fftw_complex,
          fftw_plan_guru_dft(0, nullptr, 2, dims, a, b, FFTW_FORWARD, flags),
          fftw_execute_dft(plan, a, b))

template <class F>
void transpose(Int m, Int n, typename F::Element* a, Int lda, typename F::Element* b, Int ldb) {
  static std::map<Shape, typename F::Plan> plans;
  const Shape shape{m, n, lda, ldb, a == b};
  auto found = plans.find(shape);
  if (found == plans.end()) {
    const typename F::Dim dims[] = {{m, 1, ldb}, {n, lda, 1}};
    auto* const x = F::allocate(size_t(lda) * n);
    auto* const y = a == b ? x : F::allocate(size_t(ldb) * m);
    found = plans.emplace(shape, F::plan(dims, x, y)).first;
    if (y != x) F::free(y);
    F::free(x);
  }
  F::execute(found->second, a, b);
}

}  // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))
#define ANY_TYPE(t, F)                                                                        \
  EXPORT void t##omatcopy_(const char*, const char*, const Int* m, const Int* n, const void*, \
                           F::Element* a, const Int* lda, F::Element* b, const Int* ldb) {    \
    transpose<F>(*m, *n, a, *lda, b, *ldb);                                                   \
  }                                                                                           \
  EXPORT void t##imatcopy_(const char*, const char*, const Int* m, const Int* n, const void*, \
                           F::Element* a, const Int* lda, const Int*) {                       \
    transpose<F>(*m, *n, a, *lda, a, *lda);                                                   \
  }
ANY_TYPE(s, Single)
ANY_TYPE(d, Double)
ANY_TYPE(c, ComplexSingle)
ANY_TYPE(z, ComplexDouble)
