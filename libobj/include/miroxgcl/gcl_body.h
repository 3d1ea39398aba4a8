/// @file
/// GCL_Body: the abstract base of every shared value, a body that counts the handles pointing at
/// it.
///
///     class Blob : public GCL_Body { ... };      // count
///     GCL_Handle<Blob> a(new Blob);              // 1: the handle took it
///     GCL_Handle<Blob> b(a);                     // 2: copies share
///     b = nullptr;                               // 1
///     }                                          // 0: the last handle's end deletes the Blob
///
/// As safe as the standard library's values: handles on one body may be used in different threads.
/// Counts are plain integers until the process has a second thread, and changed atomically from
/// then on.
#ifndef MIROXGCL_GCL_BODY_H
#define MIROXGCL_GCL_BODY_H

#include <cstdint>
#include <iosfwd>

#include "miroxgcl/gcl_config.h"
#include "miroxgcl/gcl_threads.h"

/// A counted body, to derive from.
///
/// Always allocated singly on the heap, since the last unreference() deletes it; a body that no
/// handle has taken yet is deleted by its creator. Not copyable: handles share it instead.
/// @ingroup bodies
class MIROXGCL_API GCL_Body {
 public:
  /// A body that no handle has taken yet: count 0.
  GCL_Body() noexcept : m_reference_count(0) {}
  GCL_Body(GCL_Body const&) = delete;
  GCL_Body& operator=(GCL_Body const&) = delete;
  virtual ~GCL_Body();

  /// Adds one to the count.
  virtual void reference() { gcl_threads::increment(m_reference_count); }

  /// Takes one from the count; at 0 the body deletes itself. REQUIRES: reference_count() > 0.
  virtual void unreference() {
    if (gcl_threads::decrement(m_reference_count)) delete this;
  }

  /// The number of handles that share the body; 0 before the first takes it.
  virtual unsigned int reference_count() const { return gcl_threads::read(m_reference_count); }

  /// Whether the body represents no value. The definition here answers true.
  virtual bool is_null() const;

  /// Whether both bodies hold the same value; `other` is of the receiver's class, or null. The
  /// definition here answers false.
  virtual bool operator==(GCL_Body const* other) const = 0;

  /// Writes the current indentation, "Reference Count: ", the count and a line feed to `os`.
  virtual std::ostream& insert(std::ostream& os) const;

 protected:
  /// For a body that is never freed: once there are threads, its count is not changed any more.
  void make_immortal() noexcept { gcl_threads::make_immortal(m_reference_count); }

 private:
  std::uint32_t m_reference_count;
};

/// Writes the body with its insert().
MIROXGCL_API std::ostream& operator<<(std::ostream& os, GCL_Body const& body);

#endif
