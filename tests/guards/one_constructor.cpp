// A library without the compiler's start files, whose one word in .init_array is its own.

static volatile int loads;

__attribute__((constructor)) static void at_load() { loads = loads + 1; }
