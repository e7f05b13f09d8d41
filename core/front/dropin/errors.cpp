// The published names of the error reports. A program's own xerbla_ and cblas_xerbla come before
// these in the order in which names are looked up, also for the core's calls.

#include "front/dropin/publish.h"

#include "front/blas/errors.inc"

extern "C" {
// Read by programs' own cblas_xerbla: whether the call in question is row-major.
[[gnu::visibility("default")]] int RowMajorStrg = 0;
// Read by programs' own xerbla_: whether a C entry has come to it. Ours never do.
[[gnu::visibility("default")]] int CBLAS_CallFromC = 0;
}
