/// @file
/// GCL_AdminHandle: holds an administrative handle for a scope.
#ifndef MIROXGCL_GCL_ADMIN_HANDLE_H
#define MIROXGCL_GCL_ADMIN_HANDLE_H

#include "miroxgcl/gcl_status.h"
#include "miroxgcl/gcl_string.h"
#include "miroxplat/adm.h"

/// One acquisition of a name, given back at the end of the scope. Not copyable.
///
/// For one thread at a time; different objects may be used in different threads.
/// @ingroup resources
class MIROXGCL_API GCL_AdminHandle {
 public:
  /// Acquires a handle on `name`. The status gets the service's own code, 0 when it succeeded, and
  /// what the service printed.
  GCL_AdminHandle(GCL_Status& status, GCL_String const& name);
  GCL_AdminHandle(GCL_AdminHandle const&) = delete;
  GCL_AdminHandle& operator=(GCL_AdminHandle const&) = delete;
  /// Frees the handle, if there is one.
  ~GCL_AdminHandle();

 private:
  // Frees the handle at its end, and so when the constructor above does not come to its own.
  struct MIROXGCL_LOCAL Owner {
    adm_handle_t handle = 0;
    ~Owner();
  };

  Owner m_handle;  // 0: none is held
};

#endif
