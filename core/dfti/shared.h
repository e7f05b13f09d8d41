// One transform on several threads. Commit leaves a single transform that may have more than one
// thread without kernels; this is the plan for it: a chain of its own, committed for one thread,
// whose pieces the threads share.
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
  static jex_int make(jex_dft_dfti_transform& t, std::unique_ptr<Shared>* out);
  Shared(const Shared&) = delete;
  ~Shared();

  jex_int compute(bool forward, void* const (&arrays)[4]);

 private:
  Shared(const Module& module, bool is_double, jex_int threads)
      : module_(module), is_double_(is_double), threads_(threads) {}
  jex_int commit(jex_dft_dfti_transform& t);
  bool make_areas();

  const Module& module_;
  const bool is_double_;
  const jex_int threads_;
  jex_int phases_ = 1;
  jex_dft_descriptor* records_ = nullptr;
  char* areas_ = nullptr;  // for all parts but the first one
};

}  // namespace jex::dfti
