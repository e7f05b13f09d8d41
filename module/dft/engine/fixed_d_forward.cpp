#include "dft/engine/fixed.h"

namespace jex::dft {

JEX_FIXED_TABLE(jex_dcomplex, Direction::forward)

}  // namespace jex::dft
