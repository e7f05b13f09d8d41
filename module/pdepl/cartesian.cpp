#include "pdepl/cartesian.h"

#include <math.h>
#include <stddef.h>

#include "pdepl/diagnostics.h"
#include "pdepl/steps.h"
#include "pdett/lifecycle.h"
#include "serv/report.h"
#include "simd/lanes.h"

namespace jex::pdepl {
namespace {

constexpr jex_int unknown_letter = -100;

jex_int condition_of(char letter) {
  return letter == 'D' || letter == 'd' ? 0 : letter == 'N' || letter == 'n' ? 1 : -1;
}

// Conditions of the two ends of an axis: 0 both Dirichlet .. 3 both Neumann.
int ends_of(const jex_int* ipar, int axis) {
  return 2 * ipar[sides + 2 * axis] + ipar[sides + 2 * axis + 1];
}
jex_int transform_of(int ends) {
  return ends == 0 ? pdett::dst_i : ends == 3 ? pdett::dct_i : pdett::dct_iii_ii;
}

// Where the tables of a transformed axis stand in dpar, counted from 1.
struct Places {
  jex_int work_begin, work_end, trig_begin, trig_end;

  static Places told(const jex_int* ipar, int axis) {
    const jex_int *work = ipar + work_begin_of(axis), *trig = ipar + trig_begin_of(axis);
    return {work[0], work[1], trig[0], trig[1]};
  }
  void tell(jex_int* ipar, int axis) const {
    jex_int *work = ipar + work_begin_of(axis), *trig = ipar + trig_begin_of(axis);
    work[0] = work_begin, work[1] = work_end;
    trig[0] = trig_begin, trig[1] = trig_end;
  }
  bool operator==(const Places&) const = default;

