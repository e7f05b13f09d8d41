// Users' entries of level 2, stamped from the list.

#include "front/blas/level2.h"
#include "front/blas/rows.h"

using namespace jex::front;

#include "front/blas/level2.inc"
