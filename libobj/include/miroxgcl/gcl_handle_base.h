/// @file
/// GCL_HandleBase: the untyped handle, one pointer that shares a body. Copying costs one count.
#ifndef MIROXGCL_GCL_HANDLE_BASE_H
#define MIROXGCL_GCL_HANDLE_BASE_H

#include <iosfwd>
#include <utility>

#include "miroxgcl/gcl_body.h"
#include "miroxgcl/lx_trivially_relocatable.h"

/// The part of a handle that does not depend on the class of its body.
///
/// Invariant: a handle that holds a body owns exactly one of its counts. A handle without body is
/// valid everywhere. No operation throws, unless a body's own comparison or destructor does.
///
/// As safe as the standard library's values.
/// @ingroup bodies
class MIROXGCL_API GCL_HandleBase {
 public:
  /// Without body.
  GCL_HandleBase() noexcept : m_body(nullptr) {}
  /// Shares the body: one count.
  GCL_HandleBase(GCL_HandleBase const& other) noexcept : m_body(other.m_body) {
    if (m_body != nullptr) m_body->reference();
  }
  /// Takes the body; `other` is left without one.
  GCL_HandleBase(GCL_HandleBase&& other) noexcept : m_body(std::exchange(other.m_body, nullptr)) {}
  ~GCL_HandleBase() {
    if (m_body != nullptr) m_body->unreference();
  }

  /// Takes a reference to `body`, which may be null, and releases the old body. Assigning a handle
  /// its own body keeps the body alive.
  /// @{
  GCL_HandleBase& operator=(GCL_Body* body) noexcept {
    take_body(body);
    return *this;
  }
  GCL_HandleBase& operator=(GCL_HandleBase const& other) noexcept { return *this = other.m_body; }
  GCL_HandleBase& operator=(GCL_HandleBase&& other) noexcept {
    replace_body(std::exchange(other.m_body, nullptr));
    return *this;
  }
  /// @}

  /// Whether both hold the same body, or bodies of the same value. When one has no body, the body
  /// that is there decides, asked with null: an empty string's body equals none.
  /// @{
  bool operator==(GCL_HandleBase const& other) const {
    if (m_body == other.m_body) return true;
    return m_body != nullptr ? *m_body == other.m_body : *other.m_body == m_body;
  }
  bool operator!=(GCL_HandleBase const& other) const { return !(*this == other); }
  /// @}

 protected:
  /// The one place that replaces a body. Stores `body`, whose count the handle takes over, before
  /// the old one is released, so that a destructor that comes back to this handle finds it whole. B
  /// is the static class of both bodies: where it is final, counting is no virtual call. const
  /// because an operation that keeps the value may replace the body.
  template <class B>
  void replace_body(B* body) const noexcept {
    B* const old = static_cast<B*>(std::exchange(m_body, body));
    if (old != nullptr) old->unreference();
  }

  /// Replaces the body by `body`, which may be null, and adds a count to it first.
  template <class B>
  void take_body(B* body) const noexcept {
    if (body != nullptr) body->reference();
    replace_body(body);
  }

  mutable GCL_Body* m_body;  ///< null: no body

  friend MIROXGCL_API std::ostream& operator<<(std::ostream& os, GCL_HandleBase const& handle);
};

/// Writes the handle's body; writes nothing when there is none.
MIROXGCL_API std::ostream& operator<<(std::ostream& os, GCL_HandleBase const& handle);

static_assert(sizeof(GCL_HandleBase) == sizeof(void*), "a handle is one pointer");

/// Arrays move handles as the pointers they are.
/// @ingroup collections
template <>
struct LX_TIsTriviallyRelocatable<GCL_HandleBase> : std::true_type {};

#endif
