// Callers may come with a stack that is aligned to 4 bytes only: compilers of other makers and old
// ones do. Every export realigns it. A kernel's result must be the same bits for every alignment.

#include <jex/core.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

#include "guards/stack_call.h"

namespace {

using jex::test::call_shifted;

constexpr int shifts[] = {0, 4, 8, 12};

// The operands of a call: three vectors of any element type, and indices for the sparse kernels.
struct Operands {
  static constexpr int bytes = 4096;
  alignas(16) unsigned char x[bytes], y[bytes], z[bytes];
  jex_int indx[64];

  template <class R>
  void fill(R) {
    std::mt19937 random(5);
    std::uniform_real_distribution<R> value(-1, 1);
    for (unsigned char* vector : {x, y, z})
      for (int i = 0; i < bytes / int(sizeof(R)); ++i) {
        const R v = value(random);
        memcpy(vector + i * sizeof(R), &v, sizeof v);
      }
    for (int i = 0; i < 64; ++i) indx[i] = 1 + (i * 5) % 64;
  }
};
Operands operands;

template <class T>
T* x() {
  return reinterpret_cast<T*>(operands.x);
}
template <class T>
T* y() {
  return reinterpret_cast<T*>(operands.y);
}
template <class T>
T* z() {
  return reinterpret_cast<T*>(operands.z);
}

// Everything that a call leaves behind: its result and its operands.
using Record = std::vector<unsigned char>;

template <class R, class Call>
Record record_of(Call call) {
  operands.fill(R());
  Record record;
  const auto keep = [&](const void* from, size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(from);
    record.insert(record.end(), bytes, bytes + size);
  };
  if constexpr (std::is_void_v<decltype(call())>) {
    call();
  } else {
    const auto result = call();
    keep(&result, sizeof result);
  }
  keep(&operands, sizeof operands);
  return record;
}

// A kernel that trusts its caller ends the program; this tells which it was.
char running[80];
void tell_and_end(int) {
  ssize_t written = write(STDERR_FILENO, running, strlen(running));
  _exit(written < 0 ? 2 : 1);
}

// R: the real type with which the operands are filled.
template <class R, class Result, class... P, class... A>
void same_bits(const char* name, Result (*entry)(P...), A... arguments) {
  const Record aligned = record_of<R>([&] { return entry(arguments...); });
  for (int shift : shifts) {
    snprintf(running, sizeof running, "%s crashes with the stack off by %d\n", name, shift);
    EXPECT_TRUE(record_of<R>([&] { return call_shifted(shift, entry, arguments...); }) == aligned)
        << name << " with the stack off by " << shift;
  }
}

const jex_int lengths[] = {1, 2, 3, 7, 16, 33, 64};
const jex_int increments[] = {1, 2, -1};

class Stack : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(module, nullptr) << jex_core_error();
    signal(SIGSEGV, tell_and_end);
  }
  void TearDown() override { signal(SIGSEGV, SIG_DFL); }
  const jex::Module* module = jex::module();
};

#define SAME(R, name, ...) same_bits<R>(#name, module->jex_blas_##name, __VA_ARGS__)

