// The CSR list holds as many kernels as the table of combinations.

#include "spblas/counts.h"

#include <jex/types.h>

namespace jex::spblas {
namespace {

#define JEX_EXPORT(result, name, params, call) #name,
constexpr const char* csr[] = {
#include "spblas/csr/exports.inc"
};

static_assert(kernels(csr, 0, "") == 705);
static_assert(kernels(csr, 0, "__mvout_par") == 164);
static_assert(kernels(csr, 0, "__mvout_seq") == 80);
static_assert(kernels(csr, 0, "__mmout_par") == 224);
static_assert(kernels(csr, 0, "__mmout_seq") == 20);
static_assert(kernels(csr, 0, "__svout_seq") == 108);
static_assert(kernels(csr, 0, "__smout_par") == 108);
static_assert(kernels(csr, 0, "__gemvout_par") == 1);
static_assert(kernels(csr, 's', "") == 108 && kernels(csr, 'd', "") == 109);
static_assert(kernels(csr, 'c', "") == kernels(csr, 'z', ""));
static_assert(of_base(csr, '0') == 352 && of_base(csr, '1') == 353);

}  // namespace
}  // namespace jex::spblas
