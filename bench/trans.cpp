// Transposition of square matrices with alpha = 1, out of place and in place, column-major. Calls
// in place undo each other.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include <jex/types.h>

#include "case.h"

namespace jex::bench {
namespace {

template <class T>
T unity() {
  if constexpr (std::is_arithmetic_v<T>)
    return 1;
  else
    return {1, 0};
}

template <class T>
class TransposeProblem : public Problem {
 public:
  TransposeProblem(jex_int n, bool in_place)
      : n_(n), in_place_(in_place), bytes_(size_t(n) * n * sizeof(T)) {
    a_ = static_cast<T*>(std::aligned_alloc(64, round(bytes_)));
    b_ = in_place ? a_ : static_cast<T*>(std::aligned_alloc(64, round(bytes_)));
    if (!a_ || !b_) throw std::bad_alloc();
  }
  TransposeProblem(const TransposeProblem&) = delete;
  TransposeProblem& operator=(const TransposeProblem&) = delete;
  ~TransposeProblem() override {
    if (b_ != a_) std::free(b_);
    std::free(a_);
  }

  void fill() override {
    auto* words = reinterpret_cast<float*>(a_);
    for (size_t i = 0; i < bytes_ / sizeof(float); ++i) words[i] = float(i % 8191) + 1;
    if (b_ != a_) std::memset(static_cast<void*>(b_), 0, bytes_);
  }

  void run(const Entry& entry, long calls) override {
    const T alpha = unity<T>();
    if (in_place_ && entry.abi == Abi::module) {
      auto* f = entry.as<void(char, char, jex_int, jex_int, T, T*, jex_int, jex_int)>();
      for (; calls > 0; --calls) f('C', 'T', n_, n_, alpha, a_, n_, n_);
    } else if (in_place_) {
      auto* f = entry.as<void(const char*, const char*, const jex_int*, const jex_int*, const T*,
                              T*, const jex_int*, const jex_int*)>();
      for (; calls > 0; --calls) f("C", "T", &n_, &n_, &alpha, a_, &n_, &n_);
    } else if (entry.abi == Abi::module) {
      auto* f = entry.as<void(char, char, jex_int, jex_int, T, const T*, jex_int, T*, jex_int)>();
      for (; calls > 0; --calls) f('C', 'T', n_, n_, alpha, a_, n_, b_, n_);
    } else {
      auto* f = entry.as<void(const char*, const char*, const jex_int*, const jex_int*, const T*,
                              const T*, const jex_int*, T*, const jex_int*)>();
      for (; calls > 0; --calls) f("C", "T", &n_, &n_, &alpha, a_, &n_, b_, &n_);
    }
  }

  /// Elements are moved, so every bit is.
  double deviation(const Problem& problem) const override {
    const auto& other = static_cast<const TransposeProblem&>(problem);
    return std::memcmp(b_, other.b_, bytes_) == 0 ? 0 : std::numeric_limits<double>::infinity();
  }

 private:
  static size_t round(size_t bytes) { return (bytes + 63) / 64 * 64; }

  jex_int n_;
  bool in_place_;
  size_t bytes_;
  T *a_, *b_;
};

template <class T>
void add(std::vector<Case>& cases, const std::string& letter) {
  for (const bool in_place : {false, true}) {
    for (const jex_int n : {64, 200, 1000, 1024, 4000}) {
      if (sizeof(T) == 16 && n == 4000) continue;  // beyond what 32-bit addresses hold comfortably
      const double bytes = double(n) * n * sizeof(T);
      const std::string routine = letter + (in_place ? "imatcopy" : "omatcopy");
      const Work work{.read_bytes = bytes,
                      .written_bytes = bytes,
                      .footprint = in_place ? bytes : 2 * bytes,
                      .is_double = letter == "d" || letter == "z",
                      .in_place = in_place};
      cases.push_back(
          {routine + "/" + std::to_string(n) + "/T", routine, "trans", work, n == 200,
           [n, in_place] { return std::make_unique<TransposeProblem<T>>(n, in_place); }});
    }
  }
}

}  // namespace

void add_trans(std::vector<Case>& cases) {
  add<float>(cases, "s");
  add<double>(cases, "d");
  add<jex_scomplex>(cases, "c");
  add<jex_dcomplex>(cases, "z");
}

}  // namespace jex::bench
