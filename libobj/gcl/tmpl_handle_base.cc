// The collections of GCL_HandleBase.
#include "miroxgcl/drl_list_base.h"

template class LX_TCollection<GCL_HandleBase>;
template class LX_TCollectionActiveIterator<GCL_HandleBase>;
template class LX_TDynamic<GCL_HandleBase, LX_CUnmanaged>;
template class LX_TDynamicCollection<GCL_HandleBase, LX_CUnmanaged>;
