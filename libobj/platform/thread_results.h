// The memory of the texts that services return.
//
// Each thread has its own, made when it first asks for it. The main thread's lives until the
// library is unloaded; when the process ends, that is after all static objects were destroyed.
// Another thread's lives until the thread ends, after its thread-local objects were destroyed. So
// the destructors of both may call the services, and use texts that they got before.
//
// A library that is unloaded while other threads live loses theirs, some hundred bytes each.
//
// Results of fixed size need none of this: a thread_local array lives as long.
#ifndef MIROXPLAT_THREAD_RESULTS_H
#define MIROXPLAT_THREAD_RESULTS_H

#include <string>

// One text for each function: it is valid until the thread calls that function again.
struct thread_results {
  std::string my_login_name;
  std::string my_group_name;
  std::string user;
  std::string group;
  std::string full_name;
};

// The calling thread's. Throws std::bad_alloc.
[[gnu::visibility("hidden")]] thread_results& results_of_this_thread();

#endif
