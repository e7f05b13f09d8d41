// Tables of routines under test: the module's exports, or a shared library with Fortran symbols.
#pragma once

#include <string>

namespace jex::bench {

/// How a complex function result comes back; and the matrix copies, which take their scalars by
/// value in the module and by address elsewhere. All else is alike in both conventions.
enum class Abi { module, fortran };

struct Entry {
  void* address = nullptr;
  Abi abi = Abi::module;

  explicit operator bool() const { return address != nullptr; }
  /// The address as a function of the given type.
  template <class Function>
  Function* as() const {
    return reinterpret_cast<Function*>(address);
  }
};

/// The module's export of a routine ("ddot", "domatcopy") or the commit of a transform ("zfft");
/// empty when there is none.
Entry module_entry(const std::string& routine);

/// A library opened by its full path; its symbols stay its own.
class PeerLibrary {
 public:
  explicit PeerLibrary(const std::string& path);
  bool is_open() const { return handle_ != nullptr; }
  const std::string& error() const { return error_; }
  Entry entry(const std::string& routine) const;

 private:
  void* handle_;
  std::string error_;
};

}  // namespace jex::bench
