// Counts of a format's kernels at compile time, from the names of its list.
#pragma once

namespace jex::spblas {

constexpr bool ends_with(const char* name, const char* end) {
  int n = 0, m = 0;
  while (name[n]) ++n;
  while (end[m]) ++m;
  while (m > 0 && n > 0 && name[n - 1] == end[m - 1]) --n, --m;
  return m == 0;
}

// Letters of a kernel's name: jex_spblas_ E csr B.
constexpr int type_place = 11, base_place = 15;

template <int size>
consteval int kernels(const char* const (&list)[size], char type, const char* suffix) {
  int count = 0;
  for (const char* name : list)
    count += (!type || name[type_place] == type) && ends_with(name, suffix);
  return count;
}

template <int size>
consteval int of_base(const char* const (&list)[size], char base) {
  int count = 0;
  for (const char* name : list) count += name[base_place] == base;
  return count;
}

}  // namespace jex::spblas
