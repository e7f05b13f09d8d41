// The texts of the sparse statuses.

#include <jex/spblas.h>

const char* jex_sparse_message(jex_int status) {
  static const char* const messages[] = {
      "no error",
      "the kernel module is not there",
      "the operation is none of N, T and C",
      "the descriptor holds a letter or a base that there is not",
      "a size is negative, or the matrix is not square, or not one to solve with",
      "a leading dimension is too small",
      "an array is missing",
      "a row ends before it begins, or begins before the first one",
      "a column number is out of range",
      "a row's columns do not ascend",
      "a row has no diagonal element",
      "no memory for the checks",
      "a row number is out of range",
      "the distances do not ascend"};
  const jex_int count = sizeof messages / sizeof *messages;
  return status >= 0 && status < count ? messages[status] : "unknown status";
}
