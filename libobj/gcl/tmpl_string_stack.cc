// The linked list and stack of GCL_String.
#include "miroxgcl/gcl_err_msg_stack.h"

template class LX_TNode<GCL_String, LX_CUnmanaged>;
template class LX_TUnbounded<GCL_String, LX_CUnmanaged>;
template class LX_TStack<GCL_String>;
template class LX_TUnboundedStack<GCL_String, LX_CUnmanaged>;
template class LX_TStackActiveIterator<GCL_String>;
