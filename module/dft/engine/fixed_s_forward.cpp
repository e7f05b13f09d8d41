#include "dft/engine/fixed.h"

namespace jex::dft {

JEX_FIXED_TABLE(jex_scomplex, Direction::forward)

}  // namespace jex::dft
