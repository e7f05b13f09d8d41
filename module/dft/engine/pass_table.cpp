// Which functions run the passes of a radix. They themselves are compiled one element type and
// direction at a time.
#include "dft/engine/pass_table.h"

namespace jex::dft {

template <class T>
const PassKinds<T>* pass_kinds(int radix, Direction d) {
  const PassTable<T>& table = d == Direction::forward ? PassTables<T, Direction::forward>::table
                                                      : PassTables<T, Direction::backward>::table;
  return &table.radix[radix];
}

template const PassKinds<jex_dcomplex>* pass_kinds<jex_dcomplex>(int, Direction);
template const PassKinds<jex_scomplex>* pass_kinds<jex_scomplex>(int, Direction);

}  // namespace jex::dft
