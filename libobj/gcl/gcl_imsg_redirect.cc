#include "miroxgcl/gcl_imsg_redirect.h"

bool GCL_ImsgRedirect::m_no_redirect = false;

GCL_ImsgRedirect::GCL_ImsgRedirect(GCL_Status& status) : m_status(status) {
  if (!m_no_redirect) m_status.grab_imsg_out();
}

GCL_ImsgRedirect::~GCL_ImsgRedirect() {
  if (!m_no_redirect) m_status.release_imsg_out();
}
