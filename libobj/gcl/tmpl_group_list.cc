// The collections of GCL_OSGroup.
#include "miroxgcl/gcl_os_group_list.h"

template class LX_TCollection<GCL_OSGroup>;
template class LX_TCollectionActiveIterator<GCL_OSGroup>;
template class LX_TDynamic<GCL_OSGroup, LX_CUnmanaged>;
template class LX_TDynamicCollection<GCL_OSGroup, LX_CUnmanaged>;
