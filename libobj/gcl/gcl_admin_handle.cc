#include "miroxgcl/gcl_admin_handle.h"

#include "miroxgcl/gcl_imsg_redirect.h"

GCL_AdminHandle::Owner::~Owner() {
  if (handle != 0) adm_free_handle(&handle);
  handle = 0;
}

// A message that cannot be captured throws through the service, perhaps after it filled the handle.
GCL_AdminHandle::GCL_AdminHandle(GCL_Status& status, GCL_String const& name) {
  GCL_ImsgRedirect const redirect(status);
  status.set(adm_get_handle(name.c_str(), &m_handle.handle));
}

GCL_AdminHandle::~GCL_AdminHandle() = default;
