#include "dft/engine/pass_table.h"

namespace jex::dft {

template const PassFunction<jex_dcomplex> (
    &pass_table<jex_dcomplex, Direction::forward>())[kinds][17];

}  // namespace jex::dft
