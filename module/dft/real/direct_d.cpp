#include "dft/real/direct.h"

namespace jex::dft {

JEX_REAL_KERNELS(jex_dcomplex)
JEX_HALVED_KERNELS(jex_dcomplex, Direction::forward)
JEX_HALVED_KERNELS(jex_dcomplex, Direction::backward)

}  // namespace jex::dft