// t: letter, T: element type, R: its real type. Every routine that all four types have.
#define EVERY_TYPE(t, T, R)                                                 \
  for (const jex_int& n : lengths)                                          \
    for (const jex_int& inc : increments) {                                 \
      SAME(R, t##axpy, &n, z<T>(), x<T>(), &inc, y<T>(), &inc);             \
      SAME(R, t##copy, &n, x<T>(), &inc, y<T>(), &inc);                     \
      SAME(R, t##swap, &n, x<T>(), &inc, y<T>(), &inc);                     \
      SAME(R, t##scal, &n, z<T>(), x<T>(), &inc);                           \
      SAME(R, i##t##amax, &n, x<T>(), &inc);                                \
      SAME(R, i##t##amin, &n, x<T>(), &inc);                                \
      SAME(R, t##rot2, &n, x<T>(), &inc, y<T>(), &inc, z<T>(), z<T>() + 1); \
    }                                                                       \
  for (const jex_int& n : lengths) {                                        \
    SAME(R, t##axpyi, &n, z<T>(), x<T>(), operands.indx, y<T>());           \
    SAME(R, t##gthr, &n, y<T>(), x<T>(), operands.indx);                    \
    SAME(R, t##gthrz, &n, y<T>(), x<T>(), operands.indx);                   \
    SAME(R, t##sctr, &n, x<T>(), operands.indx, y<T>());                    \
  }

#define REAL_TYPE(t, R)                                                    \
  EVERY_TYPE(t, R, R)                                                      \
  for (const jex_int& n : lengths)                                         \
    for (const jex_int& inc : increments) {                                \
      SAME(R, t##dot, &n, x<R>(), &inc, y<R>(), &inc);                     \
      SAME(R, t##nrm2, &n, x<R>(), &inc);                                  \
      SAME(R, t##asum, &n, x<R>(), &inc);                                  \
      SAME(R, t##rot, &n, x<R>(), &inc, y<R>(), &inc, z<R>(), z<R>() + 1); \
      const R param[5] = {-1, R(0.5), R(-0.25), R(0.125), R(2)};           \
      SAME(R, t##rotm, &n, x<R>(), &inc, y<R>(), &inc, +param);            \
    }                                                                      \
  SAME(R, t##rotg, x<R>(), y<R>(), z<R>(), z<R>() + 1);                    \
  SAME(R, t##rotmg, x<R>(), y<R>(), z<R>(), z<R>() + 1, z<R>() + 2);       \
  for (const jex_int& n : lengths) SAME(R, t##doti, &n, x<R>(), operands.indx, y<R>());

#define COMPLEX_TYPE(t, T, r, R)                                           \
  EVERY_TYPE(t, T, R)                                                      \
  for (const jex_int& n : lengths)                                         \
    for (const jex_int& inc : increments) {                                \
      SAME(R, t##dotu, &n, x<T>(), &inc, y<T>(), &inc);                    \
      SAME(R, t##dotc, &n, x<T>(), &inc, y<T>(), &inc);                    \
      SAME(R, r##t##nrm2, &n, x<T>(), &inc);                               \
      SAME(R, r##t##asum, &n, x<T>(), &inc);                               \
      SAME(R, t##rot, &n, x<T>(), &inc, y<T>(), &inc, z<R>(), z<T>() + 1); \
      SAME(R, t##r##scal, &n, z<R>(), x<T>(), &inc);                       \
    }                                                                      \
  SAME(R, t##rotg, x<T>(), y<T>(), z<R>(), z<T>() + 1);                    \
  for (const jex_int& n : lengths) SAME(R, t##dotui, &n, x<T>(), operands.indx, y<T>());

TEST_F(Stack, Single){REAL_TYPE(s, float)} TEST_F(Stack, Double){
    REAL_TYPE(d, double)} TEST_F(Stack, SingleComplex){
    COMPLEX_TYPE(c, jex_scomplex, s, float)} TEST_F(Stack, DoubleComplex){
    COMPLEX_TYPE(z, jex_dcomplex, d, double)}

TEST_F(Stack, MixedPrecision) {
  for (const jex_int& n : lengths)
    for (const jex_int& inc : increments) {
      SAME(float, dsdot, &n, x<float>(), &inc, y<float>(), &inc);
      SAME(float, sdsdot, &n, z<float>(), x<float>(), &inc, y<float>(), &inc);
    }
}

// The trampoline does what it says: a function sees its arguments, and the stack where it was put.
extern "C" int jex_stack_place(int, int, int, int) asm("jex_stack_place");
extern "C" int jex_aligned_store(int) asm("jex_aligned_store");
asm(".text\n"
    "jex_stack_place:\n"
    "  leal 4(%esp), %eax\n"
    "  andl $15, %eax\n"
    "  addl 16(%esp), %eax\n"
    "  ret\n"
    // A function that trusts its caller's stack, as compilers write it without realignment.
    "jex_aligned_store:\n"
    "  subl $28, %esp\n"
    "  movaps %xmm0, (%esp)\n"
    "  addl $28, %esp\n"
    "  movl 4(%esp), %eax\n"
    "  ret\n");

TEST(Trampoline, PutsTheStackWhereItSays) {
  for (int shift : shifts)
    EXPECT_EQ(call_shifted(shift, jex_stack_place, 1, 2, 3, 1000), 1000 + (16 - shift) % 16);
}

TEST(Trampoline, CatchesAFunctionThatTrustsItsCaller) {
  EXPECT_EQ(call_shifted(0, jex_aligned_store, 7), 7);
  for (int shift : {4, 8, 12}) EXPECT_DEATH(call_shifted(shift, jex_aligned_store, 7), "");
}

}  // namespace
