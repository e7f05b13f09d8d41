#include "dft/engine/fixed.h"

namespace jex::dft {

template <>
constinit const FixedTable<jex_dcomplex> Fixeds<jex_dcomplex, Direction::backward>::table =
    make_fixed_table<jex_dcomplex, Direction::backward>();

}  // namespace jex::dft
