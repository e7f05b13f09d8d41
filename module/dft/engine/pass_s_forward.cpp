#include "dft/engine/pass_table.h"

namespace jex::dft {

template <>
constinit const PassTable<jex_scomplex> PassTables<jex_scomplex, Direction::forward>::table =
    make_pass_table<jex_scomplex, Direction::forward>();

}  // namespace jex::dft
