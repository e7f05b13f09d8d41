/* The system's header without its macros of common words. Plain C. */
#pragma once

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#undef near
#undef far
#undef small
