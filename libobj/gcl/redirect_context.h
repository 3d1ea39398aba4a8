// The objects that take the message service's output at present: the statuses that grab, and the
// collectors. Each thread has its own, as it has its own redirect table.
//
// Such an object is the context of the table that it installs, and saves the table that it finds,
// which may be that of another. Normally the last to begin is the first to end. When one ends while
// others are open on top of it, whoever saved its table is given what it had saved itself: so no
// table ever leads to an object that is gone.
#ifndef MIROXGCL_REDIRECT_CONTEXT_H
#define MIROXGCL_REDIRECT_CONTEXT_H

#include "miroxplat/imsg.h"

struct redirect_context {
  void* context;                     // the status or the collector
  imsg_redirect_proc* saved_procs;   // the table that it found
  void** saved_arg;                  // and its context
  bool* saved_redirect_was_enabled;  // null for a status
};

// Registers a context on top of the others. Without memory for it, order is up to the program.
void redirect_context_begin(redirect_context const& taker) noexcept;

// Takes a context away. What it saved is reinstalled here, or given to whoever saved its table.
void redirect_context_end(void* context, imsg_redirect_proc const* saved_procs,
                          void* saved_arg) noexcept;

// Gives a collector's saved flag to the next collector on top of it, which restores it instead.
// False where there is none. To be called before redirect_context_end().
bool redirect_context_passes_flag(void* collector, bool redirect_was_enabled) noexcept;

// `context` itself unless it is a collector, else what that saved, through any number of
// collectors: a status, where there is one. A collector leaves some slots of the table it finds as
// they are, so that a status's procedure may be called with the collector as its context.
void* redirect_context_status(void* context) noexcept;

#endif
