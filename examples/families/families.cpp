// The list of families, in the order in which the tour shows them.
#include "tour/family.h"

namespace jex::tour {

Report level1(const Context&);
Report level2(const Context&);
Report level3(const Context&);
Report sparse(const Context&);
Report fourier(const Context&);
Report trigonometric(const Context&);
Report poisson(const Context&);
Report transpose(const Context&);
Report extended(const Context&);
Report integers(const Context&);
Report memory(const Context&);

std::span<const Family> families() {
  static constexpr Family list[] = {
      {"level1", "level-1 vector kernels: the period of a series", level1, Input::series},
      {"level2",
       "matrix-vector kernels: modes and prediction of a series",
       level2,
       Input::series,
       {"lags, half the series at most", 128, 2, 1024}},
      {"level3",
       "matrix-matrix kernels: covariance of a series and its factors",
       level3,
       Input::series,
       {"values in a window, half the series at most", 128, 2, 1024}},
      {"sparse", "sparse kernels: a membrane under load, in four storage formats", sparse,
       Input::matrix},
      {"fourier", "Fourier transforms: the spectrum of a series", fourier, Input::series},
      {"trigonometric",
       "trigonometric transforms: a series smoothed by its cosines",
       trigonometric,
       Input::series,
       {"highest cosine that stays, half the series at most", 20, 1, 1024}},
      {"poisson",
       "Poisson and Helmholtz solvers: a known solution and its error",
       poisson,
       Input::none,
       {"intervals along a side of the finest grid", 1024, 64, 2048}},
      {"transpose",
       "matrix copy and transposition: a series folded at its period",
       transpose,
       Input::series,
       {"rows and columns of the matrix that is timed", 1000, 2, 4096}},
      {"extended",
       "extended-precision products: Hilbert's matrix, solved to the last digit",
       extended,
       Input::none,
       {"largest order", 11, 3, 11}},
      {"integers",
       "GNU MP integers: the message of RSA-129",
       integers,
       Input::none,
       {"bits of the largest modulus that is timed", 2048, 256, 16384}},
      {"memory",
       "work buffers: the running median of a series",
       memory,
       Input::series,
       {"values in a window, the series at most", 11, 1, 4096}},
  };
  return list;
}

}  // namespace jex::tour
