// The transform of one line of a grid, through the module's trigonometric transforms.
#pragma once

#include "pde/grid.h"

#include <jex/core.h>

#include <string.h>
#include <type_traits>

namespace jex::pde {

enum class Way { forward, backward };

// A thread has one of its own: the transforms write their status into their parameters, and its own
// copy of the descriptor with the work area of that thread needs no lock to claim one. Where the
// axis begins with a Dirichlet end and ends with a Neumann one, lines are turned round before the
// forward transform and after the backward one.
template <class T>
class LineTransform {
 public:
  LineTransform(const Module& module, const jex_dft_dfti_handle* handle, const Grid<T>& grid,
                int axis, Ends ends, int thread)
      : par_(grid.tables(axis)), n_(grid.axis(axis).n), is_mirrored_(ends == Ends::dn) {
    if constexpr (std::is_same_v<T, double>) {
      entries_[0] = module.jex_pdett_d_forward_trig_transform;
      entries_[1] = module.jex_pdett_d_backward_trig_transform;
    } else {
      entries_[0] = module.jex_pdett_s_forward_trig_transform;
      entries_[1] = module.jex_pdett_s_backward_trig_transform;
    }
    std::copy_n(grid.transform(axis), parameters, ipar_);
    if (!handle || !*handle) return;
    const jex_dft_descriptor* shared;
    memcpy(&shared, static_cast<const void*>(*handle), sizeof shared);
    record_ = *shared;
    record_.word[JEX_DFT_USER_THREADS] = 1;
    record_.word[JEX_DFT_WORK_BUFFERS] += thread * record_.word[JEX_DFT_MAX_WORK_SIZE];
    handle_ = reinterpret_cast<jex_dft_dfti_handle>(&first_record_);
  }

  LineTransform(const LineTransform&) = delete;

  void run(Way way, T* line) {
    if (is_mirrored_ && way == Way::forward) std::reverse(line, line + n_ + 1);
    jex_int stat = 0;
    entries_[way == Way::backward](line, &handle_, ipar_, par_, &stat);
    if (stat) failed_ = true;
    if (is_mirrored_ && way == Way::backward) std::reverse(line, line + n_ + 1);
  }
  bool failed() const { return failed_; }

 private:
  static constexpr int parameters = 11;
  void (*entries_[2])(T*, jex_dft_dfti_handle*, jex_int*, const T*, jex_int*);
  jex_dft_descriptor record_;
  const jex_dft_descriptor* first_record_ = &record_;
  jex_dft_dfti_handle handle_ = nullptr;  // begins, like any, with the address of its first record
  const T* par_;
  jex_int n_, ipar_[parameters];
  bool is_mirrored_, failed_ = false;
};

}  // namespace jex::pde
