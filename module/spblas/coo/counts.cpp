// The COO list holds as many kernels as the table of combinations.

#include "spblas/counts.h"

#include <jex/types.h>

namespace jex::spblas {
namespace {

#define JEX_EXPORT(result, name, params, call) #name,
constexpr const char* coo[] = {
#include "spblas/coo/exports.inc"
};

static_assert(kernels(coo, 0, "") == 472);
static_assert(kernels(coo, 0, "__mvout_par") == 148);
static_assert(kernels(coo, 0, "__mvout_seq") == 20);
static_assert(kernels(coo, 0, "__mmout_par") == 168);
static_assert(kernels(coo, 0, "__svout_seq") == 60);
static_assert(kernels(coo, 0, "__smout_par") == 76);
static_assert(kernels(coo, 's', "") == kernels(coo, 'd', ""));
static_assert(kernels(coo, 'c', "") == kernels(coo, 'z', ""));
static_assert(of_base(coo, '0') == 236 && of_base(coo, '1') == 236);

}  // namespace
}  // namespace jex::spblas
