// Users' entries of level 3, stamped from the list.

#include "front/blas/level3.h"
#include "front/blas/rows.h"

using namespace jex::front;

#include "front/blas/level3.inc"
