#include "dft/engine/fixed.h"

namespace jex::dft {

template <>
constinit const FixedTable<jex_scomplex> Fixeds<jex_scomplex, Direction::forward>::table =
    make_fixed_table<jex_scomplex, Direction::forward>();

}  // namespace jex::dft
