// COO solves whose scratch is refused, at each of their three requests: the same bits, nothing
// lost.

#include "serv/memory_fixture.h"
#include "spblas/coo_matrix.h"

namespace jex::test {
namespace {

template <class T>
class CooScratch : public Memory {};
using Element4 = testing::Types<float, double, jex_scomplex, jex_dcomplex>;
TYPED_TEST_SUITE(CooScratch, Element4);

TYPED_TEST(CooScratch, RefusalDoesNotShowInTheBits) {
  for_problems<CooFormat<TypeParam>>({"sv", "sm"}, 3, [](Random&, auto& p) {
    jex_serv_jex_thread_free_buffers();
    const long before = xmalloc.mallocs;
    p.whole();
    EXPECT_EQ(xmalloc.mallocs - before, 3);
    const auto with = p.c.operand.values();
    for (const int request : {1, 2, 3}) {
      std::copy(p.c.model.begin(), p.c.model.end(), p.c.operand.data());
      jex_serv_jex_thread_free_buffers();
      xmalloc.fail_in = request;
      p.whole();
      EXPECT_EQ(xmalloc.fail_in, 0) << "request " << request << " was not made";
      xmalloc.fail_in = 0;
      EXPECT_EQ(first_difference(p.c.operand.values(), with), "") << "request " << request;
      jex_int used = 0;
      jex_serv_jex_thread_free_buffers();
      EXPECT_EQ(jex_serv_jex_memstat(&used), 0) << "a scratch was not returned";
    }
  });
}

}  // namespace
}  // namespace jex::test
