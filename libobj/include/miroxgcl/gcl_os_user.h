/// @file
/// GCL_OSUser: a user of the operating system, by login name.
#ifndef MIROXGCL_GCL_OS_USER_H
#define MIROXGCL_GCL_OS_USER_H

#include "miroxgcl/gcl_os_group.h"
#include "miroxgcl/gcl_status.h"
#include "miroxgcl/gcl_string.h"
#include "miroxplat/credutl.h"

/// The name of a user.
///
/// Holds the name and looks the rest up when asked. An operation that fails sets the status to
/// 1001, or to 1002 when there is no such user; its result is then without name or text, or a
/// record of no meaning. What sid() and primary_group() print goes to the status; the others' is
/// displayed.
///
/// As safe as the standard library's values.
/// @ingroup identity
class MIROXGCL_API GCL_OSUser {
 public:
  GCL_OSUser() noexcept = default;                           ///< no name
  explicit GCL_OSUser(GCL_Status& status);                   ///< the user the process acts as
  GCL_OSUser(GCL_Status& status, GCL_String const& name);    ///< taken on trust: always ok
  GCL_OSUser(GCL_Status& status, credutl_sid_s const& sid);  ///< the user behind an identifier

  /// The name. Looks nothing up.
  GCL_String user_name() const { return m_name; }

  /// The full name; the login name when there is none, or no such user. Never fails.
  GCL_String full_name() const;

  /// The home directory. Fails with 1001 only, also when the text is longer than 1023 bytes.
  GCL_String home_dir(GCL_Status& status) const;

  /// The security identifier.
  credutl_sid_s sid(GCL_Status& status) const;

  /// The group that the user database names for the user.
  GCL_OSGroup primary_group(GCL_Status& status) const;

  /// Compare names.
  /// @{
  bool operator==(GCL_OSUser const& other) const { return m_name == other.m_name; }
  bool operator!=(GCL_OSUser const& other) const { return m_name != other.m_name; }
  /// @}

 private:
  GCL_String m_name;
};

#endif
