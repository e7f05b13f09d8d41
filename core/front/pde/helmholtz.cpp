// Checks of the solvers' front, and the module's entries behind them.
#include "front/checked.h"
#include "threads/threads.h"

#include <jex/pde.h>

#include <cmath>
#include <new>
#include <vector>

namespace jex::front {
namespace {

constexpr jex_int no_memory = -2;

bool is_condition(char letter) {
  return letter == 'D' || letter == 'd' || letter == 'N' || letter == 'n';
}

template <class T>
jex_int wrong_helmholtz(jex_int dimensions, const T* begin, const T* end, const jex_int* n,
                        const char* conditions, T q, const T* const* data, const T* f) {
  if (dimensions != 2 && dimensions != 3) return 1;
  if (!begin) return 2;
  if (!end) return 3;
  if (!n) return 4;
  for (jex_int i = 0; i < dimensions; ++i) {
    if (!std::isfinite(begin[i])) return 2;
    if (!std::isfinite(end[i]) || !(end[i] > begin[i])) return 3;
  }
  int64_t bytes = sizeof(T);
  for (jex_int i = 0; i < dimensions; ++i) {
    if (n[i] < (i == dimensions - 1 ? 1 : 2)) return 4;
    bytes *= int64_t(n[i]) + 1;
    if (bytes > INT32_MAX) return 4;
  }
  if (!conditions) return 5;
  for (jex_int i = 0; i < 2 * dimensions; ++i)
    if (!is_condition(conditions[i])) return 5;
  if (!std::isfinite(q)) return 6;
  if (!data) return 7;
  return f ? 0 : 8;
}

template <class T>
struct Entries;
#define JEX_ENTRIES(t, T)                                                           \
  template <>                                                                       \
  struct Entries<T> {                                                               \
    static constexpr auto init_2d = &Module::jex_pdepl_##t##_init_helmholtz_2d;     \
    static constexpr auto commit_2d = &Module::jex_pdepl_##t##_commit_helmholtz_2d; \
    static constexpr auto solve_2d = &Module::jex_pdepl_##t##_helmholtz_2d;         \
    static constexpr auto init_3d = &Module::jex_pdepl_##t##_init_helmholtz_3d;     \
    static constexpr auto commit_3d = &Module::jex_pdepl_##t##_commit_helmholtz_3d; \
    static constexpr auto solve_3d = &Module::jex_pdepl_##t##_helmholtz_3d;         \
  };
JEX_ENTRIES(d, double)
JEX_ENTRIES(s, float)

// The transforms and their parameters, released with the object.
template <class T>
class Solver {
  using E = Entries<T>;

 public:
  Solver(const Module& module, jex_int dimensions, const jex_int* n)
      : module_(module),
        dimensions_(dimensions),
        n_(n),
        par_(9 + n[0] + 3 * n[0] / 2 + n[1] + 3 * n[1] / 2) {}
  Solver(const Solver&) = delete;
  ~Solver() {
    jex_int stat;
    if (!is_committed_) return;
    if (dimensions_ == 2)
      module_.jex_pdepl_free_helmholtz_2d(handles_, ipar_, &stat);
    else
      module_.jex_pdepl_free_helmholtz_3d(handles_, handles_ + 1, ipar_, &stat);
  }

  bool commit(const T* begin, const T* end, const char* conditions, T q) {
    jex_int stat;
    T* const par = par_.data();
    if (dimensions_ == 2)
      (module_.*E::init_2d)(begin, end, begin + 1, end + 1, n_, n_ + 1, conditions, &q, ipar_, par,
                            &stat);
    else
      (module_.*E::init_3d)(begin, end, begin + 1, end + 1, begin + 2, end + 2, n_, n_ + 1, n_ + 2,
                            conditions, &q, ipar_, par, &stat);
    ipar_[1] = ipar_[2] = 0;
    ipar_[22] = thread_limit();
    if (dimensions_ == 2)
      (module_.*E::commit_2d)(nullptr, nullptr, nullptr, nullptr, nullptr, handles_, ipar_, par,
                              &stat);
    else
      (module_.*E::commit_3d)(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                              handles_, handles_ + 1, ipar_, par, &stat);
    return is_committed_ = stat >= 0;
  }

  bool solve(T* f, const T* const* d) {
    jex_int stat;
    if (dimensions_ == 2)
      (module_.*E::solve_2d)(f, d[0], d[1], d[2], d[3], handles_, ipar_, par_.data(), &stat);
    else
      (module_.*E::solve_3d)(f, d[0], d[1], d[2], d[3], d[4], d[5], handles_, handles_ + 1, ipar_,
                             par_.data(), &stat);
    return stat >= 0;
  }

 private:
  const Module& module_;
  jex_int dimensions_, ipar_[80] = {};
  const jex_int* n_;
  std::vector<T> par_;
  jex_dft_dfti_handle handles_[2] = {};
  bool is_committed_ = false;
};

// Sides without data get zeros.
template <class T>
jex_int solve(const Module& module, jex_int dimensions, const T* begin, const T* end,
              const jex_int* n, const char* conditions, T q, const T* const* data, T* f) {
  size_t points = 1;
  for (jex_int i = 0; i < dimensions; ++i) points *= size_t(n[i]) + 1;
  const T* sides[6];
  std::vector<T> zeros;
  for (jex_int i = 0; i < 2 * dimensions; ++i)
    if (!data[i]) zeros.resize(std::max(zeros.size(), points / (size_t(n[i / 2]) + 1)));
  for (jex_int i = 0; i < 2 * dimensions; ++i) sides[i] = data[i] ? data[i] : zeros.data();
  Solver<T> solver(module, dimensions, n);
  return solver.commit(begin, end, conditions, q) && solver.solve(f, sides) ? 0 : no_memory;
}

template <class T>
jex_int helmholtz(jex_int dimensions, const T* begin, const T* end, const jex_int* n,
                  const char* conditions, T q, const T* const* data, T* f) {
  jex_int outcome = 0;
  const jex_int answer =
      checked(wrong_helmholtz(dimensions, begin, end, n, conditions, q, data, f),
              [&](const Module& module) {
                try {
                  outcome = solve(module, dimensions, begin, end, n, conditions, q, data, f);
                } catch (const std::bad_alloc&) {
                  outcome = no_memory;
                }
              });
  return answer ? answer : outcome;
}

}  // namespace
}  // namespace jex::front

#define JEX_HELMHOLTZ(t, T)                                                                      \
  jex_int jex_##t##helmholtz(jex_int dimensions, const T* begin, const T* end, const jex_int* n, \
                             const char* conditions, T q, const T* const* data, T* f) {          \
    return jex::front::helmholtz(dimensions, begin, end, n, conditions, q, data, f);             \
  }
JEX_HELMHOLTZ(s, float)
JEX_HELMHOLTZ(d, double)
