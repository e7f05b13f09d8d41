#include "dft/real/direct.h"

namespace jex::dft {

JEX_REAL_KERNELS(jex_scomplex)
JEX_HALVED_KERNELS(jex_scomplex, Direction::forward)
JEX_HALVED_KERNELS(jex_scomplex, Direction::backward)

}  // namespace jex::dft
