// The names of sparse kernels and what they say, and every export of a format with its address.
#pragma once

#include <jex/exports.h>

#include <string>
#include <vector>

namespace jex::test {

struct KernelName {
  std::string text;
  char type, op, kind, uplo, diag;
  int base;
  bool by_rows;  // the dense matrices
  std::string suffix;

  explicit KernelName(const std::string& name)
      : text(name),
        type(name[11]),
        op(name[16]),
        kind(name[17]),
        uplo(name[18]),
        diag(name[19]),
        base(name[15] - '0'),
        by_rows(name[20] == 'c'),
        suffix(name.substr(name.find("__", 20) + 2)) {}

  bool transposed() const { return op == 't' || op == 'c'; }
  bool conjugated() const { return op == 'c' || op == 's'; }
  bool unit() const { return diag == 'u'; }
  bool is(const char* what) const { return suffix.rfind(what, 0) == 0; }
  bool ranged() const { return suffix.ends_with("par"); }
  // Do the rows of a vector product also write mirror images?
  bool mirrors() const { return kind == 's' || kind == 'h' || kind == 'a'; }
  bool goes_twice() const {
    return is("mv") && (kind == 'a' || (unit() && (kind == 's' || kind == 'h')));
  }
  // Is an entry (i, j) one that the kernel takes?
  bool holds(int i, int j) const {
    if (kind == 'g') return true;
    if (kind == 'd') return i == j && !unit();
    if (i == j) return kind != 'a' && !unit();
    return uplo == 'l' ? j < i : j > i;
  }
};

struct Kernel {
  KernelName name;
  void* address;
};

// The kernels of a format and element type whose suffix begins with the given letters.
inline std::vector<Kernel> kernels_of(const std::string& format, char type,
                                      const std::string& suffix) {
  struct Entry {
    const char* name;
    void (*address)();
  };
#define JEX_ENTRY(name) {#name, reinterpret_cast<void (*)()>(&name)},
  static const Entry entries[] = {
#include <jex/export_names.inc>
  };
#undef JEX_ENTRY
  std::vector<Kernel> found;
  for (const Entry& entry : entries) {
    if (std::string(entry.name).rfind("jex_spblas_" + (type + format), 0) != 0) continue;
    const KernelName name(entry.name);
    if (name.is(suffix.c_str())) found.push_back({name, reinterpret_cast<void*>(entry.address)});
  }
  return found;
}

}  // namespace jex::test
