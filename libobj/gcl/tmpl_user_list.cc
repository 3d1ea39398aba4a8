// The collections of GCL_OSUser.
#include "miroxgcl/gcl_os_user_list.h"

template class LX_TCollection<GCL_OSUser>;
template class LX_TCollectionActiveIterator<GCL_OSUser>;
template class LX_TDynamic<GCL_OSUser, LX_CUnmanaged>;
template class LX_TDynamicCollection<GCL_OSUser, LX_CUnmanaged>;
