#include "pdett/lifecycle.h"

#include <math.h>

#include <jex/core_imports.h>

#include "pdett/compute.h"
#include "pdett/diagnostics.h"
#include "serv/report.h"

namespace jex::pdett {

template <class R>
void init(Spelling spelling, jex_int n, jex_int type, jex_int* ipar, R* par, jex_int* stat) {
  if (spelling == Spelling::two_underscores) set_status(ipar, stat, unfinished);
  ipar[intervals] = n;
  ipar[errors] = ipar[warnings] = 1;
  ipar[kind] = type;
  ipar[makes_descriptor] = ipar[message_set] = ipar[threads] = 1;
  ipar[as_it_is] = 0;
  par[0] = R(default_tolerance<R>(n));
  set_status(ipar, stat, success);
}

namespace {

void report_fourier(const jex_int* ipar, jex_int status) {
  report(fourier_error, ipar, 0, 0, jex_dft_dfti_error_message_external(status));
}

// Ends of f that a kind takes for 0.
template <class R>
bool warns_of_data(const R* f, const jex_int* ipar, R tolerance) {
  const auto warns = [&](jex_int at, Code code) {
    if (!(fabs(double(f[at])) > double(tolerance))) return false;
    report(code, ipar, double(tolerance), 0, serv::Value(double(f[at])));
    return true;
  };
  const jex_int n = ipar[intervals];
  switch (ipar[kind]) {
    case dst_i: {
      const bool first = warns(0, first_not_zero), last = warns(n, last_not_zero);
      return first || last;
    }
    case dct_iii_ii:
    case dct_iv:
      return warns(n, staggered_last);
    case dst_iii_ii:
    case dst_iv:
      return warns(0, staggered_first);
    default:
      return false;
  }
}

template <class R>
jex_int make_descriptor(jex_dft_dfti_handle* handle, const jex_int* ipar) {
  const jex_int precision = is_double<R> ? JEX_DFT_DOUBLE : JEX_DFT_SINGLE;
  jex_int status =
      jex_dft_dfti_create_descriptor_d_1d(handle, precision, JEX_DFT_REAL, 1, ipar[intervals]);
  if (status) return status;
  status = jex_dft_dfti_set_value_intval(*handle, JEX_DFTI_PACKED_FORMAT, JEX_DFT_PERM);
  if (!status && ipar[threads] > 1)
    status = jex_dft_dfti_set_value_intval(*handle, JEX_DFTI_NUMBER_OF_USER_THREADS, ipar[threads]);
  if (!status) status = jex_dft_dfti_commit_descriptor_external(*handle);
  if (status) jex_dft_dfti_free_descriptor_external(handle);
  return status;
}

}  // namespace

template <class R>
void commit(const R* f, jex_dft_dfti_handle* handle, jex_int* ipar, R* par, jex_int* stat) {
  const jex_int n = ipar[intervals];
  if (n <= 1) {
    report(too_few_intervals, ipar, 0, 0, nullptr);
    set_status(ipar, stat, bad_argument);
    return;
  }
  if (ipar[kind] < 0 || ipar[kind] >= kinds) {
    report(unknown_kind, ipar, 0, 0, nullptr);
    set_status(ipar, stat, bad_argument);
    return;
  }
  jex_int warned = success;
  if (par[0] < 0) {
    const double replacement = default_tolerance<R>(n);
    report(negative_tolerance, ipar, double(par[0]), replacement, nullptr);
    par[0] = R(replacement);
    warned = parameter_replaced;
  }
  const bool data = !ipar[as_it_is] && warns_of_data(f, ipar, par[0]);
  if (ipar[threads] < 0) {
    report(bad_threads, ipar, 0, 0, nullptr);
    ipar[threads] = 1;
    warned = parameter_replaced;
  }
  jex_int failed = ipar[makes_descriptor] ? make_descriptor<R>(handle, ipar) : 0;
  if (!failed && !make_tables(ipar[kind], n, par)) failed = JEX_DFT_NO_MEMORY;
  if (failed) {
    report_fourier(ipar, failed);
    set_status(ipar, stat, fourier_failed);
    return;
  }
  set_status(ipar, stat, warned + (data ? data_warned : success));
}

template <class R>
void compute(Side side, R* f, jex_dft_dfti_handle* handle, jex_int* ipar, const R* par,
             jex_int* stat) {
  if (const jex_int before = ipar[last_status]; before != success) {
    report(before == unfinished ? not_initialised
           : before < 0         ? failed_before
                                : not_committed,
           ipar, 0, 0, nullptr);
    *stat = before;
    return;
  }
  const jex_int n = ipar[intervals];
  dft::Record* const record =
      ipar[kind] < 0 || ipar[kind] >= kinds ? nullptr : descriptor_of<R>(*handle, n);
  if (!record) {
    report(does_not_fit, ipar, 0, 0, nullptr);
    set_status(ipar, stat, inconsistent);
    return;
  }
  const R scale = ipar[as_it_is] || side == Side::backward ? R(1) : R(2.0 / n);
  set_status(ipar, stat, transform(ipar[kind], side, f, n, scale, par, record));
}

void free(jex_dft_dfti_handle* handle, jex_int* ipar, jex_int* stat) {
  set_status(ipar, stat, unfinished);
  const jex_int failed = jex_dft_dfti_free_descriptor_external(handle);
  if (failed) report_fourier(ipar, failed);
  set_status(ipar, stat, failed ? fourier_failed : success);
}

#define JEX_PRECISION(R)                                                        \
  template void init(Spelling, jex_int, jex_int, jex_int*, R*, jex_int*);       \
  template void commit(const R*, jex_dft_dfti_handle*, jex_int*, R*, jex_int*); \
  template void compute(Side, R*, jex_dft_dfti_handle*, jex_int*, const R*, jex_int*);
JEX_PRECISION(float)
JEX_PRECISION(double)

}  // namespace jex::pdett
