// The steps of the solvers on the sphere.
//
// Colatitudes theta(j) = at + j h. Cells of the width h round the points, a cap of the angle h / 2
// round a pole; with e(j) = sin(theta(j) + h / 2) / h and the cells' weights w, the equation of the
// frequency with the eigenvalue l in longitude is
//
//   (e(j-1) + e(j) + w(j) (q + l / sin^2 theta(j))) u(j) - e(j-1) u(j-1) - e(j) u(j+1) = w(j) f(j).
//
// At a pole only the frequency 0 has a value.
#include "pde/grid.h"
#include "pde/line.h"
#include "pde/tridiagonal.h"

#include <atomic>
#include <cmath>
#include <memory>
#include <new>
#include <vector>

namespace jex::pde {
namespace {

struct Row {
  double weight, before, after;  // w, e(j-1), e(j)
  double per_term;               // w / sin^2 theta
  bool is_pole;
};

template <class T>
class Sphere {
 public:
  Sphere(T* f, jex_dft_dfti_handle* handle, const jex_int* ipar, const T* dpar)
      : f_(f), handle_(handle), ipar_(ipar), dpar_(dpar) {}

  jex_int transform(Way way, bool is_periodic) const try {
    const Module* const module = jex::module();
    if (!module) return no_module;
    const std::vector<Row> rows = make_rows();
    const jex_int first = first_row(), last = last_row();
    std::atomic<bool> failed{false};
    if (way == Way::forward) add_ends(rows, is_periodic);
    share(parts(), nt() + 1, [&](jex_int begin, jex_int end, int i) {
      const Grid<T> grid(2, ipar_, dpar_);
      LineTransform<T> sines(*module, handle_, grid, 0, Ends::dd, i);
      for (jex_int j = std::max(begin, first); j < std::min(end, last + 1); ++j) {
        T* const line = f_ + stride() * j;
        if (is_periodic) {
          const jex_int stat = way == Way::forward ? jex_dft_dfti_compute_forward(*handle_, line)
                                                   : jex_dft_dfti_compute_backward(*handle_, line);
          if (stat) failed = true;
          if (way == Way::backward) line[np()] = line[0];
        } else {
          if (way == Way::forward) add_sides(line, rows[j]);
          sines.run(way, line);
        }
      }
      if (sines.failed()) failed = true;
    });
    return failed ? failed_transform : jex_int(success);
  } catch (const std::bad_alloc&) {
    return no_memory;
  }

  jex_int solve(bool is_globe) const try {
    const std::vector<Row> rows = make_rows();
    const int count = last_row() - first_row() + 1;
    const int width = columns_at_a_time<T>(count);
    const jex_int columns = np() + 1, chunks = (columns + width - 1) / width;
    const int parts = int(std::min<jex_int>(this->parts(), chunks));
    std::vector<T> reciprocals(size_t(std::max(count, 1)) * width * parts);
    std::vector<double> newest(size_t(width) * parts);
    const bool is_singular = is_globe && poles() == 3 && q() == 0;
    share(parts, chunks, [&](jex_int begin, jex_int end, int i) {
      for (jex_int chunk = begin; chunk < end; ++chunk) {
        const jex_int first = chunk * width;
        Chunk{*this,
              rows.data() + first_row(),
              count,
              int(std::min<jex_int>(width, columns - first)),
              first,
              is_singular && chunk == 0,
              reciprocals.data() + size_t(count) * width * i,
              newest.data() + size_t(width) * i}
            .solve();
      }
    });
    return is_singular ? singular : success;
  } catch (const std::bad_alloc&) {
    return no_memory;
  }

 private:
  static constexpr jex_int failed_transform = -1000;

  jex_int np() const { return ipar_[10]; }
  jex_int nt() const { return ipar_[11]; }
  jex_int poles() const { return ipar_[3]; }  // 1 at the first end, 2 at the last one
  jex_int first_row() const { return poles() & 1 ? 0 : 1; }
  jex_int last_row() const { return poles() & 2 ? nt() : nt() - 1; }
  ptrdiff_t stride() const { return np() + 1; }
  double q() const { return double(dpar_[3]); }
  double longitude_step() const { return double(dpar_[0]) / np(); }
  const T* terms() const { return dpar_ + ipar_[13] - 1; }
  // A Fourier transform and its way back multiply by the number of points.
  double scale() const { return ipar_[17] ? 1 : 1.0 / np(); }
  int parts() const { return std::max(1, std::min<int>(ipar_[22], thread_limit())); }

  std::vector<Row> make_rows() const {
    std::vector<Row> rows(nt() + 1);
    const double h = double(dpar_[1]), at = double(dpar_[2]);
    for (jex_int j = 0; j <= nt(); ++j) {
      const double theta = at + j * h, s = std::sin(theta);
      rows[j] = {s * h, std::sin(theta - h / 2) / h, std::sin(theta + h / 2) / h, h / s, false};
      if ((j == 0 && poles() & 1) || (j == nt() && poles() & 2)) {
        const double edge = std::sin(h / 2) / h;
        rows[j] = {1 - std::cos(h / 2), j ? edge : 0, j ? 0 : edge, 0, true};
      }
    }
    return rows;
  }

