#include "entries.h"

#include <dlfcn.h>
#include <link.h>
#include <unordered_map>

#include <jex/module_entries.hpp>

namespace jex::bench {
namespace {

std::unordered_map<std::string, void*> table_of_module() {
  std::unordered_map<std::string, void*> table;
  if (const Module* module = jex::module())
    for (const ModuleEntry& entry : module_entries) table[entry.name] = entry.address(*module);
  return table;
}

}  // namespace

Entry module_entry(const std::string& routine) {
  static const auto table = table_of_module();
  // A transform is known by the commit that makes its plan.
  static const std::unordered_map<std::string, std::string> commits = {
      {"zfft", "jex_dft_commit_descriptor_core_d_c2c_1d"},
      {"cfft", "jex_dft_commit_descriptor_core_s_c2c_1d"},
      {"drfft", "jex_dft_commit_descriptor_core_d_r2c_1d"},
      {"srfft", "jex_dft_commit_descriptor_core_s_r2c_1d"},
      {"zfft2d", "jex_dft_commit_descriptor_core_d_c2c_md"},
      {"cfft2d", "jex_dft_commit_descriptor_core_s_c2c_md"},
      {"drfft2d", "jex_dft_commit_descriptor_core_d_r2c_md"},
      {"zfft3d", "jex_dft_commit_descriptor_core_d_c2c_md"},
      {"cfft3d", "jex_dft_commit_descriptor_core_s_c2c_md"}};
  if (const auto commit = commits.find(routine); commit != commits.end())
    return {table.at(commit->second), Abi::module};
  if (routine.find("trig") == 1)
    return {table.at("jex_pdett_" + routine.substr(0, 1) + "_forward_trig_transform"), Abi::module};
  if (routine == "buffer") return {table.at("jex_serv_allocate"), Abi::module};
  if (routine == "dpoisson") return {table.at("jex_pdepl_d_helmholtz_2d"), Abi::module};
  // The drivers of level 3 have an x before their names.
  for (const char* family :
       {"jex_blas_", "jex_blas_x", "jex_spblas_", "jex_trans_jex_", "jex_xblas_blas_", "jex_gmp_"})
    if (const auto found = table.find(family + routine); found != table.end())
      return {found->second, Abi::module};
  return {};
}

// Never closed: a library may leave handlers behind.
PeerLibrary::PeerLibrary(const std::string& path)
    : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (!handle_) error_ = dlerror();
}

Entry PeerLibrary::entry(const std::string& routine) const {
  // A C library bears its own names. What a peer itself is linked with is no routine of its own.
  const link_map* own = nullptr;
  dlinfo(handle_, RTLD_DI_LINKMAP, &own);
  for (const std::string& name : {routine + "_", routine}) {
    Dl_info where;
    void* address = dlsym(handle_, name.c_str());
    if (address && dladdr(address, &where) && own &&
        where.dli_fbase == reinterpret_cast<void*>(own->l_addr))
      return {address, Abi::fortran};
  }
  return {};
}

}  // namespace jex::bench
