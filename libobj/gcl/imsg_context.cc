#include "imsg_context.h"

#include <utility>

namespace {

struct Declaration {
  void* context;
  void* replaced;
  Declaration* outer;
};

// Constant-initialised: contexts of static objects may be declared before this source's statics.
Declaration* s_innermost = nullptr;

}  // namespace

void imsg_context_declare(void* context, void* replaced) {
  s_innermost = new Declaration{context, replaced, s_innermost};
}

void imsg_context_end(void* context) noexcept {
  for (Declaration** p = &s_innermost; *p != nullptr; p = &(*p)->outer) {
    if ((*p)->context == context) {
      delete std::exchange(*p, (*p)->outer);
      return;
    }
  }
}

// What a context replaced was declared before it, if at all: one pass finds the whole chain.
void* imsg_context_status(void* context) noexcept {
  for (Declaration const* d = s_innermost; d != nullptr; d = d->outer) {
    if (d->context == context) context = d->replaced;
  }
  return context;
}