  // Values at Dirichlet ends of the colatitudes, on the lines beside them, but for the sides of a
  // sector, which hold values too.
  void add_ends(const std::vector<Row>& rows, bool is_periodic) const {
    const jex_int first = is_periodic ? 0 : 1;
    const auto add = [&](jex_int from, jex_int to, double e) {
      const T factor = T(e / rows[to].weight);
      for (jex_int i = first; i < np(); ++i)
        f_[stride() * to + i] += factor * f_[stride() * from + i];
    };
    if (!(poles() & 1)) add(0, 1, rows[1].before);
    if (!(poles() & 2)) add(nt(), nt() - 1, rows[nt() - 1].after);
  }
  // Values at the sides of a sector, on the points beside them.
  void add_sides(T* line, const Row& row) const {
    const double h = longitude_step();
    const T factor = T(row.per_term / row.weight / (h * h));
    line[1] += factor * line[0];
    line[np() - 1] += factor * line[np()];
  }

  // Columns first .. first + width - 1, over the rows with unknowns.
  struct Chunk {
    const Sphere& sphere;
    const Row* rows;
    int count, width;
    jex_int first;
    bool is_singular;  // in the column 0
    T* reciprocals;
    double* newest;

    T* line(int j) const { return sphere.f_ + sphere.stride() * (sphere.first_row() + j) + first; }

    void solve() const {
      if (count < 1) return;
      if (is_singular) remove_mean();
      const double scale = sphere.scale();
      for (int j = 0; j < count; ++j) {
        make_reciprocals(j);
        const T weight = T(rows[j].weight * scale);
        T* __restrict const y = line(j);
        if (j == 0) {
          for (int c = 0; c < width; ++c) y[c] *= weight;
          continue;
        }
        const T e = T(rows[j].before);
        const T* __restrict const before = line(j - 1);
        const T* __restrict const r = reciprocals + ptrdiff_t(j - 1) * width;
        for (int c = 0; c < width; ++c) y[c] = weight * y[c] + e * r[c] * before[c];
      }
      for (int j = count - 1; j >= 0; --j) {
        const T* __restrict const r = reciprocals + ptrdiff_t(j) * width;
        T* __restrict const u = line(j);
        if (j == count - 1) {
          for (int c = 0; c < width; ++c) u[c] *= r[c];
          continue;
        }
        const T e = T(rows[j].after);
        const T* __restrict const after = line(j + 1);
        for (int c = 0; c < width; ++c) u[c] = r[c] * (u[c] + e * after[c]);
      }
      if (is_singular) remove_mean();
    }

    void make_reciprocals(int j) const {
      const Row& row = rows[j];
      T* const r = reciprocals + ptrdiff_t(j) * width;
      const double diagonal = row.before + row.after + row.weight * sphere.q();
      const double square = j == 0 ? 0 : row.before * row.before;
      const T* const terms = sphere.terms() + first;
      for (int c = 0; c < width; ++c) {
        const double before = j == 0 ? 0 : square * newest[c];
        newest[c] = 1 / (diagonal + row.per_term * double(terms[c]) - before);
      }
      if (row.is_pole)
        for (int c = first == 0 ? 1 : 0; c < width; ++c) newest[c] = 0;
      if (is_singular && j == count - 1) newest[0] = 0;
      for (int c = 0; c < width; ++c) r[c] = T(newest[c]);
    }

    void remove_mean() const {
      double sum = 0, weight = 0;
      for (int j = 0; j < count; ++j) {
        sum += rows[j].weight * double(*line(j));
        weight += rows[j].weight;
      }
      for (int j = 0; j < count; ++j) *line(j) -= T(sum / weight);
    }
  };

  T* f_;
  jex_dft_dfti_handle* handle_;
  const jex_int* ipar_;
  const T* dpar_;
};

}  // namespace
}  // namespace jex::pde

using namespace jex::pde;

#define TRANSFORM(name, T, way, is_periodic)                                       \
  void name(T* f, jex_dft_dfti_handle* handle, const jex_int* ipar, const T* dpar, \
            jex_int* stat) {                                                       \
    *stat = Sphere<T>(f, handle, ipar, dpar).transform(way, is_periodic);          \
  }
#define STEPS(t, T)                                                                            \
  TRANSFORM(jex_pdepl_##t##_ft_pp, T, Way::forward, true)                                      \
  TRANSFORM(jex_pdepl_##t##_inv_ft_pp, T, Way::backward, true)                                 \
  TRANSFORM(jex_pdepl_##t##_sl_ft_dd, T, Way::forward, false)                                  \
  TRANSFORM(jex_pdepl_##t##_inv_sl_ft_dd, T, Way::backward, false)                             \
  void jex_pdepl_##t##_sph_lu_2d_dd(T* f, const jex_int* ipar, const T* dpar, jex_int* stat) { \
    *stat = Sphere<T>(f, nullptr, ipar, dpar).solve(false);                                    \
  }                                                                                            \
  void jex_pdepl_##t##_sph_lu_globe(T* f, const jex_int* ipar, const T* dpar, jex_int* stat) { \
    *stat = Sphere<T>(f, nullptr, ipar, dpar).solve(true);                                     \
  }
STEPS(d, double)
STEPS(s, float)
