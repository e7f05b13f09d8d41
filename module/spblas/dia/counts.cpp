// The DIA list holds as many kernels as the table of combinations, and the four scans.

#include "spblas/counts.h"

#include <jex/types.h>

namespace jex::spblas {
namespace {

#define JEX_EXPORT(result, name, params, call) #name,
constexpr const char* dia[] = {
#include "spblas/dia/exports.inc"
};

static_assert(kernels(dia, 0, "__mvout_par") == 108);
static_assert(kernels(dia, 0, "__mmout_par") == 116);
static_assert(kernels(dia, 0, "__svout_seq") == 46);
static_assert(kernels(dia, 0, "__smout_par") == 40);
static_assert(kernels(dia, 0, "__smout_seq") == 6);
static_assert(of_base(dia, '1') == 316 && sizeof dia / sizeof *dia == 316 + 4);
static_assert(kernels(dia, 's', "") == kernels(dia, 'd', ""));
static_assert(kernels(dia, 'c', "") == kernels(dia, 'z', ""));

}  // namespace
}  // namespace jex::spblas
