#include "miroxgcl/gcl_imsg_redirect.h"

__thread bool GCL_ImsgRedirect::m_no_redirect = false;
