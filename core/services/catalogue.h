// The catalogue of message texts: one row for each number, one twin for each set with other
// indices.
#pragma once

#include <jex/types.h>

namespace jex::core {

struct Message {
  jex_int number;
  const char* text;  // "%s" stands for an argument, "[k]" for an index counted from 0
};

// The numbers first..last say what the numbers `distance` above them say, to callers who count from
// 1: "[k]" reads "(k + 1)" there.
struct FortranTwin {
  jex_int first, last, distance;
};

extern const Message catalogue[];
extern const int catalogue_size;
extern const FortranTwin fortran_twins[];
extern const int fortran_twins_size;

}  // namespace jex::core
