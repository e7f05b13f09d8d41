#include "dft/engine/fixed.h"

namespace jex::dft {

template <>
constinit const FixedTable<jex_dcomplex> Fixeds<jex_dcomplex, Direction::forward>::table =
    make_fixed_table<jex_dcomplex, Direction::forward>();

}  // namespace jex::dft
