// The list of families, in the order in which the tour shows them.
#include "tour/family.h"

namespace jex::tour {

Report level1(const Context&);
Report level2(const Context&);
Report level3(const Context&);
Report sparse(const Context&);
Report fourier(const Context&);
Report poisson(const Context&);

std::span<const Family> families() {
  static constexpr Family list[] = {
      {"level1", "level-1 vector kernels: the period of a series", level1},
      {"level2", "matrix-vector kernels: modes and prediction of a series", level2},
      {"level3", "matrix-matrix kernels: covariance of a series and its factors", level3},
      {"sparse", "sparse kernels: a membrane under load", sparse, Input::matrix},
      {"fourier", "Fourier transforms: the spectrum of a series", fourier},
      {"poisson", "Poisson and Helmholtz solvers: a known solution and its error", poisson},
  };
  return list;
}

}  // namespace jex::tour
