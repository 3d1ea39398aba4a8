#include "support/fake_services.h"

#include "support/replaced.h"

namespace {

fake_services* s_current = nullptr;

// Arguments as they are recorded; empty for a place that a result goes to.
std::string recorded(char const* text) { return "'" + std::string(text) + "', "; }
std::string recorded(int number) { return std::to_string(number) + ", "; }
std::string recorded(credutl_sid_s const* sid) {
  return std::string(reinterpret_cast<char const*>(sid->bytes), sizeof sid->bytes) + ", ";
}
std::string recorded(credutl_sid_s*) { return {}; }
std::string recorded(char*) { return {}; }

template <class Result, class... Arguments>
Result call(std::function<Result(Arguments...)> fake_services::*hook, std::string const& name,
            Arguments... arguments) {
  if (s_current != nullptr) {
    std::string const list = (std::string() + ... + recorded(arguments));
    s_current->calls.push_back(name + "(" + list.substr(0, list.rfind(',')) + ")");
    if (s_current->*hook) return (s_current->*hook)(arguments...);
  }
  Result (*const service)(Arguments...) = nullptr;  // for its type
  return replaced(service, ("sysutl_" + name).c_str())(arguments...);
}

}  // namespace

fake_services::fake_services() { s_current = this; }
fake_services::~fake_services() { s_current = nullptr; }

char const* sysutl_myloginname() { return call(&fake_services::myloginname, "myloginname"); }

char const* sysutl_mygroupname() { return call(&fake_services::mygroupname, "mygroupname"); }

char const* sysutl_usid_to_user(credutl_sid_s const* sid, int a, int b) {
  return call(&fake_services::usid_to_user, "usid_to_user", sid, a, b);
}

char const* sysutl_gsid_to_group(credutl_sid_s const* sid, int a, int b) {
  return call(&fake_services::gsid_to_group, "gsid_to_group", sid, a, b);
}

int sysutl_user_to_usid(char const* user, int a, credutl_sid_s* sid) {
  return call(&fake_services::user_to_usid, "user_to_usid", user, a, sid);
}

int sysutl_user_to_gsid(char const* user, int a, credutl_sid_s* sid) {
  return call(&fake_services::user_to_gsid, "user_to_gsid", user, a, sid);
}

int sysutl_group_to_gsid(char const* group, int a, credutl_sid_s* sid) {
  return call(&fake_services::group_to_gsid, "group_to_gsid", group, a, sid);
}

char const* sysutl_user_to_fullname(char const* user) {
  return call(&fake_services::user_to_fullname, "user_to_fullname", user);
}

int sysutl_get_homedir(char const* user, int size, char* buffer) {
  return call(&fake_services::get_homedir, "get_homedir", user, size, buffer);
}
