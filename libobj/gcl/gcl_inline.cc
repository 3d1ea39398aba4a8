// Puts the inline operations of the exported classes into the library too, for callers that find
// them by name: code of another compiler, a debugger, `dlsym`. The build keeps every inline
// function that this unit defines, and the linker drops those that are not exported.
#include <type_traits>

#include "miroxgcl/gcl.h"

namespace {

// The compiler writes a class's own construction, copying, moving and destruction only where they
// are used.
template <class T>
void use_values(T& a, T& b) {
  if constexpr (std::is_default_constructible_v<T>) a = T();
  T copy(a);
  T moved(static_cast<T&&>(b));
  a = copy;
  b = static_cast<T&&>(moved);
}

template <class... T>
struct use_all {
  static void of(T&... a, T&... b) { (use_values(a, b), ...); }
};

template struct use_all<GCL_HandleBase, GCL_Handle<GCL_StringRep>, GCL_String, GCL_Pathname,
                        GCL_Status, GCL_ErrMsgStack, GCL_StringList, GCL_IntegerList,
                        GCL_OSUserList, GCL_OSGroupList, GCL_OSUser, GCL_OSGroup, GCL_Credentials,
                        GCL_DateTime, GCL_TimePeriod, LX_TDynamicCollection<GCL_HandleBase>,
                        LX_TDynamicCollection<GCL_OSGroup>, LX_TDynamicCollection<GCL_OSUser>,
                        LX_TDynamicCollection<GCL_Status>, LX_TDynamicCollection<int>,
                        LX_TDynamicCollection<void*>, LX_TUnboundedStack<GCL_String>>;

}  // namespace
