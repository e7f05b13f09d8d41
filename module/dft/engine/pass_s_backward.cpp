#include "dft/engine/pass_table.h"

namespace jex::dft {

template const PassFunction<jex_scomplex> (
    &pass_table<jex_scomplex, Direction::backward>())[kinds][17];

}  // namespace jex::dft
