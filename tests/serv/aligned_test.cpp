// Public aligned allocation.
#include "serv/memory_fixture.h"

#include <algorithm>

namespace {

struct Aligned : Memory {
  static uint32_t header(void* block) { return static_cast<uint32_t*>(block)[-1]; }
};

TEST_F(Aligned, MallocLaysItsBlockBehindTheHeader) {
  struct Case {
    uint32_t alignment, added, divides;
  };
  for (const auto& [alignment, added, divides] : {Case{0, 0, 1},
                                                  {3, 0, 1},
                                                  {4, 4, 4},
                                                  {5, 32, 32},
                                                  {48, 32, 32},
                                                  {64, 64, 64},
                                                  {4096, 4096, 4096},
                                                  {0xFFFFFFF8u, 32, 32}}) {
    void* block = jex_serv_jex_malloc(10, alignment);
    const uint32_t raw = word(xmalloc.last);
    EXPECT_EQ(xmalloc.last_size, 10 + added + 4) << alignment;
    EXPECT_EQ(header(block), raw) << alignment;
    EXPECT_EQ(word(block), (raw + added + 4) / divides * divides) << alignment;
    jex_serv_jex_free(block);
  }
  EXPECT_EQ(jex_serv_jex_malloc(0, 64), nullptr);
  jex_serv_jex_free(nullptr);
}

TEST_F(Aligned, CallocClearsEveryByteAndNoMore) {
  for (uint32_t count : {1, 3, 5, 7, 1000}) {
    for (uint32_t size : {1, 3, 4}) {
      auto* block = static_cast<unsigned char*>(jex_serv_jex_calloc(count, size, 16));
      const auto* end = block + count * size;
      EXPECT_TRUE(std::all_of<const unsigned char*>(block, end, [](auto c) { return c == 0; }));
      const auto* raw_end = static_cast<unsigned char*>(xmalloc.last.load()) + xmalloc.last_size;
      EXPECT_TRUE(std::all_of(end, raw_end, [](auto c) { return c == 0xA5; })) << "untouched";
      jex_serv_jex_free(block);
    }
  }
  EXPECT_EQ(jex_serv_jex_calloc(0, 8, 16), nullptr);
}

TEST_F(Aligned, ReallocKeepsTheDistanceFromTheRawAddress) {
  char* block = static_cast<char*>(jex_serv_jex_malloc(1000, 256));
  const uint32_t offset = word(block) - header(block);
  strcpy(block, "content");
  for (bool moves : {true, true, false}) {
    xmalloc.moves = moves;
    char* grown = static_cast<char*>(jex_serv_jex_realloc(block, moves ? 3000 : 500));
    EXPECT_EQ(grown != block, moves);
    EXPECT_EQ(word(grown) - header(grown), offset);
    if (moves) {
      EXPECT_EQ(header(grown), word(xmalloc.last));
      EXPECT_EQ(xmalloc.last_size, 3000 + offset);
    }
    EXPECT_STREQ(grown, "content");
    block = grown;
  }
  raw_calls();
  xmalloc.moves = true;
  block = static_cast<char*>(jex_serv_jex_realloc(block, 0));
  EXPECT_EQ(xmalloc.last_size, offset) << "shrunk, not freed";
  EXPECT_EQ(word(block) - header(block), offset);
  jex_serv_jex_free(block);
}

TEST_F(Aligned, ReallocOfNothingAllocates) {
  void* block = jex_serv_jex_realloc(nullptr, 10);
  EXPECT_EQ(xmalloc.last_size, 142u);
  EXPECT_EQ(word(block), (word(xmalloc.last) + 132) / 128 * 128);
  EXPECT_EQ(header(block), word(xmalloc.last));
  jex_serv_jex_free(block);
  EXPECT_EQ(jex_serv_jex_realloc(nullptr, 0), nullptr);
}

TEST_F(Aligned, ANullHeaderIsRespected) {
  uint32_t words[2] = {0, 0};
  jex_serv_jex_free(&words[1]);
  EXPECT_EQ(jex_serv_jex_realloc(&words[1], 10), nullptr);
  EXPECT_EQ(raw_calls(), (RawCalls{0, 0}));
}

TEST_F(Aligned, SizesThatDoNotFitTheAddressSpaceAreRefused) {
  EXPECT_EQ(jex_serv_jex_malloc(0xFFFFFFF0u, 32), nullptr);
  EXPECT_EQ(jex_serv_jex_realloc(nullptr, 0xFFFFFFF0u), nullptr);
  void* block = jex_serv_jex_malloc(10, 64);
  EXPECT_EQ(jex_serv_jex_realloc(block, 0xFFFFFFF0u), nullptr);
  jex_serv_jex_free(block);
}

}  // namespace
