#include "pdepl/sphere.h"

#include <math.h>
#include <stddef.h>

#include <jex/core_imports.h>

#include "pdepl/diagnostics.h"
#include "pdepl/steps.h"
#include "pdett/lifecycle.h"
#include "serv/memory.h"
#include "serv/report.h"

namespace jex::pdepl {
namespace {

constexpr double pi = 3.14159265358979323846;
constexpr int first_colatitude = 2;  // element of dpar

template <class T>
struct SphereSteps {
  using Transform = void(T*, jex_dft_dfti_handle*, const jex_int*, const T*, jex_int*);
  using Solve = void(T*, const jex_int*, const T*, jex_int*);
  Transform *ft, *inv_ft;
  Solve *lu, *lu_with_poles;
};
template <class T>
SphereSteps<T> sphere_steps(Longitudes longitudes);
#define JEX_STEPS(t, T)                                                                           \
  template <>                                                                                     \
  SphereSteps<T> sphere_steps(Longitudes longitudes) {                                            \
    if (longitudes == Longitudes::all)                                                            \
      return {jex_pdepl_##t##_ft_pp, jex_pdepl_##t##_inv_ft_pp, jex_pdepl_##t##_sph_lu_2d_dd,     \
              jex_pdepl_##t##_sph_lu_globe};                                                      \
    return {jex_pdepl_##t##_sl_ft_dd, jex_pdepl_##t##_inv_sl_ft_dd, jex_pdepl_##t##_sph_lu_2d_dd, \
            jex_pdepl_##t##_sph_lu_globe};                                                        \
  }
JEX_STEPS(d, double)
JEX_STEPS(s, float)
#undef JEX_STEPS

// Eigenvalues of -u'' in second differences, in the order of the frequencies: of a Fourier
// transform 0, n/2, 1, 1, 2, 2, .. for even n, 0, 1, 1, .. for odd n; of a sine transform 0 .. n,
// where 0 and n carry nothing.
template <class T>
void make_terms(Longitudes longitudes, T* terms, jex_int n, double length) {
  for (jex_int c = 0; c <= n; ++c) {
    double half_turns = double(c) / 2;
    if (longitudes == Longitudes::all)
      half_turns = c == 0 ? 0 : n % 2 ? (c + 1) / 2 : c == 1 ? n / 2 : c / 2;
    const double root = 2 * n / length * sin(pi * half_turns / n);
    terms[c] = T(root * root);
  }
  if (longitudes == Longitudes::all) terms[n] = terms[0] + T(1);  // the repeated point
}

template <class T>
jex_int make_fourier(jex_dft_dfti_handle* handle, jex_int n, jex_int user_threads) {
  const jex_int precision = sizeof(T) == 8 ? JEX_DFT_DOUBLE : JEX_DFT_SINGLE;
  jex_int status = jex_dft_dfti_create_descriptor_d_1d(handle, precision, JEX_DFT_REAL, 1, n);
  if (status) return status;
  status = jex_dft_dfti_set_value_intval(*handle, JEX_DFTI_PACKED_FORMAT, JEX_DFT_PERM);
  if (!status && user_threads > 1)
    status = jex_dft_dfti_set_value_intval(*handle, JEX_DFTI_NUMBER_OF_USER_THREADS, user_threads);
  if (!status) status = jex_dft_dfti_commit_descriptor_external(*handle);
  if (status) jex_dft_dfti_free_descriptor_external(handle);
  return status;
}

}  // namespace

template <class T>
void SphereSolver<T>::init(T ap, T bp, T at, T bt, jex_int np, jex_int nt, T q) const {
  set_status(ipar, stat, unfinished);
  ipar[errors] = ipar[warnings] = 1;
  ipar[intervals] = np;
  ipar[intervals + 1] = nt;
  dpar[lengths] = bp - ap;
  dpar[lengths + 1] = bt - at;
  dpar[first_colatitude] = at;
  dpar[coefficient] = q;
  dpar[tolerance] = T(sizeof(T) == 8 ? 1e-10 : 1e-5);
  const auto is_near = [&](double x, double y) { return fabs(x - y) <= double(dpar[tolerance]); };
  ipar[conditions] = (is_near(double(at), 0) ? 1 : 0) + (is_near(double(bt), pi) ? 2 : 0);
  ipar[message_set] = ipar[threads] = 1;
  set_status(ipar, stat, success);
}

template <class T>
void SphereSolver<T>::commit(Longitudes longitudes, jex_dft_dfti_handle* handle) const {
  const bool is_sector = longitudes == Longitudes::sector;
  const double q = double(dpar[coefficient]), slack = double(dpar[tolerance]);
  const double length = double(dpar[lengths]), at = double(dpar[first_colatitude]);
  const auto refuse = [&](Code code, const char* text = nullptr) {
    report(code, ipar, q, text);
    set_status(ipar, stat, bad_argument);
  };
  const jex_int np = ipar[intervals], nt = ipar[intervals + 1];
  if (np < 2) return refuse(bad_x);
  if (nt < 2) return refuse(bad_y);
  const double longest = 2 * pi;
  if (!(length > 0 && length <= longest + slack) ||
      (!is_sector && !(fabs(length - longest) <= slack)))
    return refuse(bad_domain, "phi");
  if (!(dpar[lengths + 1] > 0 && at >= -slack && at + double(dpar[lengths + 1]) <= pi + slack))
    return refuse(bad_domain, "theta");

  // A sector ends at the pole in a point with a value of its own.
  if (is_sector) ipar[conditions] = 0;
  dpar[lengths + 1] /= T(nt);
  *stat = unfinished;
  ipar[work_begin] = first_terms + 1;
  ipar[work_begin + 1] = first_terms + 1 + np;
  ipar[trig_begin] = is_sector ? ipar[work_begin + 1] + 1 : 0;
  ipar[trig_begin + 1] = is_sector ? ipar[trig_begin] + 3 * np / 2 : 0;
  T* const terms = dpar + first_terms;
  terms[0] = terms[np] = 0;
  jex_int final_status = success;
  if (q < 0) {
    report(negative_coefficient, ipar, q, nullptr);
    final_status = warned;
  }
  jex_int failed;
  if (is_sector) {
    jex_int* const trig = ipar + transforms;
    T* const par = dpar + ipar[trig_begin] - 1;
    pdett::init(pdett::Spelling::one_underscore, np, pdett::dst_i, trig, par, stat);
    par[0] = dpar[tolerance];
    trig[pdett::errors] = ipar[errors];
    trig[pdett::warnings] = ipar[warnings];
    trig[pdett::message_set] = ipar[message_set];
    trig[pdett::threads] = ipar[threads];
    pdett::commit(terms, handle, trig, par, stat);
    failed = *stat < success ? *stat : jex_int(success);
  } else {
    failed = make_fourier<T>(handle, np, ipar[threads]);
  }
  if (failed) {
    report(transform_error, ipar, q, serv::Value(failed));
    set_status(ipar, stat, transform_failed);
    return;
  }
  make_terms(longitudes, terms, np, length);
  set_status(ipar, stat, final_status);
}

template <class T>
void SphereSolver<T>::solve(Longitudes longitudes, T* f, jex_dft_dfti_handle* handle) const {
  const bool is_sector = longitudes == Longitudes::sector;
  const double q = double(dpar[coefficient]);
  if (ipar[last_status] != success && ipar[last_status] != warned) {
    report(failed_before, ipar, q, nullptr);
    set_status(ipar, stat, not_committed);
    return;
  }
  const jex_int np = ipar[intervals], nt = ipar[intervals + 1];
  if (np < 2 || nt < 2) {
    report(np < 2 ? bad_x : bad_y, ipar, q, nullptr);
    set_status(ipar, stat, bad_argument);
    return;
  }
  set_status(ipar, stat, unfinished);
  // The sides of a sector hold their values in f; the sine transform has none for them.
  T* sides = nullptr;
  if (is_sector) {
    sides = static_cast<T*>(serv::allocate(2 * uint32_t(nt + 1) * sizeof(T), 16));
    if (!sides) {
      set_status(ipar, stat, transform_failed);
      return;
    }
    for (jex_int j = 0; j <= nt; ++j) {
      sides[2 * j] = f[ptrdiff_t(j) * (np + 1)];
      sides[2 * j + 1] = f[ptrdiff_t(j) * (np + 1) + np];
    }
  }
  const SphereSteps<T> steps = sphere_steps<T>(longitudes);
  jex_int inner = success, status = success;
  steps.ft(f, handle, ipar, dpar, &status);
  if (status >= 0) (ipar[conditions] ? steps.lu_with_poles : steps.lu)(f, ipar, dpar, &inner);
  if (status >= 0 && inner >= 0) steps.inv_ft(f, handle, ipar, dpar, &status);
  if (status < 0) inner = status;
  if (is_sector) {
    for (jex_int j = 0; j <= nt; ++j) {
      f[ptrdiff_t(j) * (np + 1)] = sides[2 * j];
      f[ptrdiff_t(j) * (np + 1) + np] = sides[2 * j + 1];
    }
    serv::deallocate(sides);
  }
  if (inner < 0) {
    set_status(ipar, stat, inner);
    return;
  }
  if (inner == warned) report(singular_problem, ipar, q, nullptr);
  ipar[last_status] = success;
  *stat = inner;
}

void free_sphere(Longitudes longitudes, jex_dft_dfti_handle* handle, jex_int* ipar, jex_int* stat) {
  *stat = unfinished;
  if (longitudes == Longitudes::sector)
    pdett::free(handle, ipar + transforms, stat);
  else
    *stat = jex_dft_dfti_free_descriptor_external(handle);
  const jex_int failed = *stat;
  if (failed) report(release_error, ipar, 0, serv::Value(failed));
  set_status(ipar, stat, failed ? transform_failed : success);
}

template struct SphereSolver<double>;
template struct SphereSolver<float>;

}  // namespace jex::pdepl
