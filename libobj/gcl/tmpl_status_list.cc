// The collections of GCL_Status.
#include "miroxgcl/gcl_status_list.h"

template class LX_TCollection<GCL_Status>;
template class LX_TCollectionActiveIterator<GCL_Status>;
template class LX_TDynamic<GCL_Status, LX_CUnmanaged>;
template class LX_TDynamicCollection<GCL_Status, LX_CUnmanaged>;
