#include "front/spblas/operation.h"

#include <jex/module_entries.hpp>

#include <string.h>
#include <unordered_map>

namespace jex::front {
namespace {

char lower_letter(char letter) {
  return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter;
}

bool is_one_of(char letter, const char* letters) { return letter && strchr(letters, letter); }

using Kernels = std::unordered_map<std::string, void*>;

const Kernels& kernels(const Module& module) {
  static const Kernels& table = *[&] {
    auto* table = new Kernels;  // Never destroyed: fronts may be called until the process is gone.
    for (const ModuleEntry& entry : module_entries)
      if (!strncmp(entry.name, "jex_spblas_", 11)) (*table)[entry.name] = entry.address(module);
    return table;
  }();
  return table;
}

}  // namespace

jex_int decode(char op, const jex_sparse_descriptor& d, bool complex, Operation& result) {
  op = lower_letter(op);
  Operation o = {op, lower_letter(d.kind), lower_letter(d.uplo), lower_letter(d.diag), false};
  if (!is_one_of(op, "ntc")) return JEX_SPARSE_WRONG_OPERATION;
  const bool has_triangle = is_one_of(o.kind, "shta");
  if (!is_one_of(o.kind, "gshtda") || (d.base != 0 && d.base != 1) ||
      (has_triangle && !is_one_of(o.uplo, "lu")) ||
      (is_one_of(o.kind, "shtd") && !is_one_of(o.diag, "nu")))
    return JEX_SPARSE_WRONG_DESCRIPTOR;
  if (!has_triangle) o.uplo = '_';
  if (o.kind == 'g' || o.kind == 'a') o.diag = '_';
  if (!complex) {
    if (o.op == 'c') o.op = 't';
    if (o.kind == 'h') o.kind = 's';
  }
  switch (o.kind) {
    case 's':
      if (o.op == 't') o.op = 'n';
      break;
    case 'h':
      if (o.op == 'c') o.op = 'n';
      break;
    case 'd':
      if (o.op == 't' || o.diag == 'u') o.op = 'n';
      break;
    case 'a':
      o.negative = o.op == 't';
      if (o.op == 't') o.op = 'n';
      break;
  }
  result = o;
  return JEX_SPARSE_OK;
}

void* find_kernel(const Module& module, char type, const char* format, int base, const Operation& o,
                  const char* suffix) {
  const char letters[] = {char('0' + base), o.op, o.kind, o.uplo, o.diag, base ? 'f' : 'c', 0};
  const auto& table = kernels(module);
  const auto found =
      table.find(std::string("jex_spblas_") + type + format + letters + "__" + suffix);
  return found == table.end() ? nullptr : found->second;
}

}  // namespace jex::front
