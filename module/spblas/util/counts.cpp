// The lists hold the utilities that there are to be.

#include "spblas/counts.h"

#include <jex/types.h>

namespace jex::spblas {
namespace {

#define JEX_EXPORT(result, name, params, call) #name,
constexpr const char* utilities[] = {
#include "spblas/util/exports.inc"
};
constexpr const char* conversions[] = {
#include "spblas/util/conversion_exports.inc"
};

static_assert(kernels(utilities, 0, "") == 38);
static_assert(kernels(utilities, 's', "") == 9 && kernels(utilities, 'd', "") == 10);
static_assert(kernels(utilities, 'c', "") == 9 && kernels(utilities, 'z', "") == 9);
static_assert(kernels(utilities, 0, "sortrow") == 4 && kernels(utilities, 0, "_tr") == 8);
static_assert(kernels(conversions, 0, "") == 6);

}  // namespace
}  // namespace jex::spblas
