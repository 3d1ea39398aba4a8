// The lists of GCL_String.
#include "miroxgcl/gcl_string_list.h"

template class DRL_ListBase<GCL_String>;
template class DRL_ListBaseActiveIterator<GCL_String>;
