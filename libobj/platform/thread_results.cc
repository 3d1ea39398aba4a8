#include "thread_results.h"

#include <pthread.h>
#include <unistd.h>

#include <memory>

namespace {

// A bare pointer, so that it has no destructor, which would run before those of older thread-local
// objects and, in the main thread, before those of static objects.
thread_local thread_results* s_results = nullptr;

// The threads' ends are told by a key: its destructor runs after those of thread-local objects.
pthread_key_t s_key;
bool s_has_key = false;  // without one, what threads leave behind is lost

// The main thread may end long before the process does.
void end_thread(void* results) {
  if (gettid() == getpid()) return;
  s_results = nullptr;
  delete static_cast<thread_results*>(results);
}

[[gnu::constructor]] void load() { s_has_key = pthread_key_create(&s_key, end_thread) == 0; }

// Leaves alone what belongs to other threads: they may still run while the process ends.
[[gnu::destructor]] void unload() {
  if (s_has_key) pthread_key_delete(s_key);
  s_has_key = false;
  delete s_results;
  s_results = nullptr;
}

}  // namespace

thread_results& results_of_this_thread() {
  if (s_results == nullptr) {
    auto results = std::make_unique<thread_results>();
    if (s_has_key) pthread_setspecific(s_key, results.get());
    s_results = results.release();
  }
  return *s_results;
}
