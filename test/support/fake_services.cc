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

// What takes the place of the service `name`.
template <class Result, class... Arguments>
auto service(std::function<Result(Arguments...)> fake_services::*hook, std::string const& name) {
  return [=](Arguments... arguments) -> Result {
    if (s_current != nullptr) {
      std::string const list = (std::string() + ... + recorded(arguments));
      s_current->calls.push_back(name + "(" + list.substr(0, list.rfind(',')) + ")");
      if (s_current->*hook) return (s_current->*hook)(arguments...);
    }
    Result (*const real)(Arguments...) = nullptr;  // for its type
    return replaced(real, ("sysutl_" + name).c_str())(arguments...);
  };
}

}  // namespace

fake_services::fake_services() { s_current = this; }
fake_services::~fake_services() { s_current = nullptr; }

#define FAKE(result, name, parameters, arguments) \
  result sysutl_##name parameters { return service(&fake_services::name, #name) arguments; }

FAKE(char const*, myloginname, (), ())
FAKE(char const*, mygroupname, (), ())
FAKE(char const*, usid_to_user, (credutl_sid_s const* sid, int a, int b), (sid, a, b))
FAKE(char const*, gsid_to_group, (credutl_sid_s const* sid, int a, int b), (sid, a, b))
FAKE(int, user_to_usid, (char const* user, int a, credutl_sid_s* sid), (user, a, sid))
FAKE(int, user_to_gsid, (char const* user, int a, credutl_sid_s* sid), (user, a, sid))
FAKE(int, group_to_gsid, (char const* group, int a, credutl_sid_s* sid), (group, a, sid))
FAKE(char const*, user_to_fullname, (char const* user), (user))
FAKE(int, get_homedir, (char const* user, int size, char* buffer), (user, size, buffer))
