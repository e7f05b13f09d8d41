// The published names of level 3.

#include "front/dropin/publish.h"

#include "front/blas/level3.inc"
