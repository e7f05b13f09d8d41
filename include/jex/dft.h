/**
 * @file dft.h
 * @brief The Fourier transform descriptor, shared by the core and the kernel module. Plain C.
 *
 * A transform of a vector x of n complex elements is
 *
 *     y(k) = scale * sum over j of x(j) exp(-+ 2 pi i j k / n),   - forward, + backward.
 *
 * **Life of a descriptor.** jex_dft_create_descriptor_md() makes it with its dimension chain; the
 * core stores the settings in its words; a commit entry turns them into a plan, or, for small
 * lengths, jex_dft_apply_bkdowns_*() finds a ready one; the compute entries run it;
 * jex_dft_free_allocated_buffers() takes back what commit allocated, and the core frees the records
 * (jex_serv_jex_free() of the first one: they are one block, record i behind record i - 1). Where a
 * breakdown is active, its release operation comes before that.
 *
 * **Compute entries.** Words 0 and 1 hold functions `jex_int entry(descriptor, array 1, ...)`,
 * cdecl, with as many arrays as word 4 says:
 *
 * | placement    | interleaved (39) | separate parts (42)        |
 * |--------------|------------------|----------------------------|
 * | in place     | x                | x.re, x.im                 |
 * | not in place | x, y             | x.re, x.im, y.re, y.im     |
 *
 * The result is 0, 7 (committed without kernels, or a case without a driver: a packed spectrum of
 * three dimensions) or 8 (no free slot for one more user thread). Transform t takes its element j
 * from input_offset + t * input_distance + j * input_stride and leaves result k at output_offset +
 * t * output_distance + k * output_stride, counted in elements of an array; in place the input's
 * three words hold for both sides. Not in place, the arrays must not overlap.
 *
 * **Real transforms.** The forward operand and the backward result are n numbers, the other side is
 * the half of the spectrum that determines the rest; r(k) and i(k) are the parts of y(k). With
 * conjugate_even_storage 39 it is an array of n/2 + 1 complex elements; with 40 packed numbers, in
 * the layout of packed_format:
 *
 * | format    | n even                                     | n odd, h = n/2         |
 * |-----------|--------------------------------------------|-----------------------|
 * | Perm (56) | r(0) r(n/2) r(1) i(1) .. r(n/2-1) i(n/2-1) | r(0) r(1) i(1) .. i(h)   |
 * | Pack (55) | r(0) r(1) i(1) .. r(n/2-1) i(n/2-1) r(n/2) | r(0) r(1) i(1) .. i(h)   |
 * | CCS (54)  | r(0) 0 r(1) i(1) .. i(n/2-1) r(n/2) 0      | r(0) 0 r(1) i(1) .. i(h) |
 *
 * Perm and Pack have n numbers, CCS n + 2 or n + 1. The zeros are written forward and not read
 * backward, nor are the imaginary parts of y(0) and y(n/2). A call takes x, or x and y: the storage
 * of complex data (word 16) must be 39. The input words are those of the operand, whichever side it
 * is. Strides, offsets and distances count numbers; with storage 39 those of the spectrum count
 * complex elements. In place with storage 39 offsets, distances and the strides of dimensions 1 and
 * 2 count numbers on both sides, the stride of dimension 0 elements of each side.
 *
 * **Several dimensions.** Dimension 0 is record 0. Complex transforms have up to seven, in every
 * storage, placement and stride. A real one with storage 39 has up to three: dimension 0 has n0/2 +
 * 1 complex elements, the others their length. In place a row must have room for 2 (n0/2 + 1)
 * numbers. Backward it keeps its operand where the arrays are two. Packed formats have two
 * dimensions: every row is packed as above; of the columns those of r(0) and, n0 even, r(n0/2),
 * whose values are real, are packed in the same way, and those of r(k), i(k) hold the complex
 * results k1 = 0 .. n1 - 1. Perm, n0 = n1 = 4, with rc and sc the real parts of y(0, c) and y(2, c),
 * zc = y(1, c):
 *
 *     r0     s0     re z0  im z0
 *     r2     s2     re z1  im z1
 *     r1     s1     re z2  im z2
 *     im r1  im s1  re z3  im z3        im r1 = the imaginary part of y(0, 1)
 *
 * With CCS the columns of r(0) and r(n0/2) are longer than the others by two numbers, or by one,
 * and of the columns of zeros n1 rows are written.
 *
 * **Threads.** Commit decides how many threads one call may use (word 96) and gives each a work
 * area: area t begins at work_buffers + t * max_work_size bytes. The module starts no threads. A
 * core that shares out the transforms of a call gives each thread a copy of the first record with
 * its own number_of_transforms, offsets and work_buffers. A single transform has one thread, unless
 * one of the words 58 to 61 and 66 to 69 is not 0: then commit leaves it without kernels to the
 * core, which commits it again and shares the pieces (jex_dft_d_dft_par()). With user_threads
 * above 1, that many threads may call the entries on the one descriptor, and each call claims an
 * area by itself.
 *
 * **Ordering.** 48 is the natural order. Any other value lets the forward result, and the backward
 * operand, be scrambled: bit-reversed where uses_engine is 0 after commit, which takes a power of
 * two above 8192 (double) or 32768 (single), and natural otherwise. jex_dft_zbitrevn() and its kin
 * exchange the two orders.
 *
 * Arrays may have any alignment that their elements allow; 16-byte boundaries are the fastest.
 */
