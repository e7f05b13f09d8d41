// A C program on the drop-in BLAS, with declarations of its own: complex results of the Fortran
// functions as float _Complex and double _Complex, and the C interface.

#include <complex.h>
#include <stddef.h>
#include <stdio.h>

float _Complex cdotu_(const int*, const float _Complex*, const int*, const float _Complex*,
                      const int*);
float _Complex cdotc_(const int*, const float _Complex*, const int*, const float _Complex*,
                      const int*);
double _Complex zdotu_(const int*, const double _Complex*, const int*, const double _Complex*,
                       const int*);
double _Complex zdotc_(const int*, const double _Complex*, const int*, const double _Complex*,
                       const int*);
void cblas_cdotc_sub(int, const void*, int, const void*, int, void*);
void cblas_zdotu_sub(int, const void*, int, const void*, int, void*);
void cblas_daxpy(int, double, const double*, int, double*, int);
void cblas_zaxpy(int, const void*, const void*, int, void*, int);
void cblas_zdscal(int, double, void*, int);
void cblas_srotmg(float*, float*, float*, float, float*);
void cblas_drot(int, double*, int, double*, int, double, double);
float cblas_sdsdot(int, float, const float*, int, const float*, int);
double cblas_dcabs1(const void*);
float cblas_scabs1(const void*);
size_t cblas_idamax(int, const double*, int);
size_t cblas_icamax(int, const void*, int);
void cblas_dgemv(int, int, int, int, double, const double*, int, const double*, int, double,
                 double*, int);
void cblas_zgemv(int, int, int, int, const void*, const void*, int, const void*, int, const void*,
                 void*, int);
void cblas_ztrsv(int, int, int, int, int, const void*, int, void*, int);
extern int RowMajorStrg, CBLAS_CallFromC;

enum { by_rows = 101, by_columns = 102, no_trans = 111, conj_trans = 113, upper = 121, unit = 132 };

static int faults;
static void check(int right, const char* what) {
  if (right) return;
  printf("wrong: %s\n", what);
  ++faults;
}
#define CHECK(condition) check(condition, #condition)

int main(void) {
  const int n = 2, one = 1;
  const float _Complex cx[] = {1 + 2 * I, 3 - I}, cy[] = {2 - I, 1 + 4 * I};
  const double _Complex zx[] = {1 + 2 * I, 3 - I}, zy[] = {2 - I, 1 + 4 * I};
  CHECK(cdotu_(&n, cx, &one, cy, &one) == 11 + 14 * I);
  CHECK(cdotc_(&n, cx, &one, cy, &one) == -1 + 8 * I);
  CHECK(zdotu_(&n, zx, &one, zy, &one) == 11 + 14 * I);
  CHECK(zdotc_(&n, zx, &one, zy, &one) == -1 + 8 * I);

  float _Complex c;
  double _Complex z;
  cblas_cdotc_sub(2, cx, 1, cy, 1, &c);
  CHECK(c == -1 + 8 * I);
  cblas_zdotu_sub(2, zx, 1, zy, 1, &z);
  CHECK(z == 11 + 14 * I);
  CHECK(cblas_scabs1(&cx[1]) == 4);
  CHECK(cblas_dcabs1(&zy[1]) == 5);

  double x[] = {1, -5, 5}, y[] = {10, 20, 30};
  CHECK(cblas_idamax(3, x, 1) == 1);
  CHECK(cblas_idamax(0, x, 1) == 0);
  CHECK(cblas_icamax(2, cy, 1) == 1);
  cblas_daxpy(3, 2, x, 1, y, -1);
  CHECK(y[0] == 20 && y[1] == 10 && y[2] == 32);
  cblas_drot(3, x, 1, y, 1, 0, 1);
  CHECK(x[0] == 20 && x[2] == 32 && y[0] == -1 && y[1] == 5);

  double _Complex w[] = {1, I};
  const double _Complex alpha = I;
  cblas_zaxpy(2, &alpha, zx, 1, w, 1);
  CHECK(w[0] == -1 + I && w[1] == 1 + 4 * I);
  cblas_zdscal(2, 3, w, 1);
  CHECK(w[0] == -3 + 3 * I && w[1] == 3 + 12 * I);

  const float ones[] = {1, 1, 1}, big[] = {1e8f, 1, -1e8f};
  CHECK(cblas_sdsdot(3, 0.5f, ones, 1, big, 1) == 1.5f);
  float d1 = 1, d2 = 1, x1 = 1, param[5];
  cblas_srotmg(&d1, &d2, &x1, 1, param);
  CHECK(d1 == 0.5f && d2 == 0.5f && x1 == 2 && param[0] == 1);

  // 1 2 3   by rows, or its transpose by columns.
  // 4 5 6
  const double a[] = {1, 2, 3, 4, 5, 6}, t[] = {1, 10, 100};
  double v[3] = {7, 7, 7};
  cblas_dgemv(by_rows, no_trans, 2, 3, 1, a, 3, t, 1, 0, v, 1);
  CHECK(v[0] == 321 && v[1] == 654 && v[2] == 7);
  cblas_dgemv(by_columns, no_trans, 3, 2, 1, a, 3, t, 1, 1, v, 1);
  CHECK(v[0] == 321 + 41 && v[1] == 654 + 52 && v[2] == 7 + 63);

  const double _Complex b[] = {1, I, 0, 2}, unity = 1, zero = 0;
  double _Complex r[2];
  cblas_zgemv(by_rows, conj_trans, 2, 2, &unity, b, 2, zx, 1, &zero, r, 1);
  CHECK(r[0] == 1 + 2 * I && r[1] == -I * (1 + 2 * I) + 2 * (3 - I));
  cblas_ztrsv(by_rows, upper, conj_trans, unit, 2, b, 2, r, 1);
  CHECK(r[0] == 1 + 2 * I && r[1] == 2 * (3 - I));

  // A wrong argument: reported to the standard error, nothing done, and the program goes on.
  cblas_dgemv(by_rows, no_trans, 2, 3, 1, a, 2, t, 1, 0, v, 1);
  CHECK(v[0] == 362);
  CHECK(RowMajorStrg == 0 && CBLAS_CallFromC == 0);

  if (!faults) puts("every call from C came out right");
  return faults != 0;
}
