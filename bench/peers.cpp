#include "peers.h"

#include <filesystem>
#include <glob.h>

namespace jex::bench {
namespace {

// Kernel sets of the 32-bit OpenBLAS that differ from each other; every other core type falls back
// on one of these, and none of them goes beyond 128-bit registers. Opteron and Athlon use
// instructions that newer processors dropped and die there.
constexpr const char* openblas_core_types[] = {
    "Prescott",   "Core2",   "Penryn", "Dunnington",  "Nehalem",   "Barcelona",
    "Bobcat",     "Atom",    "Nano",   "Banias",      "Northwood", "Katmai",
    "Coppermine", "Opteron", "Athlon", "Opteron_SSE3"};

std::string first_match(const std::string& pattern) {
  glob_t found;
  std::string path;
  if (glob(pattern.c_str(), 0, nullptr, &found) == 0) path = found.gl_pathv[0];
  globfree(&found);
  return path;
}

}  // namespace

std::string program_folder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
}

Peers find_peers() {
  Peers peers;
  const std::string system = "/usr/lib/i386-linux-gnu/";
  const std::string own = program_folder() + "/../lib/";
  auto add = [&](const std::string& name, const std::string& pattern, const std::string& package) {
    const std::string path = first_match(pattern);
    if (path.empty()) {
      peers.missing.push_back(name + " (package " + package + ")");
    } else {
      peers.installed.push_back({name, path, ""});
    }
    return path;
  };
  add("Eigen", own + "libjex_bench_eigen.so", "libeigen3-dev");
  add("plain", own + "libjex_bench_plain.so", "none: built with the benchmark");
  add("our CSR", own + "libjex_bench_own_csr.so", "none: built with the benchmark");
  add("librsb", own + "libjex_bench_rsb.so", "librsb-dev:i386");
  add("netlib", system + "blas/libblas.so.3", "libblas3:i386");
  add("FFTW", own + "libjex_bench_fftw.so", "libfftw3-dev:i386");
  add("plain loop", own + "libjex_bench_doubledouble.so", "none: built with the benchmark");
  add("C library", own + "libjex_bench_c_library.so", "none: built with the benchmark");
  add("GNU MP", system + "libgmp.so.10", "libgmp10:i386");

  const std::string openblas = first_match(system + "openblas-serial/libopenblas.so.0");
  if (openblas.empty()) peers.missing.push_back("OpenBLAS (package libopenblas0-serial:i386)");
  for (const char* type : openblas_core_types) {
    if (!openblas.empty()) {
      peers.installed.push_back({"OpenBLAS:" + std::string(type), openblas, type});
    }
  }
  return peers;
}

}  // namespace jex::bench
