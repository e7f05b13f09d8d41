// Solves of many right-hand sides whose scratch is refused: the same bits, nothing lost.

#include "serv/memory_fixture.h"
#include "spblas/csr_solve.h"

namespace jex::test {
namespace {

template <class T>
class Scratch : public Memory {};
using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(Scratch, Element4);

TYPED_TEST(Scratch, RefusalDoesNotShowInTheBits) {
  for_solves<TypeParam>("sm", 3, [this](Random& random, auto& s) {
    if (s.name.kind == 'd') return;
    const int first = random.between(1, s.n);
    this->raw_calls();
    s.run(first, s.n);
    EXPECT_LE(this->raw_calls().mallocs, 1);
    const auto with = s.c.operand.values();
    std::copy(s.c.model.begin(), s.c.model.end(), s.c.operand.data());
    jex_serv_jex_thread_free_buffers();
    xmalloc.fail_in = 1;
    s.run(first, s.n);
    EXPECT_EQ(xmalloc.fail_in, 0) << "no scratch was asked for";
    xmalloc.fail_in = 0;
    EXPECT_EQ(first_difference(s.c.operand.values(), with), "");
    jex_int used = 0;
    jex_serv_jex_thread_free_buffers();
    EXPECT_EQ(jex_serv_jex_memstat(&used), 0) << "a scratch was not returned";
  });
}

}  // namespace
}  // namespace jex::test
