#include "support/fake_services.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace {

fake_services* s_current = nullptr;

// Arguments as they are recorded; empty for a place that a result goes to.
std::string recorded(char const* text) {
  return text != nullptr ? "'" + std::string(text) + "'" : "null";
}
std::string recorded(int number) { return std::to_string(number); }
std::string recorded(credutl_sid_s const* sid) {
  return {reinterpret_cast<char const*>(sid->bytes), sizeof sid->bytes};
}
std::string recorded(credutl_sid_s*) { return {}; }
std::string recorded(char*) { return {}; }

template <class... Arguments>
std::string recorded_call(char const* name, Arguments... arguments) {
  std::string list;
  for (std::string const& argument : std::vector<std::string>{recorded(arguments)...}) {
    if (!argument.empty()) list += (list.empty() ? "" : ", ") + argument;
  }
  return std::string(name) + "(" + list + ")";
}

// The service's own function, which the one of the same name in this program hides.
template <class Function>
Function* real(char const* name) {
  void* const function = dlsym(RTLD_NEXT, ("sysutl_" + std::string(name)).c_str());
  if (function == nullptr) {
    std::fprintf(stderr, "There is no service %s behind the fake one.\n", name);
    std::abort();
  }
  return reinterpret_cast<Function*>(function);
}

template <class Result, class... Arguments>
Result call(std::function<Result(Arguments...)> fake_services::*hook, char const* name,
            Arguments... arguments) {
  if (s_current != nullptr) {
    s_current->calls.push_back(recorded_call(name, arguments...));
    if (s_current->*hook) return (s_current->*hook)(arguments...);
  }
  return real<Result(Arguments...)>(name)(arguments...);
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
