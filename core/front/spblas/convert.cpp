// Conversions between storage formats: checks, room, and the module's conversions. Whatever is not
// CSR goes through it.

#include "front/entries.h"

#include <jex/sparse_formats.h>

#include <algorithm>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <vector>

namespace jex::front {
namespace {

using Sparse = jex_sparse_matrix;

constexpr int64_t address_space = 0x7fffffff;

char upper_letter(char letter) {
  return letter >= 'a' && letter <= 'z' ? char(letter - 'a' + 'A') : letter;
}
bool is_format(char letter) { return letter && strchr("RCOBDLUF", letter); }
bool is_skyline(char format) { return format == 'L' || format == 'U'; }

jex_int blocks(jex_int extent, jex_int side) { return extent / side + (extent % side != 0); }

// Lists that the pointers of a format delimit, and the range of its indices.
jex_int lists(const Sparse& a) {
  return a.format == 'C' ? a.n : a.format == 'B' ? blocks(a.m, a.block) : a.m;
}
jex_int indices_below(const Sparse& a) {
  return a.format == 'C' ? a.m : a.format == 'B' ? blocks(a.n, a.block) : a.n;
}

bool in_range(const jex_int* indices, jex_int count, jex_int base, jex_int below) {
  return std::all_of(indices, indices + count,
                     [=](jex_int index) { return index >= base && int64_t(index) - base < below; });
}

jex_int check_pointers(const Sparse& a) {
  if (!a.pointers) return JEX_SPARSE_NULL_ARGUMENT;
  if (a.pointers[0] != a.base) return JEX_SPARSE_WRONG_ROW_POINTER;
  for (jex_int i = 0; i < lists(a); ++i) {
    const int64_t length = int64_t(a.pointers[i + 1]) - a.pointers[i];
    if (length < 0 || (is_skyline(a.format) && (length < 1 || length > i + 1)))
      return JEX_SPARSE_WRONG_ROW_POINTER;
  }
  return JEX_SPARSE_OK;
}

jex_int check_lists(const Sparse& a) {
  if (const jex_int status = check_pointers(a)) return status;
  const jex_int count = a.pointers[lists(a)] - a.base;
  if (count > 0 && (!a.values || (!a.indices && !is_skyline(a.format))))
    return JEX_SPARSE_NULL_ARGUMENT;
  if (is_skyline(a.format)) return JEX_SPARSE_OK;
  return in_range(a.indices, count, a.base, indices_below(a)) ? JEX_SPARSE_OK
                                                              : JEX_SPARSE_WRONG_COLUMN;
}

jex_int check_coordinates(const Sparse& a) {
  if (a.count < 0) return JEX_SPARSE_WRONG_SIZE;
  if (a.count > 0 && (!a.values || !a.indices || !a.pointers)) return JEX_SPARSE_NULL_ARGUMENT;
  return in_range(a.indices, a.count, a.base, a.m) && in_range(a.pointers, a.count, a.base, a.n)
             ? JEX_SPARSE_OK
             : JEX_SPARSE_WRONG_COLUMN;
}

jex_int check_diagonals(const Sparse& a) {
  if (a.count < 0) return JEX_SPARSE_WRONG_SIZE;
  if (a.ld < std::max<jex_int>(1, a.m)) return JEX_SPARSE_WRONG_LEADING_DIMENSION;
  if (a.count > 0 && (!a.values || !a.indices)) return JEX_SPARSE_NULL_ARGUMENT;
  std::vector<jex_int> sorted(a.indices, a.indices + a.count);
  std::sort(sorted.begin(), sorted.end());
  const bool twice = std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
  const bool outside = !sorted.empty() && (sorted.front() <= -int64_t(a.m) || sorted.back() >= a.n);
  return twice || outside ? JEX_SPARSE_WRONG_COLUMN : JEX_SPARSE_OK;
}

jex_int check(const Sparse& a) {
  if (!is_format(a.format) || (a.base != 0 && a.base != 1)) return JEX_SPARSE_WRONG_DESCRIPTOR;
  if (a.m < 0 || a.n < 0 || (a.format == 'B' && a.block < 1) ||
      (is_skyline(a.format) && a.m != a.n))
    return JEX_SPARSE_WRONG_SIZE;
  switch (a.format) {
    case 'O':
      return check_coordinates(a);
    case 'D':
      return check_diagonals(a);
    case 'F':
      if (a.ld < std::max<jex_int>(1, a.base ? a.m : a.n))
        return JEX_SPARSE_WRONG_LEADING_DIMENSION;
      return a.m > 0 && a.n > 0 && !a.values ? JEX_SPARSE_NULL_ARGUMENT : JEX_SPARSE_OK;
    default:
      return check_lists(a);
  }
}

// Every element inside the triangle of a skyline?
bool fits_triangle(const Sparse& csr, bool upper) {
  for (jex_int i = 0; i < csr.m; ++i)
    for (jex_int k = csr.pointers[i] - csr.base; k < csr.pointers[i + 1] - csr.base; ++k) {
      const jex_int j = csr.indices[k] - csr.base;
      if (upper ? j < i : j > i) return false;
    }
  return true;
}

// New arrays; at least one element each, so that null means that there is no memory.
template <class T>
bool make(T*& p, int64_t count) {
  p = nullptr;
  if (count > address_space / int64_t(sizeof(T))) return false;
  p = static_cast<T*>(malloc(std::max<int64_t>(count, 1) * sizeof(T)));
  return p;
}

// The module's conversion between a CSR matrix and another one, in the direction that back says.
jex_int run(const Module& module, Sparse& csr, Sparse& other, bool back, bool whole) {
  const jex_int job[] = {other.format == 'F' ? !back : back, csr.base, other.base, whole,
                         other.format == 'U'};
  const jex_int room = back ? csr.count : other.count;
  jex_int info = 0;
  switch (other.format) {
    case 'B':
      module.jex_spblas_jex_dcsrbsr(job, &csr.m, &csr.n, &other.block, csr.values, csr.indices,
                                    csr.pointers, other.values, other.indices, other.pointers,
                                    &room, &info);
      break;
    case 'O':
      module.jex_spblas_jex_dcsrcoo(job, &csr.m, csr.values, csr.indices, csr.pointers,
                                    &other.count, other.values, other.indices, other.pointers,
                                    &room, &info);
      break;
    case 'C':
      module.jex_spblas_jex_dcsrcsc(job, &csr.m, &csr.n, csr.values, csr.indices, csr.pointers,
                                    other.values, other.indices, other.pointers, &room, &info);
      break;
    case 'D':
      module.jex_spblas_jex_dcsrdia(job, &csr.m, &csr.n, csr.values, csr.indices, csr.pointers,
                                    other.values, &other.ld, other.indices, &other.count, &room,
                                    &info);
      break;
    case 'F':
      module.jex_spblas_jex_ddnscsr(job, &csr.m, &csr.n, other.values, &other.ld, csr.values,
                                    csr.indices, csr.pointers, &room, &info);
      break;
    default:
      module.jex_spblas_jex_dcsrsky(job, &csr.m, csr.values, csr.indices, csr.pointers,
                                    other.values, other.pointers, &room, &info);
  }
  return info == 0 ? JEX_SPARSE_OK : JEX_SPARSE_NO_MEMORY;
}

// The CSR form of a matrix that is not.
jex_int to_csr(const Module& module, const Sparse& from, jex_int base, Sparse& csr) {
  Sparse source = from;
  csr = {'R', base, from.m, from.n, 0, 0, 0, nullptr, nullptr, nullptr};
  if (!make(csr.pointers, int64_t(csr.m) + 1)) return JEX_SPARSE_NO_MEMORY;
  if (const jex_int status = run(module, csr, source, true, false)) return status;
  csr.count = csr.pointers[csr.m] - base;
  if (!make(csr.values, csr.count) || !make(csr.indices, csr.count)) return JEX_SPARSE_NO_MEMORY;
  return run(module, csr, source, true, true);
}

// Another form of a CSR matrix: sizes, room, and all.
jex_int from_csr(const Module& module, const Sparse& source, Sparse& to) {
  Sparse csr = source;
  csr.count = csr.pointers[csr.m] - csr.base;
  const char format = to.format;
  if (is_skyline(format) && !fits_triangle(csr, format == 'U')) return JEX_SPARSE_WRONG_SIZE;
  to.ld = std::max<jex_int>(1, format == 'F' && !to.base ? to.n : to.m);
  const bool has_pointers = format == 'B' || format == 'C' || is_skyline(format);
  if (has_pointers && !make(to.pointers, int64_t(lists(to)) + 1)) return JEX_SPARSE_NO_MEMORY;
  if (format != 'F')
    if (const jex_int status = run(module, csr, to, false, false)) return status;
  if (has_pointers) to.count = to.pointers[lists(to)] - to.base;

  const int64_t values = format == 'F'   ? int64_t(to.base ? to.n : to.m) * to.ld
                         : format == 'B' ? int64_t(to.block) * to.block
                         : format == 'D' ? to.ld
                                         : 1;
  if (format != 'F' && to.count > 0 && values > address_space / to.count)
    return JEX_SPARSE_NO_MEMORY;
  if (!make(to.values, format == 'F' ? values : values * to.count)) return JEX_SPARSE_NO_MEMORY;
  if (strchr("BCOD", format) && !make(to.indices, to.count)) return JEX_SPARSE_NO_MEMORY;
  if (format == 'O' && !make(to.pointers, to.count)) return JEX_SPARSE_NO_MEMORY;
  return run(module, csr, to, false, true);
}

// Through a format between: what is made on the way is released.
jex_int convert(const Module& module, const Sparse& from, Sparse& to) {
  if (from.format != 'R' && to.format == 'R') return to_csr(module, from, to.base, to);
  if (from.format == 'R' && to.format != 'R') return from_csr(module, from, to);
  Sparse between = {'O', 0, from.m, from.n, 0, 0, 0, nullptr, nullptr, nullptr};
  const bool rows = from.format == 'R';  // a copy in another base
  jex_int status = rows ? from_csr(module, from, between) : to_csr(module, from, 0, between);
  if (!status) status = rows ? to_csr(module, between, to.base, to) : from_csr(module, between, to);
  jex_sparse_release(&between);
  return status;
}

}  // namespace
}  // namespace jex::front

