// The published names of level 1.

#include "front/dropin/publish.h"

#include "front/blas/level1.inc"