#ifndef JEX_DFT_H
#define JEX_DFT_H

#include <jex/types.h>

/** @brief Values of configuration words, and parameters of the descriptor interface. */
enum {
  JEX_DFT_COMPLEX = 32,
  JEX_DFT_REAL = 33,
  JEX_DFT_SINGLE = 35,
  JEX_DFT_DOUBLE = 36,
  JEX_DFT_INTERLEAVED = 39, /**< complex elements */
  JEX_DFT_REAL_ELEMENTS = 40,
  JEX_DFT_SEPARATE = 42, /**< arrays of real and of imaginary parts */
  JEX_DFT_IN_PLACE = 43,
  JEX_DFT_NOT_IN_PLACE = 44,
  JEX_DFT_ORDERED = 48,
  JEX_DFT_BACKWARD_SCRAMBLED = 49,
  JEX_DFT_CCS = 54,
  JEX_DFT_PACK = 55,
  JEX_DFT_PERM = 56,
  JEX_DFT_COMMITTED = 30,
  JEX_DFT_UNCOMMITTED = 31
};

/** @brief Statuses of the module's entries. */
enum {
  JEX_DFT_SUCCESS = 0,
  JEX_DFT_NO_MEMORY = 1,
  JEX_DFT_BAD_RANK = 6, /**< a real transform of rank 4 or more */
  JEX_DFT_FAILURE = 7,
  JEX_DFT_NO_SLOT = 8, /**< more threads compute than were announced */
  JEX_DFT_TOO_LONG = 9,
  JEX_DFT_NO_BREAKDOWN = 100,
  JEX_DFT_NOT_IN_TABLE = 101
};

/** @brief Tag of every record: the bytes D, F, T and a zero. */
#define JEX_DFT_RECORD_TAG 0x00544644

