// Every list holds as many entries as the table of combinations.

#include <jex/types.h>

namespace jex::spblas {
namespace {

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

#define JEX_EXPORT(result, name, params, call) #name,
constexpr const char* csr[] = {
#include "spblas/csr/exports.inc"
};
constexpr const char* coo[] = {
#include "spblas/coo/exports.inc"
};
constexpr const char* dia[] = {
#include "spblas/dia/exports.inc"
};
constexpr const char* bsr[] = {
#include "spblas/bsr/exports.inc"
};
constexpr const char* block_utilities[] = {
#include "spblas/bsr/utility_exports.inc"
};
constexpr const char* utilities[] = {
#include "spblas/util/exports.inc"
};
constexpr const char* conversions[] = {
#include "spblas/util/conversion_exports.inc"
};
#undef JEX_EXPORT

static_assert(kernels(csr, 0, "") == 705);
static_assert(kernels(csr, 0, "__mvout_par") == 164);
static_assert(kernels(csr, 0, "__mvout_seq") == 80);
static_assert(kernels(csr, 0, "__mmout_par") == 224);
static_assert(kernels(csr, 0, "__mmout_seq") == 20);
static_assert(kernels(csr, 0, "__svout_seq") == 108);
static_assert(kernels(csr, 0, "__smout_par") == 108);
static_assert(kernels(csr, 0, "__gemvout_par") == 1);
static_assert(kernels(csr, 's', "") == 108 && kernels(csr, 'd', "") == 109);
static_assert(kernels(csr, 'c', "") == kernels(csr, 'z', ""));
static_assert(of_base(csr, '0') == 352 && of_base(csr, '1') == 353);

static_assert(kernels(coo, 0, "") == 472);
static_assert(kernels(coo, 0, "__mvout_par") == 148);
static_assert(kernels(coo, 0, "__mvout_seq") == 20);
static_assert(kernels(coo, 0, "__mmout_par") == 168);
static_assert(kernels(coo, 0, "__svout_seq") == 60);
static_assert(kernels(coo, 0, "__smout_par") == 76);
static_assert(kernels(coo, 's', "") == kernels(coo, 'd', ""));
static_assert(kernels(coo, 'c', "") == kernels(coo, 'z', ""));
static_assert(of_base(coo, '0') == 236 && of_base(coo, '1') == 236);

// 316 kernels, all of base 1, and the four scans.
static_assert(kernels(dia, 0, "__mvout_par") == 108);
static_assert(kernels(dia, 0, "__mmout_par") == 116);
static_assert(kernels(dia, 0, "__svout_seq") == 46);
static_assert(kernels(dia, 0, "__smout_par") == 40);
static_assert(kernels(dia, 0, "__smout_seq") == 6);
static_assert(of_base(dia, '1') == 316 && sizeof dia / sizeof *dia == 316 + 4);
static_assert(kernels(dia, 's', "") == kernels(dia, 'd', ""));
static_assert(kernels(dia, 'c', "") == kernels(dia, 'z', ""));

static_assert(kernels(bsr, 0, "") == 20);
static_assert(kernels(bsr, 0, "__mvout_par") == 16);
static_assert(kernels(bsr, 0, "__gemvout_par") == 4);
static_assert(kernels(bsr, 's', "") == 5 && kernels(bsr, 'z', "") == 5);
static_assert(of_base(bsr, '0') == 8 && of_base(bsr, '1') == 12);
static_assert(kernels(block_utilities, 0, "") == 64);
static_assert(kernels(block_utilities, 0, "gauss") == 16);
static_assert(kernels(block_utilities, 0, "invdiag") == 8);

static_assert(kernels(utilities, 0, "") == 38);
static_assert(kernels(utilities, 's', "") == 9 && kernels(utilities, 'd', "") == 10);
static_assert(kernels(utilities, 'c', "") == 9 && kernels(utilities, 'z', "") == 9);
static_assert(kernels(utilities, 0, "sortrow") == 4 && kernels(utilities, 0, "_tr") == 8);
static_assert(kernels(conversions, 0, "") == 6);

}  // namespace
}  // namespace jex::spblas
