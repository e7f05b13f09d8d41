// Users' entries of level 1, stamped from the list.

#include "front/blas/rows.h"

#include <math.h>

using namespace jex::front;

namespace {

float scabs1(const jex_scomplex* x) { return fabsf(x->re) + fabsf(x->im); }

}  // namespace

#include "front/blas/level1.inc"
