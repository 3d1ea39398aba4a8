// The whole library in one include.
#ifndef MIROXGCL_GCL_H
#define MIROXGCL_GCL_H

#include "miroxgcl/drl_list_base.h"
#include "miroxgcl/gcl_assert.h"
#include "miroxgcl/gcl_body.h"
#include "miroxgcl/gcl_ctrace.h"
#include "miroxgcl/gcl_datetime.h"
#include "miroxgcl/gcl_debug.h"
#include "miroxgcl/gcl_err_msg_stack.h"
#include "miroxgcl/gcl_handle.h"
#include "miroxgcl/gcl_handle_base.h"
#include "miroxgcl/gcl_imsg_collector.h"
#include "miroxgcl/gcl_imsg_redirect.h"
#include "miroxgcl/gcl_indent.h"
#include "miroxgcl/gcl_msg_tables.h"
#include "miroxgcl/gcl_os_group.h"
#include "miroxgcl/gcl_os_user.h"
#include "miroxgcl/gcl_pathname.h"
#include "miroxgcl/gcl_status.h"
#include "miroxgcl/gcl_status_base.h"
#include "miroxgcl/gcl_string.h"
#include "miroxgcl/gcl_string_list.h"
#include "miroxgcl/gcl_time_period.h"
#include "miroxgcl/lx_collection.h"
#include "miroxgcl/lx_dynamic.h"
#include "miroxgcl/lx_stack.h"
#include "miroxgcl/lx_unbounded.h"
#include "miroxgcl/lx_unmanaged.h"

#endif
