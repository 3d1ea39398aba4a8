// Pathnames: joining, what is asked of the file utility, and its answers on this machine.
#include "miroxgcl/gcl_pathname.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "miroxplat/fileutl.h"
#include "support/failing_allocator.h"
#include "support/replaced.h"

namespace {

// Fills the buffer to its last byte and leaves the end to the library. "!" fails.
int fill(char const* path, char* buffer, int size, char c) {
  EXPECT_TRUE(size == 1024 && *buffer == '\0');
  std::fill_n(buffer, size, c);
  return *path == '!' ? -1 : 0;
}

}  // namespace

int fileutl_abspn(char const* path, char* a, int m) {
  if (*path != '!' && *path != '?') return replaced(fileutl_abspn, "fileutl_abspn")(path, a, m);
  return fill(path, a, m, 'a');
}

int fileutl_strip_leaf(char const* path, int m, char* a, int n, char* b) {
  if (*path != '!' && *path != '?')
    return replaced(fileutl_strip_leaf, "fileutl_strip_leaf")(path, m, a, n, b);
  return fill(path, a, m, 'd') | fill(path, b, n, 'l');
}

int fileutl_path_locate(char const* path, char* a, int m, char* b, int n, char* c, int o) {
  if (*path != '!' && *path != '?')
    return replaced(fileutl_path_locate, "fileutl_path_locate")(path, a, m, b, n, c, o);
  return fill(path, a, m, '1') | fill(path, b, n, '2') | fill(path, c, o, '3');
}

namespace {

// All that the file utility says of a pathname, each with a comma behind it.
std::string answers(char const* name) {
  GCL_Pathname const path(name);
  GCL_String source("old");
  GCL_Pathname mount("old"), below("old");
  path.components(source, mount, below);
  std::string all;
  for (GCL_String const& one :
       {GCL_String(path.absolute()), GCL_String(path.dirname()), GCL_String(path.basename()),
        source, GCL_String(mount), GCL_String(below)})
    all += one.c_str() + std::string(",");
  return all;
}

TEST(Pathname, JoinsWithOneSeparatorAtTheSeam) {
  char const* const table[][3] = {
      {"a", "b", "a/b"},    {"a/", "/b", "a/b"},  {"a", "/b", "a/b"},
      {"a//", "b", "a//b"}, {"a", "//b", "a//b"}, {"", "/b", "b"},
      {"a", "", "a/"},      {"/", "/", "/"},      {"\xC3\xA9", "b", "\xC3\xA9/b"}};
  for (auto const& [left, right, joined] : table) {
    GCL_Pathname path(left);
    GCL_String const before(path);
    EXPECT_EQ(&path.append_path(GCL_Pathname(right)), &path);
    EXPECT_TRUE(path == joined && before == left);
  }
  GCL_Pathname path("/a");
  EXPECT_EQ(path.append_path(path).append_path(GCL_String("/b\0c", 4)), GCL_String("/a/a/b\0c", 8));
  EXPECT_TRUE(path.is_absolute() && GCL_Pathname("x/").is_relative());
  EXPECT_TRUE(GCL_Pathname().is_relative() && *GCL_Pathname::separator() == '/');
}

TEST(Pathname, KeepsItsValueWhenAnAllocationFails) {
  GCL_Pathname const shared("abcdef"), tail(GCL_String('t', 100));
  std::size_t const held = failing_allocator::live_blocks();
  for (bool const is_shared : {false, true}) {
    auto const prepare = [&] { return is_shared ? shared : GCL_Pathname("abcdef"); };
    auto const append = [&](GCL_Pathname& path) { path.append_path(tail); };
    auto const check = [](GCL_Pathname const& path, bool failed) {
      EXPECT_EQ(path.length(), failed ? 6u : 107u);
    };
    EXPECT_GT(fail_each_allocation(prepare, append, check), 0);
  }
  EXPECT_EQ(failing_allocator::live_blocks(), held);
}

TEST(Pathname, PassesWhatTheFileUtilitySays) {
  std::string whole;
  for (char const c : {'a', 'd', 'l', '1', '2', '3'}) whole += std::string(1023, c) + ",";
  EXPECT_EQ(answers("?"), whole);
  EXPECT_EQ(answers("!"), ",,,,,,");
  std::string const here = std::filesystem::current_path();
  EXPECT_EQ(answers("x/../y//"), here + "/y,x/..,y,,,,");
  std::string mounts;
  std::getline(std::ifstream("/proc/mounts"), mounts, '\0');
  if (("\n" + mounts).find("\nproc /proc proc ") == std::string::npos) return;  // no usual machine
  EXPECT_EQ(answers("/proc/sys/../version"),
            "/proc/version,/proc/sys/..,version,proc,/proc,version,");
}

}  // namespace
