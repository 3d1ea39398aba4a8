#include "miroxgcl/gcl_err_msg_stack.h"

#include "miroxgcl/gcl_debug.h"  // holds an initialiser: statuses are what traces are about

GCL_ErrMsgStack::GCL_ErrMsgStack() = default;

GCL_ErrMsgStack::GCL_ErrMsgStack(GCL_ErrMsgStack const& other) = default;

GCL_ErrMsgStack::~GCL_ErrMsgStack() = default;

GCL_ErrMsgStack& GCL_ErrMsgStack::operator=(LX_TStack<GCL_String> const& other) {
  Base::operator=(other);
  return *this;
}

GCL_ErrMsgStack& GCL_ErrMsgStack::operator=(Base const& other) {
  Base::operator=(other);
  return *this;
}

GCL_ErrMsgStack& GCL_ErrMsgStack::operator=(GCL_ErrMsgStack const& other) {
  Base::operator=(other);
  return *this;
}
