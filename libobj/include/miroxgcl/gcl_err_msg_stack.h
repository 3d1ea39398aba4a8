/// @file
/// GCL_ErrMsgStack: the stack of messages that a status holds, the most recent on top.
#ifndef MIROXGCL_GCL_ERR_MSG_STACK_H
#define MIROXGCL_GCL_ERR_MSG_STACK_H

#include "miroxgcl/gcl_string.h"
#include "miroxgcl/lx_stack.h"

extern template class LX_TNode<GCL_String, LX_CUnmanaged>;
extern template class LX_TUnbounded<GCL_String, LX_CUnmanaged>;
extern template class LX_TStack<GCL_String>;
extern template class LX_TUnboundedStack<GCL_String, LX_CUnmanaged>;
extern template class LX_TStackActiveIterator<GCL_String>;

/// A stack of messages: LX_TUnboundedStack's operations (Push, Pop, Top, Depth, ItemAt; range-for
/// walks from the top), under the library's own name.
///
/// As safe as the standard library's values.
/// @ingroup statuses
class MIROXGCL_API GCL_ErrMsgStack : public LX_TUnboundedStack<GCL_String, LX_CUnmanaged> {
 public:
  /// The stack it is made of.
  using Base = LX_TUnboundedStack<GCL_String, LX_CUnmanaged>;

  /// No messages. Allocates nothing.
  GCL_ErrMsgStack();
  GCL_ErrMsgStack(GCL_ErrMsgStack const& other);
  GCL_ErrMsgStack(GCL_ErrMsgStack&& other) noexcept = default;
  ~GCL_ErrMsgStack() override;

  /// Each takes the other's messages in their order.
  /// @{
  GCL_ErrMsgStack& operator=(LX_TStack<GCL_String> const& other) override;
  GCL_ErrMsgStack& operator=(Base const& other) override;
  virtual GCL_ErrMsgStack& operator=(GCL_ErrMsgStack const& other);
  GCL_ErrMsgStack& operator=(GCL_ErrMsgStack&& other) noexcept = default;
  GCL_ErrMsgStack& operator=(std::initializer_list<GCL_String> messages) {
    Base::operator=(messages);
    return *this;
  }
  /// @}
};

#endif