 private:
  static int work_begin_of(int axis) { return pdepl::work_begin + 2 * axis; }
  static int trig_begin_of(int axis) { return pdepl::trig_begin + 2 * axis; }
};

// In turn: the terms of each axis, then the transform of each.
template <int dimensions>
void place_tables(const jex_int* ipar, Places (&places)[dimensions - 1]) {
  jex_int at = first_terms + 1;
  for (int axis = 0; axis < dimensions - 1; ++axis) {
    places[axis].work_begin = at;
    places[axis].work_end = at + ipar[intervals + axis];
    at = places[axis].work_end + 1;
  }
  for (int axis = 0; axis < dimensions - 1; ++axis) {
    places[axis].trig_begin = at;
    places[axis].trig_end = at + 3 * ipar[intervals + axis] / 2;
    at = places[axis].trig_end + 1;
  }
}

// Diagonal terms of the frequencies of an axis: the eigenvalues of -u'' in second differences, plus
// q, times the square of the last axis' step.
template <class T>
void make_terms(T* terms, jex_int n, int ends, double length, double q, double last_step) {
  const double square = last_step * last_step, per_step = 2 * n / length;
  const bool is_mixed = ends == 1 || ends == 2;
  for (jex_int k = 0; k <= n; ++k) {
    const double angle = 1.57079632679489661923 * (is_mixed ? k + 0.5 : double(k)) / n;
    const double root = per_step * sin(angle);
    terms[k] = T(square * (root * root + q));
  }
}

// A column of a side is a run of one element.
template <class T>
void copy_run(const T* from, T* to, ptrdiff_t count) {
  using V = simd::Lanes<T>;
  ptrdiff_t i = 0;
  for (; i + V::count <= count; i += V::count) V::load(from + i).store(to + i);
  for (; i < count; ++i) to[i] = from[i];
}

// Dirichlet values, axis by axis: a side consists of runs of elements side by side.
template <int dimensions, class T>
void restore_sides(const jex_int* ipar, T* f, const T* const (&data)[2 * dimensions]) {
  ptrdiff_t points = 1, run = 1;
  for (int i = 0; i < dimensions; ++i) points *= ipar[intervals + i] + 1;
  for (int i = 0; i < dimensions; ++i) {
    const ptrdiff_t n = ipar[intervals + i], step = run * (n + 1);
    for (int end = 0; end < 2; ++end) {
      if (ipar[sides + 2 * i + end] != 0) continue;
      const T* from = data[2 * i + end];
      for (T* to = f + (end ? n * run : 0); to < f + points; to += step, from += run)
        copy_run(from, to, run);
    }
    run = step;
  }
}

}  // namespace

template <class T, int dimensions>
void Solver<T, dimensions>::init(const T (&ends)[2 * dimensions], const jex_int (&n)[dimensions],
                                 const char* letters, T q) const {
  set_status(ipar, stat, unfinished);
  ipar[errors] = ipar[warnings] = 1;
  for (int i = 0; i < dimensions; ++i) ipar[intervals + i] = n[i];
  jex_int code = 0;
  for (int i = 0; i < 2 * dimensions; ++i) {
    const jex_int condition = ipar[sides + i] = condition_of(letters[i]);
    code += condition < 0 ? unknown_letter : condition << (2 * dimensions - 1 - i);
  }
  ipar[conditions] = code;
  // The sides whose letter ends the call: the far ones of the second and the third axis.
  for (int i = 3; i < 2 * dimensions; i += 2)
    if (ipar[sides + i] < 0) return;
  for (int i = 0; i < dimensions; ++i) dpar[lengths + i] = ends[2 * i + 1] - ends[2 * i];
  dpar[coefficient] = q;
  dpar[tolerance] = T(1e-10);
  ipar[message_set] = ipar[threads] = 1;
  set_status(ipar, stat, success);
}

template <class T, int dimensions>
void Solver<T, dimensions>::commit(Handle* const (&handles)[dimensions - 1]) const {
  constexpr int last = dimensions - 1;
  const double q = double(dpar[coefficient]);
  const auto refuse = [&](int code, const char* text = nullptr) {
    report(Code(code), ipar, q, text);
    set_status(ipar, stat, bad_argument);
  };
  if (ipar[conditions] < 0 || ipar[conditions] >= 1 << (2 * dimensions))
    return refuse(bad_conditions);
  static constexpr char axes[][2] = {"x", "y", "z"};
  for (int i = 0; i < dimensions; ++i) {
    if (ipar[intervals + i] < (i == last ? 1 : 2)) return refuse(bad_x + i);
    if (!(dpar[lengths + i] > 0)) return refuse(bad_domain, axes[i]);
  }

  dpar[lengths + last] /= T(ipar[intervals + last]);
  *stat = unfinished;
  Places places[last];
  place_tables<dimensions>(ipar, places);
  for (int i = 0; i < last; ++i) {
    places[i].tell(ipar, i);
    T* const work = dpar + places[i].work_begin - 1;
    work[0] = work[ipar[intervals + i]] = 0;
  }
  jex_int final_status = success;
  if (q < 0) {
    report(negative_coefficient, ipar, q, nullptr);
    final_status = warned;
  }
  for (int i = 0; i < last; ++i) {
    const jex_int n = ipar[intervals + i];
    const int ends = ends_of(ipar, i);
    jex_int* const trig = ipar + transforms + transform_size * i;
    T* const par = dpar + places[i].trig_begin - 1;
    T* const work = dpar + places[i].work_begin - 1;
    pdett::init(pdett::Spelling::one_underscore, n, transform_of(ends), trig, par, stat);
    if (*stat == success) {
      par[0] = dpar[tolerance];
      trig[pdett::errors] = ipar[errors];
      trig[pdett::warnings] = ipar[warnings];
      trig[pdett::message_set] = ipar[message_set];
      trig[pdett::threads] = ipar[threads];
      pdett::commit(work, handles[i], trig, par, stat);
    }
    if (*stat < success) {
      report(transform_error, ipar, q, serv::Value(*stat));
      for (int made = 0; made < i; ++made) {
        jex_int ignored;
        pdett::free(handles[made], ipar + transforms + transform_size * made, &ignored);
      }
      set_status(ipar, stat, transform_failed);
      return;
    }
    if (*stat != success) final_status = warned;
    trig[pdett::last_status] = success;
    make_terms(work, n, ends, double(dpar[lengths + i]), i == 0 ? q : 0,
               double(dpar[lengths + last]));
  }
  set_status(ipar, stat, final_status);
}

template <class T, int dimensions>
void Solver<T, dimensions>::solve(T* f, const T* const (&data)[2 * dimensions],
                                  Handle* const (&handles)[dimensions - 1]) const {
  const double q = double(dpar[coefficient]);
  if (ipar[last_status] != success && ipar[last_status] != warned) {
    report(failed_before, ipar, q, nullptr);
    set_status(ipar, stat, not_committed);
    return;
  }
  for (int i = 0; i < dimensions; ++i)
    if (ipar[intervals + i] < 1) {
      set_status(ipar, stat, unfinished);
      report(Code(bad_x + i), ipar, q, nullptr);
      set_status(ipar, stat, bad_argument);
      return;
    }
  set_status(ipar, stat, unfinished);

  jex_int flag = success;
  Places places[dimensions - 1];
  place_tables<dimensions>(ipar, places);
  for (int i = 0; i < dimensions - 1; ++i)
    if (!(Places::told(ipar, i) == places[i])) flag = warned;
  if (flag) report(moved_tables, ipar, q, nullptr);

  // A status above 0 is a warning of the second step.
  jex_int inner = success;
  const auto run = [&](auto step) {
    jex_int status = success;
    if (inner >= 0) step(&status);
    if (status) inner = status;
  };
  const int code = ipar[conditions] >> 2;
  const auto& d = data;
  if constexpr (dimensions == 2) {
    const Steps2<T>& steps = steps_2d<T>(code & 3);
    run([&](jex_int* s) { steps.ft(f, d[0], d[1], d[2], d[3], handles[0], ipar, dpar, s); });
    run([&](jex_int* s) { steps.lu(f, ipar, dpar, s); });
    run([&](jex_int* s) { steps.inv_ft(f, handles[0], ipar, dpar, s); });
  } else {
    const Steps3<T>& steps = steps_3d<T>(code & 15);
    run([&](jex_int* s) {
      steps.ft(f, d[0], d[1], d[2], d[3], d[4], d[5], handles[0], handles[1], ipar, dpar, s);
    });
    run([&](jex_int* s) { steps.lu(f, ipar, dpar, s); });
    run([&](jex_int* s) { steps.inv_ft(f, handles[0], handles[1], ipar, dpar, s); });
  }
  *stat = inner;
  if (inner != success && inner != warned) {
    ipar[last_status] = inner;
    return;
  }
  if (inner == warned) report(singular_problem, ipar, q, nullptr);
  restore_sides<dimensions>(ipar, f, data);
  ipar[last_status] = flag;
  if (flag) *stat = warned;
}

template <int dimensions>
void free(Handle* const (&handles)[dimensions - 1], jex_int* ipar, jex_int* stat) {
  *stat = unfinished;
  jex_int failed = success;
  for (int i = 0; i < dimensions - 1; ++i) {
    pdett::free(handles[i], ipar + transforms + transform_size * i, stat);
    if (*stat != success) failed = *stat;
  }
  if (failed == success) {
    ipar[last_status] = *stat = success;
    return;
  }
  // The switch for warnings names the flavour here.
  if (ipar[errors] != 0)
    print(ipar[warnings] ? Flavour::c : Flavour::f, release_error, ipar, 0, serv::Value(failed));
  set_status(ipar, stat, transform_failed);
}

template struct Solver<double, 2>;
template struct Solver<float, 2>;
template struct Solver<double, 3>;
template struct Solver<float, 3>;
template void free<2>(Handle* const (&)[1], jex_int*, jex_int*);
template void free<3>(Handle* const (&)[2], jex_int*, jex_int*);

}  // namespace jex::pdepl