jex_int jex_dsparse_convert(const jex_sparse_matrix* from, char format, jex_int base, jex_int block,
                            jex_sparse_matrix* to) {
  using namespace jex::front;
  const jex::Module* module = entries();
  if (!module) return JEX_SPARSE_NO_MODULE;
  if (!from || !to) return JEX_SPARSE_NULL_ARGUMENT;
  Sparse source = *from;
  source.format = upper_letter(source.format);
  if (const jex_int status = check(source)) return status;
  Sparse made = {
      upper_letter(format), base, source.m, source.n, block, 0, 0, nullptr, nullptr, nullptr};
  if (!is_format(made.format) || (base != 0 && base != 1)) return JEX_SPARSE_WRONG_DESCRIPTOR;
  if ((made.format == 'B' && block < 1) || (is_skyline(made.format) && made.m != made.n))
    return JEX_SPARSE_WRONG_SIZE;
  if (made.format != 'B') made.block = 0;
  const jex_int status = convert(*module, source, made);
  if (status)
    jex_sparse_release(&made);
  else
    *to = made;
  return status;
}

void jex_sparse_release(jex_sparse_matrix* matrix) {
  if (!matrix) return;
  free(matrix->values);
  free(matrix->indices);
  free(matrix->pointers);
  matrix->values = nullptr;
  matrix->indices = matrix->pointers = nullptr;
}
