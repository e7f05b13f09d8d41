// The steps of the solvers on rectangles and boxes.
#include "pde/grid.h"
#include "pde/line.h"
#include "pde/tridiagonal.h"

#include <atomic>
#include <memory>
#include <new>

namespace jex::pde {
namespace {

constexpr jex_int failed_transform = -1000;

// What the data of one end of an axis add: at which point, and with which factor.
struct EndTerm {
  jex_int at;
  double factor;
};
// A Neumann side has twice the weight of its neighbour, which on a single interval is a Dirichlet
// side.
EndTerm term(const Axis& a, bool is_neumann, bool is_other_neumann, jex_int side, jex_int inside) {
  if (is_neumann) return {side, 2 / a.h};
  return {inside, (a.n == 1 && is_other_neumann ? 2 : 1) / (a.h * a.h)};
}
EndTerm term_of_first(const Axis& a) {
  return term(a, neumann_first(a.ends), neumann_last(a.ends), 0, 1);
}
EndTerm term_of_last(const Axis& a) {
  return term(a, neumann_last(a.ends), neumann_first(a.ends), a.n, a.n - 1);
}

template <class T>
void add_at_ends(T* line, const Axis& along, T first, T last) {
  const EndTerm a = term_of_first(along), b = term_of_last(along);
  line[a.at] += T(a.factor) * first;
  line[b.at] += T(b.factor) * last;
}

// The line j of an axis that goes across it; `first` and `last` are the data beside it.
template <class T>
void add_across(T* line, const Axis& across, jex_int j, const T* first, const T* last,
                jex_int count) {
  const EndTerm a = term_of_first(across), b = term_of_last(across);
  if (j == a.at)
    for (jex_int i = 0; i < count; ++i) line[i] += T(a.factor) * first[i];
  if (j == b.at)
    for (jex_int i = 0; i < count; ++i) line[i] += T(b.factor) * last[i];
}

template <class T>
struct Sides {
  const T *ax, *bx, *ay, *by, *az, *bz;
};

// Columns of a plane are transformed side by side, a cache line of each row at a time.
template <class T>
constexpr int columns_together = 64 / sizeof(T);

template <class T>
void transform_columns(LineTransform<T>& transform, Way way, T* plane, const Axis& x, const Axis& y,
                       T* buffer) {
  const jex_int width = x.points(), height = y.points();
  for (jex_int i = 0; i < width; i += columns_together<T>) {
    const jex_int count = std::min<jex_int>(columns_together<T>, width - i);
    for (jex_int j = 0; j < height; ++j)
      for (jex_int c = 0; c < count; ++c) buffer[c * height + j] = plane[j * width + i + c];
    for (jex_int c = 0; c < count; ++c) transform.run(way, buffer + c * height);
    for (jex_int j = 0; j < height; ++j)
      for (jex_int c = 0; c < count; ++c) plane[j * width + i + c] = buffer[c * height + j];
  }
}

template <class T>
struct Problem {
  Grid<T> grid;
  int dimensions;
  Axis x, y, z;  // of a rectangle, z is one plane
  T* f;
  jex_dft_dfti_handle *xhandle, *yhandle;

  Problem(int dimensions_, Ends x_ends, Ends y_ends, T* f_, jex_dft_dfti_handle* xhandle_,
          jex_dft_dfti_handle* yhandle_, const jex_int* ipar, const T* dpar)
      : grid(dimensions_, ipar, dpar),
        dimensions(dimensions_),
        x(grid.axis(0)),
        y(grid.axis(1)),
        z(dimensions == 3 ? grid.axis(2) : Axis{0, 1, Ends::nn}),
        f(f_),
        xhandle(xhandle_),
        yhandle(yhandle_) {
    x.ends = x_ends;
    if (dimensions == 3) y.ends = y_ends;
  }

  // Both transform steps: over lines of a rectangle, or over planes of a box.
  jex_int transform(Way way, const Sides<T>& sides) const {
    const Module* const module = jex::module();
    if (!module) return no_module;
    const int parts = grid.parts();
    const jex_int room = dimensions == 3 ? y.points() * columns_together<T> : 0;
    const std::unique_ptr<T[]> buffers(new (std::nothrow) T[size_t(room) * parts + 1]);
    if (!buffers) return no_memory;
    std::atomic<bool> failed{false};
    share(parts, dimensions == 3 ? z.points() : y.points(), [&](jex_int begin, jex_int end, int i) {
      LineTransform<T> along_x(*module, xhandle, grid, 0, x.ends, i);
      if (dimensions == 2) {
        transform_lines(along_x, way, sides, 0, begin, end);
      } else {
        LineTransform<T> along_y(*module, yhandle, grid, 1, y.ends, i);
        for (jex_int k = std::max(begin, z.first()); k < std::min(end, z.last() + 1); ++k) {
          // Rows of y are points on the side of the x transform, frequencies on the other one.
          const auto columns = [&] {
            transform_columns(along_y, way, f + plane_size() * k, x, y,
                              buffers.get() + ptrdiff_t(room) * i);
          };
          if (way == Way::backward) columns();
          transform_lines(along_x, way, sides, k, 0, y.points());
          if (way == Way::forward) columns();
        }
        if (along_y.failed()) failed = true;
      }
      if (along_x.failed()) failed = true;
    });
    return failed ? failed_transform : jex_int(success);
  }

