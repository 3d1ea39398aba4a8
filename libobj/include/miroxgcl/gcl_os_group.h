/// @file
/// GCL_OSGroup: a group of the operating system, by name.
#ifndef MIROXGCL_GCL_OS_GROUP_H
#define MIROXGCL_GCL_OS_GROUP_H

#include "miroxgcl/gcl_status.h"
#include "miroxgcl/gcl_string.h"
#include "miroxplat/credutl.h"

/// The name of a group.
///
/// Holds the name and looks the rest up when asked. An operation that fails sets the status to
/// 1001, or to 1002 when there is no such group; its result is then without name, or a record of no
/// meaning.
///
/// As safe as the standard library's values.
/// @ingroup identity
class MIROXGCL_API GCL_OSGroup {
 public:
  GCL_OSGroup() noexcept = default;                           ///< no name
  explicit GCL_OSGroup(GCL_Status& status);                   ///< the group the process acts as
  GCL_OSGroup(GCL_Status& status, GCL_String const& name);    ///< taken on trust: always ok
  GCL_OSGroup(GCL_Status& status, credutl_sid_s const& sid);  ///< the group behind an identifier

  /// The name. Looks nothing up.
  GCL_String group_name() const { return m_name; }

  /// The security identifier. What the look-up prints goes to the status.
  credutl_sid_s sid(GCL_Status& status) const;

  /// Compare names.
  /// @{
  bool operator==(GCL_OSGroup const& other) const { return m_name == other.m_name; }
  bool operator!=(GCL_OSGroup const& other) const { return m_name != other.m_name; }
  /// @}

 private:
  GCL_String m_name;
};

#endif
