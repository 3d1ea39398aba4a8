/// @file
/// GCL_Handle<T>: a handle on a body class T. It adds the pointer's type and no field.
#ifndef MIROXGCL_GCL_HANDLE_H
#define MIROXGCL_GCL_HANDLE_H

#include "miroxgcl/gcl_handle_base.h"

/// A handle that knows the class of its body.
///
/// Counts through the static class T; comparing is GCL_HandleBase's.
///
/// As safe as the standard library's values.
/// @ingroup bodies
template <class T>
class GCL_Handle : public GCL_HandleBase {
 public:
  /// Without body.
  GCL_Handle() noexcept = default;
  /// Takes a reference to `rep`, which may be null.
  explicit GCL_Handle(T* rep) noexcept {
    if (rep != nullptr) rep->reference();
    m_body = rep;
  }
  GCL_Handle(GCL_Handle const& other) noexcept : GCL_Handle(other.body()) {}
  GCL_Handle(GCL_Handle&& other) noexcept = default;
  ~GCL_Handle() { this->template replace_body<T>(nullptr); }

  GCL_Handle& operator=(GCL_Handle const& other) noexcept { return set_rep(other.body()); }
  GCL_Handle& operator=(GCL_Handle&& other) noexcept {
    this->replace_body(static_cast<T*>(std::exchange(other.m_body, nullptr)));
    return *this;
  }
  /// Takes a reference to `rep`, which may be null, and releases the old body.
  /// @{
  GCL_Handle& operator=(T* rep) noexcept { return set_rep(rep); }
  GCL_Handle& set_rep(T* rep) noexcept {
    this->take_body(rep);
    return *this;
  }
  /// @}

  /// The body, null when there is none. The handle keeps its count of it.
  /// @{
  T* body() const noexcept { return static_cast<T*>(m_body); }
  T* body() noexcept { return static_cast<T*>(m_body); }
  /// @}
};

#endif
