// For fakes: the service's own function, whose place the test program's took.
//
//   int stg_delete(...) { return s_fake ? s_fake(...) : replaced(stg_delete, "stg_delete")(...); }
#ifndef TEST_SUPPORT_REPLACED_H
#define TEST_SUPPORT_REPLACED_H

#include <dlfcn.h>

template <class Function>
Function* replaced(Function*, char const* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

#endif
