#include "miroxgcl/gcl_imsg_redirect.h"

bool GCL_ImsgRedirect::m_no_redirect = false;
