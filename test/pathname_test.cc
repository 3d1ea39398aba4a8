// Pathnames: joining, and what is asked of the file utility, made up here. services_test.cc asks
// the real one, fuzz/syntax_fuzz.cc joins any pathnames.
#include <gtest/gtest.h>

#include "miroxgcl/gcl.h"
#include "miroxplat/fileutl.h"
#include "support/failing_allocator.h"

namespace {

// Fills the buffer to its last byte and leaves the end to the library. "!" fails.
int fill(char const* path, char* buffer, int size, char c) {
  EXPECT_TRUE(size == 1024 && *buffer == '\0');
  std::fill_n(buffer, size, c);
  return *path == '!' ? -1 : 0;
}

}  // namespace

int fileutl_abspn(char const* path, char* a, int m) { return fill(path, a, m, 'a'); }
int fileutl_strip_leaf(char const* path, int m, char* a, int n, char* b) {
  return fill(path, a, m, 'd') | fill(path, b, n, 'l');
}
int fileutl_path_locate(char const* path, char* a, int m, char* b, int n, char* c, int o) {
  return fill(path, a, m, '1') | fill(path, b, n, '2') | fill(path, c, o, '3');
}

namespace {

TEST(Pathname, JoinsWithOneSeparatorAtTheSeam) {
  GCL_Pathname path("/\xC3\xA9");
  GCL_String const before(path);
  EXPECT_EQ(&path.append_path(GCL_Pathname("b")), &path);
  EXPECT_TRUE(path == "/\xC3\xA9/b" && before == "/\xC3\xA9");
  EXPECT_EQ(path.append_path(path), "/\xC3\xA9/b/\xC3\xA9/b");
  EXPECT_EQ(GCL_Pathname("a/").append_path(GCL_String("/b\0c", 4)), GCL_String("a/b\0c", 5));
  EXPECT_TRUE(path.is_absolute() && GCL_Pathname("x/").is_relative());
  EXPECT_TRUE(GCL_Pathname().is_relative() && *GCL_Pathname::separator() == '/');
}

TEST(Pathname, KeepsItsValueWhenAnAllocationFails) {
  GCL_Pathname const shared("abcdef"), tail(GCL_String('t', 100));
  auto const append = [&](GCL_Pathname& path) { path.append_path(tail); };
  auto const check = [](GCL_Pathname const& path, bool failed) {
    EXPECT_EQ(path.length(), failed ? 6u : 107u);
  };
  EXPECT_GT(fail_each_allocation([&] { return shared; }, append, check), 1);
}

TEST(Pathname, PassesWhatTheFileUtilitySays) {
  for (bool const fails : {false, true}) {
    GCL_Pathname const path(fails ? "!" : "?");
    GCL_String source("old");
    GCL_Pathname mount("old"), below("old");
    path.components(source, mount, below);
    auto const all = [=](char c) { return fails ? GCL_String() : GCL_String(c, 1023); };
    EXPECT_EQ(path.absolute(), all('a'));
    EXPECT_TRUE(path.dirname() == all('d') && path.basename() == all('l'));
    EXPECT_TRUE(source == all('1') && mount == all('2') && below == all('3'));
  }
}

}  // namespace