  jex_int solve() const {
    const Axis last = grid.last_axis();
    const jex_int columns = dimensions == 3 ? jex_int(plane_size()) : x.points();
    const int rows = last.last() - last.first() + 1, width = columns_at_a_time<T>(rows);
    const jex_int chunks = (columns + width - 1) / width;
    const int parts = int(std::min<jex_int>(grid.parts(), chunks));
    const size_t reciprocals = size_t(std::max(rows, 0) + 1) * width;
    const std::unique_ptr<T[]> tables(new (std::nothrow) T[reciprocals * parts]);
    const std::unique_ptr<double[]> terms(new (std::nothrow) double[size_t(2) * width * parts]);
    if (!tables || !terms) return no_memory;
    const bool is_singular = grid.is_singular();
    share(parts, chunks, [&](jex_int begin, jex_int end, int i) {
      double* const b = terms.get() + ptrdiff_t(2) * width * i;
      const Scratch<T> scratch{tables.get() + reciprocals * i, b, b + width};
      for (jex_int chunk = begin; chunk < end; ++chunk) {
        const jex_int first = chunk * width;
        const int count = int(std::min<jex_int>(width, columns - first));
        for (int c = 0; c < count; ++c) b[c] = 2 + frequency_term(first + c);
        Columns<T>{f + ptrdiff_t(columns) * last.first() + first,
                   columns,
                   rows,
                   count,
                   T(last.h * last.h),
                   neumann_first(last.ends),
                   neumann_last(last.ends),
                   is_singular && chunk == 0}
            .solve(scratch);
      }
    });
    return is_singular ? singular : success;
  }

 private:
  ptrdiff_t plane_size() const { return ptrdiff_t(x.points()) * y.points(); }

  double frequency_term(jex_int column) const {
    if (dimensions == 2) return double(grid.terms(0)[column]);
    return double(grid.terms(0)[column % x.points()]) + double(grid.terms(1)[column / x.points()]);
  }

  void transform_lines(LineTransform<T>& along_x, Way way, const Sides<T>& sides, jex_int k,
                       jex_int begin, jex_int end) const {
    const jex_int width = x.points(), height = y.points();
    for (jex_int j = std::max(begin, y.first()); j < std::min(end, y.last() + 1); ++j) {
      T* const line = f + plane_size() * k + ptrdiff_t(width) * j;
      if (way == Way::forward) {
        const ptrdiff_t at_side = ptrdiff_t(height) * k + j, across = ptrdiff_t(width) * k;
        add_at_ends(line, x, sides.ax[at_side], sides.bx[at_side]);
        add_across(line, y, j, sides.ay + across, sides.by + across, width);
        if (dimensions == 3)
          add_across(line, z, k, sides.az + ptrdiff_t(width) * j, sides.bz + ptrdiff_t(width) * j,
                     width);
      }
      along_x.run(way, line);
    }
  }
};

}  // namespace
}  // namespace jex::pde

using namespace jex::pde;

#define STEPS_2D(t, T, x)                                                                         \
  void jex_pdepl_##t##_ft_##x(T* f, const T* bd_ax, const T* bd_bx, const T* bd_ay,               \
                              const T* bd_by, jex_dft_dfti_handle* xhandle, const jex_int* ipar,  \
                              const T* dpar, jex_int* stat) {                                     \
    *stat = Problem<T>(2, Ends::x, {}, f, xhandle, nullptr, ipar, dpar)                           \
                .transform(Way::forward, {bd_ax, bd_bx, bd_ay, bd_by, nullptr, nullptr});         \
  }                                                                                               \
  void jex_pdepl_##t##_lu_2d_##x(T* f, const jex_int* ipar, const T* dpar, jex_int* stat) {       \
    *stat = Problem<T>(2, Ends::x, {}, f, nullptr, nullptr, ipar, dpar).solve();                  \
  }                                                                                               \
  void jex_pdepl_##t##_inv_ft_##x(T* f, jex_dft_dfti_handle* xhandle, const jex_int* ipar,        \
                                  const T* dpar, jex_int* stat) {                                 \
    *stat =                                                                                       \
        Problem<T>(2, Ends::x, {}, f, xhandle, nullptr, ipar, dpar).transform(Way::backward, {}); \
  }
#define STEPS_3D(t, T, x, y)                                                                      \
  void jex_pdepl_##t##_ft_##x##_##y(T* f, const T* bd_ax, const T* bd_bx, const T* bd_ay,         \
                                    const T* bd_by, const T* bd_az, const T* bd_bz,               \
                                    jex_dft_dfti_handle* xhandle, jex_dft_dfti_handle* yhandle,   \
                                    const jex_int* ipar, const T* dpar, jex_int* stat) {          \
    *stat = Problem<T>(3, Ends::x, Ends::y, f, xhandle, yhandle, ipar, dpar)                      \
                .transform(Way::forward, {bd_ax, bd_bx, bd_ay, bd_by, bd_az, bd_bz});             \
  }                                                                                               \
  void jex_pdepl_##t##_lu_3d_##x##_##y(T* f, const jex_int* ipar, const T* dpar, jex_int* stat) { \
    *stat = Problem<T>(3, Ends::x, Ends::y, f, nullptr, nullptr, ipar, dpar).solve();             \
  }                                                                                               \
  void jex_pdepl_##t##_inv_ft_##x##_##y(T* f, jex_dft_dfti_handle* xhandle,                       \
                                        jex_dft_dfti_handle* yhandle, const jex_int* ipar,        \
                                        const T* dpar, jex_int* stat) {                           \
    *stat = Problem<T>(3, Ends::x, Ends::y, f, xhandle, yhandle, ipar, dpar)                      \
                .transform(Way::backward, {});                                                    \
  }
JEX_PDE_EACH_2D(STEPS_2D, d, double)
JEX_PDE_EACH_2D(STEPS_2D, s, float)
JEX_PDE_EACH_3D(STEPS_3D, d, double)
JEX_PDE_EACH_3D(STEPS_3D, s, float)
