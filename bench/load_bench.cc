// Loading and unloading the library beside libraries of its size that initialise nothing. This
// program links with none of them; the build names them.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "compare.h"

namespace {

void load_and_unload(char const* library, long rounds) {
  for (long i = 0; i < rounds; ++i) {
    void* const handle = dlopen(library, RTLD_LAZY);
    if (handle == nullptr) {
      std::fprintf(stderr, "%s\n", dlerror());
      std::exit(EXIT_FAILURE);
    }
    dlclose(handle);
  }
}

void load_ours(long rounds) { load_and_unload(LIBRARY, rounds); }
void load_filler(long rounds) { load_and_unload(FILLER, rounds); }
void load_uninitialised(long rounds) { load_and_unload(UNINITIALISED, rounds); }

}  // namespace

int main(int argc, char** argv) {
  Row("load and unload the library", "a filler of its size <= 1.2", 1)
      .ours(load_ours)
      .peer("a filler of its size", load_filler)
      .peer("itself without static objects", load_uninitialised);
  return run_rows(argc, argv);
}
