// One transform on several threads, which share the pieces of its committed chain.
#pragma once

#include <jex/core.h>

#include <memory>

struct jex_dft_dfti_transform;

namespace jex::dfti {

class Shared {
 public:
  // Whether the transform is one, and long enough to be shared.
  static bool suits(jex_dft_dfti_transform& t);
  // *out stays null where the module does not cut this case into phases.
  static jex_int make(jex_dft_dfti_transform& t, jex_int threads, std::unique_ptr<Shared>* out);
  Shared(const Shared&) = delete;
  ~Shared();

  jex_int compute(bool forward, void* const (&arrays)[4]);

 private:
  Shared(jex_dft_dfti_transform& t, jex_int threads) : transform_(t), threads_(threads) {}
  bool make_areas();

  jex_dft_dfti_transform& transform_;
  const jex_int threads_;
  jex_int phases_ = 1;
  char* areas_ = nullptr;  // for all parts but the first one
};

}  // namespace jex::dfti
