// The contexts of the message service's table that are not statuses.
//
// A collector leaves some slots of the table it finds as they are, but the table has one context:
// a status's procedure in such a slot is then called with the collector as its context. Whoever
// installs a context that is no status declares it here, with the context that it replaced.
#ifndef MIROXGCL_IMSG_CONTEXT_H
#define MIROXGCL_IMSG_CONTEXT_H

// Declares `context`. Throws std::bad_alloc.
void imsg_context_declare(void* context, void* replaced);

// Takes the declaration back. Declarations may end in any order.
void imsg_context_end(void* context) noexcept;

// `context` itself when it is not declared, else what stands behind it, through any number of
// declared ones: a status, where there is one.
void* imsg_context_status(void* context) noexcept;

#endif
