/// @file
/// The collections of GCL_Status, compiled in the library. Copying a status may throw; see
/// LX_TDynamic.
/// @ingroup statuses
#ifndef MIROXGCL_GCL_STATUS_LIST_H
#define MIROXGCL_GCL_STATUS_LIST_H

#include "miroxgcl/gcl_status.h"
#include "miroxgcl/lx_dynamic.h"

extern template class LX_TCollection<GCL_Status>;
extern template class LX_TCollectionActiveIterator<GCL_Status>;
extern template class LX_TDynamic<GCL_Status, LX_CUnmanaged>;
extern template class LX_TDynamicCollection<GCL_Status, LX_CUnmanaged>;

#endif
