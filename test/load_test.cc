// Loading and unloading: static objects of a client, and the library fetched by dlopen().
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "miroxgcl/gcl.h"
#include "support/child.h"

namespace {

// What statics of the library a client's static object can reach, in its constructor and destructor.
std::string use_statics() {
  GCL_Status status;
  GCL_OSUser(status, GCL_String("no such login")).sid(status);
  GCL_StringList messages(GCL_StringList::nil);
  messages.Append(GCL_Pathname("usr").append_path(GCL_Pathname("lib")));
  GCL_OSUserList const users(GCL_OSUserList::nil);
  GCL_CTRACE("Client", "use", GCL_Debug::general, GCL_Debug::coarse);
  GCL_CTRACE_OUT(messages[0]);
  return status.is_ok() || users.Length() != 0 ? "?" : messages[0].c_str();
}

struct Client {
  std::string const seen = use_statics();
  ~Client() {
    if (std::getenv("REPORT") != nullptr) std::puts((seen + " " + use_statics()).c_str());
  }
};
Client const client;

TEST(Load, StaticObjectsOfAClientMayUseTheLibrary) {
  child_result const child = run_in_child([] {}, {{"REPORT", "1"}, {"MIROX_GCL_DEBUG", "0-9"}});
  EXPECT_EQ(child.out, "usr/lib usr/lib\n");
  EXPECT_EQ(child.exit_code, 0);
  EXPECT_NE(child.err.find("Client::use, usr/lib\n"), std::string::npos) << child.err;
  EXPECT_NE(child.err.rfind("Client::use, usr/lib\n"), child.err.find("Client::use, usr/lib\n"));
}

}  // namespace
