// Fetches the library given by name, uses it and lets it go, twice: nothing of it may stay.
//   unload_test LIBRARY
#include <dlfcn.h>

#include <cstdio>
#include <string>

namespace {

bool fetch_and_drop(char const* library) {
  void* const handle = dlopen(library, RTLD_NOW);
  if (handle == nullptr) {
    std::puts(dlerror());
    return false;
  }
  char line[200] = "";
  auto* const identify =
      reinterpret_cast<int (*)(char*)>(dlsym(handle, "libmiroxgcl_sprintf_verid"));
  if (identify != nullptr) identify(line);
  dlclose(handle);
  bool const is_gone = dlopen(library, RTLD_NOW | RTLD_NOLOAD) == nullptr;
  std::printf("%s%s\n", line, is_gone ? "" : "It is still loaded.");
  return is_gone && std::string(line).rfind("libmiroxgcl  ", 0) == 0;
}

}  // namespace

int main(int, char** argv) {
  bool const first = fetch_and_drop(argv[1]);
  return first && fetch_and_drop(argv[1]) ? 0 : 1;
}
