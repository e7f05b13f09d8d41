/* A C program: the second differences of the squares 0, 1, 4, 9, ... by a sparse product. */
#include <stdio.h>

#include <jex/spblas.h>

enum { n = 8 };

int main(void) {
  double values[3 * n], squares[n], differences[n];
  jex_int columns[3 * n], rows[n + 1], count = 0;
  for (jex_int i = 0; i < n; ++i) {
    rows[i] = count;
    for (jex_int j = i - 1; j <= i + 1; ++j) {
      if (j < 0 || j >= n) continue;
      columns[count] = j;
      values[count++] = j == i ? -2 : 1;
    }
    squares[i] = (double)i * i;
  }
  rows[n] = count;

  const double one = 1, zero = 0;
  const jex_csr a = {n, n, values, columns, rows, rows + 1};
  const jex_sparse_descriptor general = {'G', 'L', 'N', 0, 0};
  const jex_int status = jex_dcsrmv('N', &one, &a, &general, squares, &zero, differences);
  if (status != 0) {
    fprintf(stderr, "the product returned %d\n", (int)status);
    return 1;
  }
  for (jex_int i = 0; i < n; ++i) printf(" %g", differences[i]);
  printf("\n");
  for (jex_int i = 1; i + 1 < n; ++i)
    if (differences[i] != 2) return 1;
  return 0;
}
