/**
 * @file core.h
 * @brief The reference core as its users see it: loading of the module, and its table of entries.
 */
#ifndef JEX_CORE_H
#define JEX_CORE_H

#include <jex/exports.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @brief Loads the kernel module that stands beside the core, unless that is done already.
 *
 * Every front does this by itself at its first call; a program calls it to learn early whether the
 * library is whole. The module is loaded at most once in a process; later calls repeat the answer.
 *
 * @return 0, or -1 when the module is missing, incomplete or of another branch; jex_core_error()
 *         then tells what was found.
 */
JEX_API jex_int jex_core_load(void);

/** @brief What went wrong in jex_core_load(), one line without a newline; empty if nothing did. */
JEX_API const char* jex_core_error(void);

/** @brief Path of the loaded module; empty before a successful load. */
JEX_API const char* jex_core_module_path(void);

/**
 * @brief Sets the number of threads that one call of a front may use.
 *
 * The environment variable JEX_NUM_THREADS sets it before the first call; without either it is the
 * number of processors. Results are the same, bit for bit, for every number.
 *
 * @param count Threads, the caller's own among them, at most 256; below 1: as the environment says.
 */
JEX_API void jex_set_num_threads(jex_int count);

/** @brief The number of threads that one call of a front may use. */
JEX_API jex_int jex_get_num_threads(void);

#ifdef __cplusplus
}

namespace jex {

/** @brief The module's entries, each under its export name. */
struct Module {
#define JEX_ENTRY(name) decltype(&::name) name;
#include <jex/export_names.inc>
#undef JEX_ENTRY
};

/**
 * @brief The table of the loaded module, loading it if need be; null when it cannot be loaded.
 *
 * The first failing call prints jex_core_error() to standard error.
 */
JEX_API const Module* module();

}  // namespace jex
#endif

#endif
