#include "dft/engine/fixed.h"

namespace jex::dft {

JEX_FIXED_TABLE(jex_dcomplex, Direction::backward)

}  // namespace jex::dft