/** @brief Words of a record. Those without a name are the core's own. */
enum {
  JEX_DFT_FORWARD_ENTRY = 0,
  JEX_DFT_BACKWARD_ENTRY = 1,
  JEX_DFT_ACTIVE_BREAKDOWN = 2, /**< jex_dft_breakdown*, or 0 */
  JEX_DFT_BREAKDOWN_CACHE = 3,
  JEX_DFT_NIO_ARGS = 4,     /**< arrays of a compute call */
  JEX_DFT_LAYOUT_FLAGS = 5, /**< bits 0 and 2: one transform with unit strides */
  JEX_DFT_TAG = 6,
  JEX_DFT_COMMIT_STATE = 7,
  JEX_DFT_WORD_12 = 12,
  JEX_DFT_FORWARD_DOMAIN = 13,
  JEX_DFT_PRECISION = 14,
  JEX_DFT_NUMBER_OF_TRANSFORMS = 15,
  JEX_DFT_COMPLEX_STORAGE = 16,
  JEX_DFT_REAL_STORAGE = 17,
  JEX_DFT_CONJUGATE_EVEN_STORAGE = 18,
  JEX_DFT_PLACEMENT = 19,
  JEX_DFT_PACKED_FORMAT = 20,
  JEX_DFT_INPUT_STRIDE = 21,
  JEX_DFT_OUTPUT_STRIDE = 22,
  JEX_DFT_WORD_23 = 23,
  JEX_DFT_WORD_24 = 24,
  JEX_DFT_ORDERING = 25,
  JEX_DFT_TRANSPOSE = 26,
  JEX_DFT_RANK = 27,
  JEX_DFT_DIMENSION_INDEX = 28,
  JEX_DFT_LENGTH = 29,
  JEX_DFT_CE_LENGTH = 30,
  JEX_DFT_AUX_BUFFER_A = 31,
  JEX_DFT_AUX_BUFFER_B = 32, /**< table of the large power-of-two kernel */
  JEX_DFT_AUX_BUFFER_D = 33,
  JEX_DFT_AUX_BUFFER_E = 34,
  JEX_DFT_FORWARD_SCALE_S = 36,
  JEX_DFT_FORWARD_SCALE_D = 38, /**< and 39 */
  JEX_DFT_BACKWARD_SCALE_S = 40,
  JEX_DFT_BACKWARD_SCALE_D = 42, /**< and 43 */
  JEX_DFT_LENGTH_ORDER = 44,     /**< floor(log2(length)) */
  JEX_DFT_INPUT_OFFSET = 45,
  JEX_DFT_OUTPUT_OFFSET = 46,
  JEX_DFT_INPUT_DISTANCE = 47, /**< between transforms */
  JEX_DFT_OUTPUT_DISTANCE = 48,
  JEX_DFT_USES_ENGINE = 49,
  JEX_DFT_TOTAL_ELEMENTS = 50,
  JEX_DFT_TOTAL_CE_ELEMENTS = 51,
  JEX_DFT_PARENT = 52,
  JEX_DFT_CHILD = 53,
  JEX_DFT_KERNEL_BWD_S = 54,
  JEX_DFT_KERNEL_FWD_S = 55,
  JEX_DFT_KERNEL_BWD_D = 56,
  JEX_DFT_KERNEL_FWD_D = 57,
  JEX_DFT_KERNEL_AUX = 58,     /**< to 61 */
  JEX_DFT_REAL_KERNELS_S = 62, /**< backward, then forward */
  JEX_DFT_REAL_KERNELS_D = 64,
  JEX_DFT_WORD_66 = 66,        /**< to 69; with 58 to 61 all 0 for a call on one thread */
  JEX_DFT_PACK_KERNELS_S = 76, /**< backward, then forward */
  JEX_DFT_PACK_KERNELS_D = 78,
  JEX_DFT_MAX_LENGTH = 80,
  JEX_DFT_WORD_82 = 82,
  JEX_DFT_ENGINE_PLANS = 83, /**< to 90 */
  JEX_DFT_WORK_SIZE = 91,
  JEX_DFT_MAX_WORK_SIZE = 92,
  JEX_DFT_WORK_BUFFERS = 93,
  JEX_DFT_AUX_BUFFER_C = 94,
  JEX_DFT_USER_THREADS = 95,
  JEX_DFT_THREADS = 96,
  JEX_DFT_WORD_99 = 99,
  JEX_DFT_PER_THREAD_SLOTS = 100,
  JEX_DFT_CLEANUP_PENDING = 101,
  JEX_DFT_CLEANUP_FN = 102,
  JEX_DFT_WORDS = 104
};

/** @brief A descriptor, or the record of one further dimension. */
typedef struct jex_dft_descriptor {
  int32_t word[JEX_DFT_WORDS];
} jex_dft_descriptor;

/**
 * @brief A ready-made case that bypasses commit.
 *
 * score tells whether it applies (non-zero), apply installs its entries, release undoes what apply
 * allocated.
 */
typedef struct jex_dft_breakdown {
  double (*score)(const jex_dft_descriptor* descriptor);
  jex_int (*apply)(jex_dft_descriptor* descriptor);
  jex_int (*release)(jex_dft_descriptor* descriptor);
} jex_dft_breakdown;

/** @brief A compute entry, called with the arrays of JEX_DFT_NIO_ARGS. */
typedef jex_int (*jex_dft_compute_1)(jex_dft_descriptor*, void*);
typedef jex_int (*jex_dft_compute_2)(jex_dft_descriptor*, void*, void*);
typedef jex_int (*jex_dft_compute_4)(jex_dft_descriptor*, void*, void*, void*, void*);

#endif
