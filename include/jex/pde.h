/**
 * @file pde.h
 * @brief Poisson's and Helmholtz' equation on rectangles and boxes: checked, then solved by the
 *        module with the threads of the core.
 *
 *     -u_xx - u_yy [- u_zz] + q u = f
 *
 * on a grid of n[0] by n[1] [by n[2]] intervals, in second differences; x fastest. f holds the
 * right-hand side, then the solution, on (n[0] + 1)(n[1] + 1)[(n[2] + 1)] points.
 *
 * conditions has a letter for each side, in the order x = begin, x = end, y = begin, ..: 'D' where
 * the values are given, 'N' where the outward derivatives are; either case. data has an array for
 * each side in that order, the points of the side with the earlier axis fastest; a null one counts
 * as zeros. Dirichlet sides of f are not read, and hold exactly their data afterwards.
 *
 * Where all sides are 'N' and q is 0, the mean is taken from the right-hand side as far as there is
 * no solution otherwise, and the solution is the one of mean 0. With negative q a frequency may
 * meet a singular system: the result is then not finite, or large.
 */
#ifndef JEX_PDE_H
#define JEX_PDE_H

#include <jex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @brief Solves the equation in place.
 *
 * Returns 0, or the position (from 1) of the first wrong argument, or -1 when the kernel module
 * cannot be loaded, or -2 when there is no memory; f is untouched then. Wrong are: dimensions other
 * than 2 and 3, an interval without positive length, less than two intervals along an axis (one
 * along the last), a grid beyond the addresses of a 32-bit program, an unknown letter, a q that is
 * no finite number, a null array.
 *
 * @param dimensions 2 or 3
 * @param begin      coordinates of the first corner
 * @param end        coordinates of the last corner
 * @param n          intervals along each axis
 * @param conditions 2 * dimensions letters
 * @param q          coefficient, 0 for Poisson's equation
 * @param data       2 * dimensions addresses
 * @param f          the grid
 */
JEX_API jex_int jex_dhelmholtz(jex_int dimensions, const double* begin, const double* end,
                               const jex_int* n, const char* conditions, double q,
                               const double* const* data, double* f);

/** @brief The same in single precision. */
JEX_API jex_int jex_shelmholtz(jex_int dimensions, const float* begin, const float* end,
                               const jex_int* n, const char* conditions, float q,
                               const float* const* data, float* f);

#ifdef __cplusplus
}
#endif

#endif
