#include "dft/engine/pass_table.h"

namespace jex::dft {

template <>
constinit const PassTable<jex_dcomplex> PassTables<jex_dcomplex, Direction::backward>::table =
    make_pass_table<jex_dcomplex, Direction::backward>();

}  // namespace jex::dft
