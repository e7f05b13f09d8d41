// A library that breaks every rule that the guards hold the module to. Nobody loads it.

#define API extern "C" __attribute__((visibility("default")))

// Not in the export list; the rest of the list is missing.
API int jex_extra() { return 1; }

// Two empty entries with two bodies.
API void jex_blas_dgemm_blk_info() {}
API int jex_blas_dgemm_mscale() { return 0; }

// Not one of the core's entries.
extern "C" int jex_serv_unheard_of();
extern "C" int jex_dft_dfti_compute_forward();
API int imports() { return jex_serv_unheard_of() + jex_dft_dfti_compute_forward(); }

// Runs at load; the helper has a name that looks like a constructor's and is none.
namespace {
int no_constructor() { return jex_extra(); }
}  // namespace
int made_at_load = no_constructor();

// A segment that is writable and executable.
asm(".section .wx, \"awx\", @progbits\n"
    "nop\n"
    ".text\n");

// A relocation of code.
asm(".text\n"
    "relocated:\n"
    ".globl relocated\n"
    ".hidden relocated\n"
    "  movl $imports, %eax\n"
    "  ret\n");

// An export that does nothing at all.
asm(".text\n"
    ".globl jex_silent\n"
    ".type jex_silent, @function\n"
    "jex_silent:\n"
    "  ret\n"
    ".size jex_silent, . - jex_silent\n");

// One instruction of each newer set.
asm(".text\n"
    "newer:\n"
    ".globl newer\n"
    "  pshufb %xmm1, %xmm0\n"
    "  pmulld %xmm1, %xmm0\n"
    "  pcmpgtq %xmm1, %xmm0\n"
    "  extrq %xmm1, %xmm0\n"
    "  popcnt %eax, %ecx\n"
    "  lzcnt %eax, %ecx\n"
    "  tzcnt %eax, %ecx\n"
    "  blsr %eax, %ecx\n"
    "  adcx %eax, %ecx\n"
    "  movbe (%eax), %ecx\n"
    "  aesenc %xmm1, %xmm0\n"
    "  rdrand %eax\n"
    "  xgetbv\n"
    "  pfadd %mm1, %mm0\n"
    "  vaddps %ymm1, %ymm0, %ymm2\n"
    "  vfmadd231pd %xmm1, %xmm0, %xmm2\n"
    "  ret\n");
