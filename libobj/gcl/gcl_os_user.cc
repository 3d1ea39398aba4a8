#include "miroxgcl/gcl_os_user.h"

#include "look_up_status.h"
#include "miroxgcl/gcl_imsg_redirect.h"
#include "miroxplat/sysutl.h"

GCL_OSUser::GCL_OSUser(GCL_Status& status)
    : m_name(text_from_look_up(status, sysutl_myloginname())) {}

GCL_OSUser::GCL_OSUser(GCL_Status& status, GCL_String const& name) : m_name(name) {
  status.set_ok();
}

GCL_OSUser::GCL_OSUser(GCL_Status& status, credutl_sid_s const& sid)
    : m_name(text_from_look_up(status, sysutl_usid_to_user(&sid, 1, 0))) {}

GCL_String GCL_OSUser::full_name() const {
  char const* const name = sysutl_user_to_fullname(m_name.c_str());
  return name != nullptr ? GCL_String(name) : m_name;
}

GCL_String GCL_OSUser::home_dir(GCL_Status& status) const {
  constexpr int size = 1024;
  char buffer[size] = "";
  bool const found = sysutl_get_homedir(m_name.c_str(), size, buffer) != 0;
  buffer[size - 1] = '\0';
  return text_from_look_up(status, found ? buffer : nullptr);
}

credutl_sid_s GCL_OSUser::sid(GCL_Status& status) const {
  GCL_ImsgRedirect const redirect(status);
  credutl_sid_s sid{};
  set_from_look_up(status, sysutl_user_to_usid(m_name.c_str(), 0, &sid));
  return sid;
}

GCL_OSGroup GCL_OSUser::primary_group(GCL_Status& status) const {
  GCL_ImsgRedirect const redirect(status);
  credutl_sid_s sid{};
  int const code = sysutl_user_to_gsid(m_name.c_str(), 0, &sid);
  if (code == 0) return {status, sid};
  set_from_look_up(status, code);
  return {};
}
