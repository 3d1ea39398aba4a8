// What callers, the environment and the world can do to the library: nothing that crashes it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "miroxgcl/gcl.h"
#include "miroxplat/sysutl.h"
#include "support/child.h"

namespace {

// What statics of the library a client's static object can reach, in its constructor and destructor.
std::string use_statics() {
  GCL_Status status;
  GCL_OSUser(status, GCL_String("no such\nlogin%s")).sid(status);
  GCL_StringList messages(GCL_StringList::nil);
  messages.Append(GCL_Pathname("usr").append_path(GCL_Pathname("lib")));
  GCL_OSUserList const users(GCL_OSUserList::nil);
  GCL_CTRACE("Client", "use", GCL_Debug::general, GCL_Debug::coarse);
  GCL_CTRACE_OUT(messages[0]);
  return status.is_ok() || users.Length() != 0 ? "?" : messages[0].c_str();
}

struct Client {
  std::string const seen = use_statics();
  char const* const login = sysutl_myloginname();  // the service's own text
  ~Client() {
    if (std::getenv("REPORT") == nullptr) return;
    std::puts((seen + " " + use_statics() + " " + (login != nullptr ? login : "")).c_str());
  }
};
Client const client;

TEST(Hostile, StaticObjectsOfAClientUseTheLibrary) {
  GCL_Status status;
  GCL_String const login = GCL_OSUser(status).user_name();
  child_result const child = run_in_child([] {}, {{"REPORT", "1"}, {"MIROX_GCL_DEBUG", "0"}});
  EXPECT_EQ(child.out, std::string("usr/lib usr/lib ") + login.c_str() + "\n");
  EXPECT_EQ(child.exit_code, 0);
  EXPECT_NE(child.err.find("Client::use, usr/lib\n"), std::string::npos) << child.err;
  EXPECT_NE(child.err.rfind("Client::use, usr/lib\n"), child.err.find("Client::use, usr/lib\n"));
}

// All that reads the environment or writes to the standard streams. An assertion that fails goes on.
void use_everything() {
  GCL_ASSERT(true);
  setenv("GCL_ASSERT_CONTINUE", "1", 1);
  GCL_ImsgCollector().add_message("lost", 6);
  GCL_Status status;
  {
    GCL_ImsgRedirect const redirect(status);
    GCL_CTRACE("Hostile", "use", GCL_Debug::general, GCL_Debug::coarse);
    GCL_CTRACE_OUT("line");
    GCL_Indent const block("block");
    std::cerr << block << GCL_DateTime(0).long_date_time();
    imsg_print(6, "%s", -1, "message");
    GCL_ASSERT(false);
  }
  imsg_print(0, "%s", -1, "displayed");
  if (status.get_message_stack() == nullptr) std::exit(2);
}

void close_streams_and_use_everything() {
  for (int const stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) close(stream);
  use_everything();
}

TEST(Hostile, EnvironmentHoldsAnythingAndStreamsAreClosed) {
  std::string bytes = "none/";
  for (int c = 1; c < 256; ++c) bytes += static_cast<char>(c);
  std::string const formats = "none/%s%n%99999d%", enormous(100'000, '9');
  for (auto const& value : {std::string(), bytes, formats, enormous}) {
    child_environment variables;
    for (char const* name :
         {"MIROX_GCL_DEBUG", "MIROX_GCL_DEBUG_FILE", "GCL_INDENT_STRING", "GCL_STATUS_IMSG_COPY",
          "GCL_INDENT_HEADER_FORMAT", "GCL_INDENT_FOOTER_FORMAT", "IMSG_LOST_OUTPUT", "NLSPATH",
          "GCL_ASSERT_DONT_LOG", "LC_ALL", "LANG", "TZ"}) {
      variables.emplace_back(name, value.c_str());
    }
    for (auto* const body : {use_everything, close_streams_and_use_everything}) {
      auto const child = run_in_child(body, variables);
      EXPECT_TRUE(child.exit_code == 0 && child.signal == 0) << value.substr(0, 300);
    }
  }
}

// What a copy of this program, with these permissions, writes to standard error as it starts with
// tracing switched on. Another user owns it.
std::string start_of_copy(std::filesystem::perms permissions) {
  namespace fs = std::filesystem;
  std::string const copy = testing::TempDir() + "hostile_copy", errors = copy + ".err";
  fs::copy_file("/proc/self/exe", copy, fs::copy_options::overwrite_existing);
  constexpr uid_t nobody = 65534;
  EXPECT_EQ(chown(copy.c_str(), nobody, 0), 0);
  fs::permissions(
      copy, permissions | fs::perms::owner_all | fs::perms::others_exec | fs::perms::others_read);
  std::string const command =
      "MIROX_GCL_DEBUG=0 " + copy + " --gtest_list_tests >/dev/null 2>" + errors;
  EXPECT_EQ(std::system(command.c_str()), 0);
  std::string lines;
  std::getline(std::ifstream(errors), lines, '\0');
  fs::remove(copy), fs::remove(errors);
  return lines;
}

// Whether any user may go down to `folder`.
bool is_open_to_all(std::filesystem::path const& folder) {
  auto const permissions = std::filesystem::status(folder).permissions();
  bool const is_open =
      (permissions & std::filesystem::perms::others_exec) != std::filesystem::perms::none;
  return is_open && (folder == folder.root_path() || is_open_to_all(folder.parent_path()));
}

TEST(Hostile, ProgramWithMoreRightsThanItsCallerReadsNoVariable) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the leak checker does not run in such a program";
#endif
#ifdef EMULATOR
  GTEST_SKIP() << "the system does not start another machine's program";
#endif
  if (geteuid() != 0) GTEST_SKIP() << "only root can make a program another user's";
  auto const folder = std::filesystem::canonical("/proc/self/exe").parent_path();
  if (!is_open_to_all(folder)) GTEST_SKIP() << "another user does not reach the library";
  EXPECT_NE(start_of_copy(std::filesystem::perms::none), "");
  EXPECT_EQ(start_of_copy(std::filesystem::perms::set_uid), "");
}

}  // namespace
