#include "miroxgcl/gcl_os_group.h"

#include "look_up_status.h"
#include "miroxgcl/gcl_imsg_redirect.h"
#include "miroxplat/sysutl.h"

GCL_OSGroup::GCL_OSGroup(GCL_Status& status)
    : m_name(text_from_look_up(status, sysutl_mygroupname())) {}

GCL_OSGroup::GCL_OSGroup(GCL_Status& status, GCL_String const& name) : m_name(name) {
  status.set_ok();
}

GCL_OSGroup::GCL_OSGroup(GCL_Status& status, credutl_sid_s const& sid)
    : m_name(text_from_look_up(status, sysutl_gsid_to_group(&sid, 1, 0))) {}

credutl_sid_s GCL_OSGroup::sid(GCL_Status& status) const {
  GCL_ImsgRedirect const redirect(status);
  credutl_sid_s sid{};
  set_from_look_up(status, sysutl_group_to_gsid(m_name.c_str(), 0, &sid));
  return sid;
}
