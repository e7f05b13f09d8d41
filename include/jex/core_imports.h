/**
 * @file core_imports.h
 * @brief What the kernel module asks of a core: it imports these entries and no others.
 *
 * A core of your own exports them under these names from a library called libjex_core.so;
 * docs/core-interface.md tells what else a core does. The module calls them from any thread.
 */
#ifndef JEX_CORE_IMPORTS_H
#define JEX_CORE_IMPORTS_H

#include <jex/dfti.h>
#include <jex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @name Services
 * @{
 */

/**
 * @brief Takes the library's one global lock, waiting for it if need be. Any thread may call it.
 *
 * The module never takes it twice on one path, so it need not be recursive. A child of fork()
 * inherits it free, whichever thread held it.
 */
JEX_API void jex_serv_lock(void);

/** @brief Releases the lock that the calling thread holds. */
JEX_API void jex_serv_unlock(void);

/**
 * @brief Code of the processor, read from it once: how far its vector instructions reach.
 *
 * | code | processor has              |
 * |------|----------------------------|
 * | 0    | no SSE3: not for this branch |
 * | 1    | SSE3                       |
 * | 2    | SSE3 and SSSE3             |
 * | 3    | these and SSE4.1           |
 * | 4    | these and SSE4.2           |
 *
 * The module only asks whether the code is 0. Sets whose registers the operating system must save
 * have no code, as no kernel of a 32-bit branch uses them.
 */
JEX_API jex_int jex_serv_cpu_detect(void);

/**
 * @brief Code of the second-level cache of one processor core, read from the processor once.
 *
 * 0: unknown or none, 1: below 512 KiB, 2: below 1 MiB, 3: 1 MiB or more. The module takes its
 * larger blocks where the code is 3.
 */
JEX_API jex_int jex_serv_l2cache(void);

/**
 * @brief Writes the catalogue's text of a number into text, as one line without a newline.
 *
 * The variable arguments are of type `const char*`, already formatted by the caller; each takes the
 * place of one "%s" of the text, in order. A null or missing argument shows as "?", one too many is
 * not used. A number without a text gives a line that names the number. Needs no memory and keeps
 * no state.
 *
 * @param text      receives at most size - 1 characters and a terminator; may be null if size is 0
 * @param size      characters that text has room for; below 1 nothing is written
 * @param number    number of the message
 * @param arguments how many variable arguments follow
 * @return length of the whole text, without the terminator: it was cut if this is size or more
 */
JEX_API jex_int jex_serv_jex_get_msg(char* text, jex_int size, jex_int number, jex_int arguments,
                                     ...);

/**
 * @brief Prints the text of jex_serv_jex_get_msg(), uncut, and a newline to standard output, and
 *        flushes it. Lines of different threads do not mix. Output errors are not reported.
 */
JEX_API void jex_serv_jex_print(jex_int number, jex_int arguments, ...);

/** @} */

/**
 * @name Fourier descriptors
 *
 * jex/dfti.h declares them with their contracts. The trigonometric transforms and the solvers call
 * five: jex_dft_dfti_create_descriptor_d_1d(), jex_dft_dfti_set_value_intval(),
 * jex_dft_dfti_commit_descriptor_external(), jex_dft_dfti_free_descriptor_external() and
 * jex_dft_dfti_error_message_external().
 */

/**
 * @name Forwarding targets
 *
 * The module exports these names too and passes its calls on to the core's. It asks
 * libjex_core.so for them by name at the first call, so a core may lack them: the module's entry
 * then returns 0 and does nothing.
 * @{
 */

/**
 * @brief Triangular matrix product B := alpha op(A) B (side L) or B := alpha B op(A) (side R).
 *
 * Argument list of the published dtrmm and strmm, column-major. The vectors of B, its columns for
 * side L and its rows for side R, are taken four at a time, then one by one.
 *
 * @param side   "L" or "R"; of all four words only the first character is read, in either case
 * @param uplo   "U" or "L": the triangle of A that is read; the other one never is
 * @param transa "N": op(A) = A; "T" or "C": its transpose
 * @param diag   "U": the diagonal of A counts as ones and is not read; "N": it is read
 * @param m      rows of B
 * @param n      columns of B; nothing is done where m or n is below 1
 * @param alpha  factor; 0 sets B to zero and reads neither A nor B
 * @param a      order m (side L) or n (side R)
 * @param lda    leading dimension of a, at least its order
 * @param b      m x n, overwritten by the result; must not overlap a
 * @param ldb    leading dimension of b, at least m
 */
JEX_API void jex_blas_xdtrmm_4vek(const char* side, const char* uplo, const char* transa,
                                  const char* diag, const jex_int* m, const jex_int* n,
                                  const double* alpha, const double* a, const jex_int* lda,
                                  double* b, const jex_int* ldb);

/** @brief The same in single precision. */
JEX_API void jex_blas_xstrmm_4vek(const char* side, const char* uplo, const char* transa,
                                  const char* diag, const jex_int* m, const jex_int* n,
                                  const float* alpha, const float* a, const jex_int* lda, float* b,
                                  const jex_int* ldb);

/**
 * @brief GNU MP's gmp_fprintf: formatted output with %Zd and its kin beside the formats of C.
 * @param stream a `FILE*` of the C library that the core uses, as in all of the following
 * @param format text, conversions of C and GNU MP among it
 * @return characters written, or -1 on an output error
 */
JEX_API int jex_gmp___gmp_fprintf(void* stream, const char* format, ...);

/**
 * @brief Reads an integer in the raw format of jex_gmp___gmpz_out_raw() (mpz_inp_raw).
 * @param x      an `mpz_ptr`
 * @param stream where it is read from
 * @return bytes read, 0 on an error
 */
JEX_API uint32_t jex_gmp___gmpz_inp_raw(void* x, void* stream);

/**
 * @brief Reads an integer as digits, white space before them skipped (mpz_inp_str).
 * @param x      an `mpz_ptr`
 * @param stream where it is read from
 * @param base   2 to 62, or 0 to take it from the prefix 0x, 0b or 0
 * @return bytes read, 0 on an error
 */
JEX_API uint32_t jex_gmp___gmpz_inp_str(void* x, void* stream, int base);

/**
 * @brief Writes an integer as four bytes of signed length, then its magnitude, most significant
 *        byte first (mpz_out_raw).
 * @param stream where it is written to
 * @param x      an `mpz_srcptr`
 * @return bytes written, 0 on an error
 */
JEX_API uint32_t jex_gmp___gmpz_out_raw(void* stream, const void* x);

/**
 * @brief Writes an integer as digits (mpz_out_str).
 * @param stream where it is written to
 * @param base   2 to 62, or -2 to -36 for upper case letters
 * @param x      an `mpz_srcptr`
 * @return bytes written, 0 on an error
 */
JEX_API uint32_t jex_gmp___gmpz_out_str(void* stream, int base, const void* x);

/** @} */

/**
 * @name Steps of the Poisson and Helmholtz solvers
 *
 * The module's solvers call three steps in turn, each over the whole grid, chosen by the conditions
 * of the sides: d Dirichlet, n Neumann, two letters for each axis that is transformed. ipar and dpar
 * are those of the committed solver (docs of jex_pdepl_d_commit_helmholtz_2d() tell their
 * elements), f its grid. A step may use as many threads as ipar[22] says, and reads nothing of ipar
 * and dpar but what is told there. *stat is 0, or a negative status of the solvers; f is then
 * undefined.
 *
 * - ft: adds the boundary data to the right-hand side f, to second order, and transforms it along
 *   the first axis, in three dimensions the second one too. With the step h between points, a
 *   Dirichlet value g adds g / h^2 to the point beside it, an outward derivative g adds 2 g / h at
 *   the side. With Dirichlet data on a side, f has no meaning there before and after.
 * - lu: solves a tridiagonal system along the last axis for each frequency. *stat is 1 where the
 *   problem is singular: f was made solvable, and the solution has the mean 0.
 * - inv_ft: transforms back.
 * @{
 */
#define JEX_PDE_STEPS_2D(t, T, x)                                                                  \
  JEX_API void jex_pdepl_##t##_ft_##x(T* f, const T* bd_ax, const T* bd_bx, const T* bd_ay,        \
                                      const T* bd_by, jex_dft_dfti_handle* xhandle,                \
                                      const jex_int* ipar, const T* dpar, jex_int* stat);          \
  JEX_API void jex_pdepl_##t##_lu_2d_##x(T* f, const jex_int* ipar, const T* dpar, jex_int* stat); \
  JEX_API void jex_pdepl_##t##_inv_ft_##x(T* f, jex_dft_dfti_handle* xhandle, const jex_int* ipar, \
                                          const T* dpar, jex_int* stat);
