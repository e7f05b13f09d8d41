/* Norms in extended precision, which neither overflow nor underflow where the result does not. They
   stand in for ours where a program depends on that. */
#include <math.h>

static double norm(int n, const double* x, int inc, int parts) {
  long double sum = 0;
  for (int i = 0; i < n; ++i)
    for (int k = 0; k < parts; ++k) {
      const long double part = x[(long)parts * i * inc + k];
      sum += part * part;
    }
  return (double)sqrtl(sum);
}

double dnrm2_(const int* n, const double* x, const int* inc) { return norm(*n, x, *inc, 1); }
double dznrm2_(const int* n, const double* x, const int* inc) { return norm(*n, x, *inc, 2); }
