// The published names of level 2.

#include "front/dropin/publish.h"

#include "front/blas/level2.inc"
