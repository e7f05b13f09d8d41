// What a compute call finds out first: its work area, and where the elements of its transforms are.
#pragma once

#include <stddef.h>

#include <jex/core_imports.h>

#include "dft/engine/record.h"

namespace jex::dft {

// The work area of a call. With user threads it is the lowest free one of theirs, claimed and given
// back under the global lock.
class WorkArea {
 public:
  explicit WorkArea(const Record& record)
      : area_(get(record, work_buffers)), slots_(nullptr), slot_(-1) {
    const int32_t count = get(record, user_threads);
    if (count < 2) return;
    slots_ = get(record, per_thread_slots);
    if (!slots_) return;
    jex_serv_lock();
    for (int32_t i = 0; i < count && slot_ < 0; ++i)
      if (slots_[i] != 1) slot_ = i;
    if (slot_ >= 0) slots_[slot_] = 1;
    jex_serv_unlock();
    if (slot_ >= 0 && area_) area_ += ptrdiff_t(slot_) * get(record, max_work_size);
  }
  WorkArea(const WorkArea&) = delete;
  ~WorkArea() {
    if (slot_ < 0) return;
    jex_serv_lock();
    slots_[slot_] = 0;
    jex_serv_unlock();
  }
  bool is_missing(const Record& record) const { return get(record, user_threads) > 1 && slot_ < 0; }
  char* address() const { return area_; }

 private:
  char* area_;
  int32_t* slots_;
  int32_t slot_;
};

// Where the elements of the transforms are.
struct Layout {
  ptrdiff_t offset, distance, stride;
};

inline Layout input_layout(const Record& record) {
  return {get(record, input_offset), get(record, input_distance), get(record, input_stride)};
}
inline Layout output_layout(const Record& record, bool in_place) {
  if (in_place) return input_layout(record);
  return {get(record, output_offset), get(record, output_distance), get(record, output_stride)};
}

}  // namespace jex::dft
