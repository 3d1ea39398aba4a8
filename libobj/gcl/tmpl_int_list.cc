// The collections of int and of void*.
#include "miroxgcl/gcl_integer_list.h"

template class LX_TCollection<int>;
template class LX_TCollectionActiveIterator<int>;
template class LX_TDynamic<int, LX_CUnmanaged>;
template class LX_TDynamicCollection<int, LX_CUnmanaged>;

template class LX_TCollection<void*>;
template class LX_TCollectionActiveIterator<void*>;
template class LX_TDynamic<void*, LX_CUnmanaged>;
template class LX_TDynamicCollection<void*, LX_CUnmanaged>;
