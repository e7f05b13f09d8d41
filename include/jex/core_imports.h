/**
 * @file core_imports.h
 * @brief What the kernel module asks of a core: it imports these entries and no others.
 *
 * A core of your own exports them under these names from a library called libjex_core.so.
 */
#ifndef JEX_CORE_IMPORTS_H
#define JEX_CORE_IMPORTS_H

#include <jex/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @brief Takes the library's one global lock, waiting for it if need be. Any thread may call it.
 *
 * The module never takes it twice on one path, so it need not be recursive.
 */
JEX_API void jex_serv_lock(void);

/** @brief Releases the lock that the calling thread holds. */
JEX_API void jex_serv_unlock(void);

#ifdef __cplusplus
}
#endif

#endif
