// A library that stands where the module should. Which fault it has is chosen at compile time.

#ifdef _WIN32
#define API extern "C" __declspec(dllexport)
#else
#define API extern "C" __attribute__((visibility("default")))
#endif

#if defined(FOREIGN_without_version)

API int some_other_library() { return 1; }

#else

#if defined(FOREIGN_branch_2)
constexpr int branch = 2;
#elif defined(FOREIGN_incomplete)
constexpr int branch = 3;
#define jex_blas_dswap jex_blas_dswap_is_not_here
#endif

// Every name of the table, dll_cpu_version among them.
#define JEX_ENTRY(name) \
  API int name() { return branch; }
#include <jex/export_names.inc>

#endif