#define JEX_PDE_STEPS_3D(t, T, x, y)                                                               \
  JEX_API void jex_pdepl_##t##_ft_##x##_##y(                                                       \
      T* f, const T* bd_ax, const T* bd_bx, const T* bd_ay, const T* bd_by, const T* bd_az,        \
      const T* bd_bz, jex_dft_dfti_handle* xhandle, jex_dft_dfti_handle* yhandle,                  \
      const jex_int* ipar, const T* dpar, jex_int* stat);                                          \
  JEX_API void jex_pdepl_##t##_lu_3d_##x##_##y(T* f, const jex_int* ipar, const T* dpar,           \
                                               jex_int* stat);                                     \
  JEX_API void jex_pdepl_##t##_inv_ft_##x##_##y(T* f, jex_dft_dfti_handle* xhandle,                \
                                                jex_dft_dfti_handle* yhandle, const jex_int* ipar, \
                                                const T* dpar, jex_int* stat);
/** Rows (type letter, type, x conditions[, y conditions]) for each combination. */
#define JEX_PDE_EACH_2D(row, t, T) row(t, T, dd) row(t, T, dn) row(t, T, nd) row(t, T, nn)
#define JEX_PDE_EACH_Y(row, t, T, x) \
  row(t, T, x, dd) row(t, T, x, dn) row(t, T, x, nd) row(t, T, x, nn)
