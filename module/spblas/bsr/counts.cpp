// The BSR list holds as many kernels as the table of combinations.

#include "spblas/counts.h"

#include <jex/types.h>

namespace jex::spblas {
namespace {

#define JEX_EXPORT(result, name, params, call) #name,
constexpr const char* bsr[] = {
#include "spblas/bsr/exports.inc"
};
constexpr const char* utilities[] = {
#include "spblas/bsr/utility_exports.inc"
};

static_assert(kernels(bsr, 0, "") == 20);
static_assert(kernels(bsr, 0, "__mvout_par") == 16);
static_assert(kernels(bsr, 0, "__gemvout_par") == 4);
static_assert(kernels(bsr, 's', "") == 5 && kernels(bsr, 'z', "") == 5);
static_assert(of_base(bsr, '0') == 8 && of_base(bsr, '1') == 12);
static_assert(kernels(utilities, 0, "") == 64);
static_assert(kernels(utilities, 0, "gauss") == 16 && kernels(utilities, 0, "invdiag") == 8);

}  // namespace
}  // namespace jex::spblas
