// The threads of the fronts.
#pragma once

namespace jex {

// Threads that one call may use, the caller's own among them.
int thread_limit();

// Calls part(context, i) for every i below parts, each once, on the caller's thread and on those of
// the pool, and returns when all are done. While another call has the pool, or where no thread can
// be made, the caller does all parts: fronts cut their work so that results do not depend on who
// does it.
void run_parts(int parts, void (*part)(void* context, int i), void* context);

template <class Part>
void in_parallel(int parts, Part part) {
  run_parts(
      parts, [](void* p, int i) { (*static_cast<Part*>(p))(i); }, &part);
}

}  // namespace jex
