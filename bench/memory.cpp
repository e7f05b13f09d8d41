// A work buffer asked for, touched and given back, beside the C library's allocator.

#include <cstdint>
#include <cstdlib>

#include <jex/core.h>

#include "case.h"

namespace jex::bench {
namespace {

class BufferProblem : public Problem {
 public:
  explicit BufferProblem(uint32_t size) : size_(size) {}

  void fill() override {}

  void run(const Entry& entry, long calls) override {
    const bool is_ours = entry.abi == Abi::module;
    const auto give_back = is_ours ? jex::module()->jex_serv_deallocate : std::free;
    auto* ask = entry.as<void*(uint32_t, int32_t)>();
    for (; calls > 0; --calls) {
      auto* buffer = static_cast<volatile char*>(ask(size_, 64));
      is_there_ = buffer != nullptr;
      if (is_there_) {
        buffer[0] = 1;
        buffer[size_ - 1] = 1;
      }
      give_back(const_cast<char*>(buffer));
    }
  }

  double deviation(const Problem& other) const override {
    return is_there_ && static_cast<const BufferProblem&>(other).is_there_ ? 0 : 2;
  }

 private:
  uint32_t size_;
  bool is_there_ = false;
};

}  // namespace

void add_memory(std::vector<Case>& cases) {
  for (const uint32_t size : {1000u, 100000u, 10000000u})
    cases.push_back(
        {"buffer/" + std::to_string(size), "buffer", "memory", {}, size == 100000u, [size] {
           return std::make_unique<BufferProblem>(size);
         }});
}

}  // namespace jex::bench
