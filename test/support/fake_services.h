// The system-identity service for tests: while a fake_services lives, every call of the service is
// recorded and, where a hook is set, answered by the hook. All else goes to the real service.
//
//   fake_services fakes;
//   fakes.user_to_usid = [](char const*, int, credutl_sid_s*) { return 2; };
//   ...
//   EXPECT_EQ(fakes.calls, std::vector<std::string>{"user_to_usid('ann', 0)"});
#ifndef TEST_SUPPORT_FAKE_SERVICES_H
#define TEST_SUPPORT_FAKE_SERVICES_H

#include <functional>
#include <string>
#include <vector>

#include "miroxplat/sysutl.h"

struct fake_services {
  fake_services();
  fake_services(fake_services&&) = delete;
  ~fake_services();

  // One a service, named as it is without "sysutl_".
  std::function<char const*()> myloginname;
  std::function<char const*()> mygroupname;
  std::function<char const*(credutl_sid_s const*, int, int)> usid_to_user;
  std::function<char const*(credutl_sid_s const*, int, int)> gsid_to_group;
  std::function<int(char const*, int, credutl_sid_s*)> user_to_usid;
  std::function<int(char const*, int, credutl_sid_s*)> user_to_gsid;
  std::function<int(char const*, int, credutl_sid_s*)> group_to_gsid;
  std::function<char const*(char const*)> user_to_fullname;
  std::function<int(char const*, int, char*)> get_homedir;

  // Each call with the arguments that go in: texts in quotes, numbers, of an identifier its 34
  // bytes as they are; nothing for the place that a result goes to.
  std::vector<std::string> calls;
};

#endif
