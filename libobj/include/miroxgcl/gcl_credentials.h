/// @file
/// GCL_Credentials: the identity under which something runs, a user, a primary group and the
/// secondary groups.
#ifndef MIROXGCL_GCL_CREDENTIALS_H
#define MIROXGCL_GCL_CREDENTIALS_H

#include <memory>

#include "miroxgcl/gcl_os_group_list.h"
#include "miroxgcl/gcl_os_user.h"
#include "miroxgcl/gcl_status.h"
#include "miroxplat/credutl.h"

/// A user, a primary group and the secondary groups.
///
/// Each part is made when it is first set or asked for, so an empty object is three null pointers.
/// Copies are deep. An operation that runs out of memory throws std::bad_alloc and leaves the value
/// as it was.
///
/// As safe as the standard library's values: a part that several threads ask for is made once.
/// @ingroup identity
class MIROXGCL_API GCL_Credentials {
 public:
  /// No parts. Allocates nothing.
  GCL_Credentials() noexcept = default;

  /// Translates every identifier of the record to a name. The list holds the secondary groups in
  /// the reverse of the record's order; a count below 0 counts as 0. When an identifier has no
  /// name, the status is 1001 and all parts are absent. What the look-ups print is displayed.
  GCL_Credentials(GCL_Status& status, credutl_sid_credentials_t const& record);

  GCL_Credentials(GCL_Credentials const& other);
  GCL_Credentials(GCL_Credentials&& other) noexcept = default;
  GCL_Credentials& operator=(GCL_Credentials const& other);
  GCL_Credentials& operator=(GCL_Credentials&& other) noexcept = default;
  ~GCL_Credentials() = default;

  /// Makes all parts absent.
  void clear() noexcept;

  /// The parts; one that is absent is made first: without name, or without groups. A reference
  /// stays valid until this object is cleared, assigned to or destroyed.
  /// @{
  GCL_OSUser const& user() const;
  GCL_OSGroup const& primary_group() const;
  GCL_OSGroupList const& secondary_groups() const;
  /// @}

  /// Replace a part by a copy of the argument.
  /// @{
  void set_user(GCL_OSUser const& user);
  void set_primary_group(GCL_OSGroup const& group);
  void set_secondary_groups(GCL_OSGroupList const& groups);
  /// @}

 private:
  MIROXGCL_LOCAL static GCL_Credentials translate(GCL_Status& status,
                                                  credutl_sid_credentials_t const& record);

  mutable std::unique_ptr<GCL_OSUser> m_user;
  mutable std::unique_ptr<GCL_OSGroup> m_primary_group;
  mutable std::unique_ptr<GCL_OSGroupList> m_secondary_groups;
};

#endif
