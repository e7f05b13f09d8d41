// The solvers on rectangles and boxes for tests: one interface for both, in both precisions.
#pragma once

#include <gtest/gtest.h>
#include <jex/core.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace jex::test {

template <class T>
struct PdeEntries;
#define JEX_PDE_ENTRIES(t, T)                                            \
  template <>                                                            \
  struct PdeEntries<T> {                                                 \
    static constexpr auto init2 = jex_pdepl_##t##_init_helmholtz_2d;     \
    static constexpr auto commit2 = jex_pdepl_##t##_commit_helmholtz_2d; \
    static constexpr auto solve2 = jex_pdepl_##t##_helmholtz_2d;         \
    static constexpr auto init3 = jex_pdepl_##t##_init_helmholtz_3d;     \
    static constexpr auto commit3 = jex_pdepl_##t##_commit_helmholtz_3d; \
    static constexpr auto solve3 = jex_pdepl_##t##_helmholtz_3d;         \
  };
JEX_PDE_ENTRIES(d, double)
JEX_PDE_ENTRIES(s, float)
#undef JEX_PDE_ENTRIES

struct Box {
  int dimensions;
  double begin[3], end[3];
  jex_int n[3];

  double h(int axis) const { return (end[axis] - begin[axis]) / n[axis]; }
  jex_int points(int axis) const { return axis < dimensions ? n[axis] + 1 : 1; }
  size_t size() const { return size_t(points(0)) * points(1) * points(2); }
  size_t at(int i, int j, int k) const {
    return i + size_t(points(0)) * (j + size_t(points(1)) * k);
  }
};

template <class T>
struct Helmholtz {
  using E = PdeEntries<T>;
  Box box;
  jex_int ipar[80] = {}, stat = 77;
  jex_dft_dfti_handle handles[2] = {};
  std::vector<T> dpar, f, data[6];

  Helmholtz(const Box& box_, const std::string& letters, double q_)
      : box(box_), dpar(room(box_) + 1, T(-7)), f(box_.size()) {
    const T q = T(q_);
    T begin[3], end[3];
    for (int i = 0; i < 3; ++i) {
      begin[i] = T(box.begin[i]);
      end[i] = T(box.end[i]);
      for (int side = 0; side < 2 && i < box.dimensions; ++side)
        data[2 * i + side].resize(box.size() / box.points(i));
    }
    const jex_int* n = box.n;
    if (box.dimensions == 2)
      E::init2(begin, end, begin + 1, end + 1, n, n + 1, letters.c_str(), &q, ipar, dpar.data(),
               &stat);
    else
      E::init3(begin, end, begin + 1, end + 1, begin + 2, end + 2, n, n + 1, n + 2, letters.c_str(),
               &q, ipar, dpar.data(), &stat);
    EXPECT_EQ(stat, ipar[0]);
  }
  Helmholtz(const Helmholtz&) = delete;
  ~Helmholtz() {
    EXPECT_EQ(dpar.back(), T(-7)) << "more room taken than told";
    EXPECT_EQ(handles[0] ? free() : 0, 0);
  }
  static size_t room(const Box& b) {
    const auto positive = [](jex_int n) { return std::max(n, 0); };
    const int nx = positive(b.n[0]), ny = positive(b.n[1]);
    return nx + 3 * nx / 2 + 7 + (b.dimensions == 3 ? ny + 3 * ny / 2 + 2 : 0);
  }
  jex_int commit() {
    auto* d = data;
    if (box.dimensions == 2)
      E::commit2(f.data(), d[0].data(), d[1].data(), d[2].data(), d[3].data(), handles, ipar,
                 dpar.data(), &stat);
    else
      E::commit3(f.data(), d[0].data(), d[1].data(), d[2].data(), d[3].data(), d[4].data(),
                 d[5].data(), handles, handles + 1, ipar, dpar.data(), &stat);
    EXPECT_EQ(stat, ipar[0]);
    return stat;
  }
  jex_int solve() {
    auto* d = data;
    if (box.dimensions == 2)
      E::solve2(f.data(), d[0].data(), d[1].data(), d[2].data(), d[3].data(), handles, ipar,
                dpar.data(), &stat);
    else
      E::solve3(f.data(), d[0].data(), d[1].data(), d[2].data(), d[3].data(), d[4].data(),
                d[5].data(), handles, handles + 1, ipar, dpar.data(), &stat);
    return stat;
  }
  jex_int free() {
    if (box.dimensions == 2)
      jex_pdepl_free_helmholtz_2d(handles, ipar, &stat);
    else
      jex_pdepl_free_helmholtz_3d(handles, handles + 1, ipar, &stat);
    return stat;
  }
};

// visit(i, j, k) for every point of the grid.
template <class Visit>
void each_point(const Box& b, Visit visit) {
  for (int k = 0; k < b.points(2); ++k)
    for (int j = 0; j < b.points(1); ++j)
      for (int i = 0; i < b.points(0); ++i) visit(i, j, k);
}

// Place of a point of a side in its data.
inline size_t at_side(const Box& b, int axis, const int (&p)[3]) {
  size_t at = 0, step = 1;
  for (int a = 0; a < 3; ++a) {
    if (a == axis) continue;
    at += p[a] * step;
    step *= b.points(a);
  }
  return at;
}

inline bool is_neumann(const std::string& letters, int side) { return letters[side] == 'N'; }
inline bool is_given(const std::string& letters, const Box& b, const int (&p)[3]) {
  for (int a = 0; a < b.dimensions; ++a)
    if ((p[a] == 0 && !is_neumann(letters, 2 * a)) ||
        (p[a] == b.n[a] && !is_neumann(letters, 2 * a + 1)))
      return true;
  return false;
}
inline double weight(const Box& b, const int (&p)[3]) {
  double w = 1;
  for (int a = 0; a < b.dimensions; ++a)
    if (p[a] == 0 || p[a] == b.n[a]) w /= 2;
  return w;
}

inline std::vector<std::string> all_letters(int dimensions) {
  std::vector<std::string> all;
  for (int code = 0; code < 1 << (2 * dimensions); ++code) {
    std::string letters;
    for (int i = 2 * dimensions - 1; i >= 0; --i) letters += code >> i & 1 ? 'N' : 'D';
    all.push_back(letters);
  }
  return all;
}

}  // namespace jex::test