#define JEX_PDE_EACH_3D(row, t, T)                                  \
  JEX_PDE_EACH_Y(row, t, T, dd) JEX_PDE_EACH_Y(row, t, T, dn)       \
  JEX_PDE_EACH_Y(row, t, T, nd) JEX_PDE_EACH_Y(row, t, T, nn)
JEX_PDE_EACH_2D(JEX_PDE_STEPS_2D, d, double)
JEX_PDE_EACH_2D(JEX_PDE_STEPS_2D, s, float)
JEX_PDE_EACH_3D(JEX_PDE_STEPS_3D, d, double)
JEX_PDE_EACH_3D(JEX_PDE_STEPS_3D, s, float)
/** @} */

/**
 * @name Steps of the solvers on the sphere
 *
 * As above, for a grid of longitudes and colatitudes (docs of jex_pdepl_d_commit_sph_p() tell the
 * elements of ipar and dpar). Ends of the colatitudes without a pole, and those of a sector of
 * longitudes, are Dirichlet sides whose values stand in f.
 *
 * - ft_pp, inv_ft_pp: periodic in longitude, a Fourier transform of each line. ft adds the values of
 *   the Dirichlet ends to the lines beside them first. f holds the frequencies in the order r0,
 *   r(n/2), r1, i1, ..; inv_ft repeats the first element of a line behind the last one.
 * - sl_ft_dd, inv_sl_ft_dd: a sector, a sine transform of each line.
 * - sph_lu_2d_dd: the tridiagonal systems between two Dirichlet ends.
 * - sph_lu_globe: the same where a pole lies at one end or at both.
 * @{
 */
#define JEX_SPHERE_TRANSFORM(name, T) \
  JEX_API void name(T* f, jex_dft_dfti_handle* handle, const jex_int* ipar, const T* dpar, \
                    jex_int* stat);
#define JEX_SPHERE_STEPS(t, T)                                                               \
  JEX_SPHERE_TRANSFORM(jex_pdepl_##t##_ft_pp, T)                                             \
  JEX_SPHERE_TRANSFORM(jex_pdepl_##t##_inv_ft_pp, T)                                         \
  JEX_SPHERE_TRANSFORM(jex_pdepl_##t##_sl_ft_dd, T)                                          \
  JEX_SPHERE_TRANSFORM(jex_pdepl_##t##_inv_sl_ft_dd, T)                                      \
  JEX_API void jex_pdepl_##t##_sph_lu_2d_dd(T* f, const jex_int* ipar, const T* dpar,        \
                                            jex_int* stat);                                  \
  JEX_API void jex_pdepl_##t##_sph_lu_globe(T* f, const jex_int* ipar, const T* dpar,        \
                                            jex_int* stat);
JEX_SPHERE_STEPS(d, double)
JEX_SPHERE_STEPS(s, float)
#undef JEX_SPHERE_STEPS
#undef JEX_SPHERE_TRANSFORM
/** @} */

#ifdef __cplusplus
}
#endif

#endif
