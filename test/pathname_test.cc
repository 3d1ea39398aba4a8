// Pathnames: joining, what is asked of the file utility, and its answers on this machine.
#include "miroxgcl/gcl_pathname.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <new>
#include <string>

#include "miroxplat/fileutl.h"
#include "support/failing_allocator.h"
#include "support/replaced.h"

namespace {

std::function<int(char const*, char*, int)> s_abspn;
std::function<int(char const*, int, char*, int, char*)> s_strip_leaf;
std::function<int(char const*, char*, int, char*, int, char*, int)> s_path_locate;

std::string text(GCL_String const& s) { return {s.c_str(), s.length()}; }

std::string output_of(std::string const& command) {
  std::string result;
  std::FILE* const pipe = popen(command.c_str(), "r");
  for (int c; (c = std::fgetc(pipe)) != EOF;) result += static_cast<char>(c);
  pclose(pipe);
  if (!result.empty() && result.back() == '\n') result.pop_back();
  return result;
}

}  // namespace

extern "C" {

int fileutl_abspn(char const* path, char* out, int size) {
  return s_abspn ? s_abspn(path, out, size)
                 : replaced(fileutl_abspn, "fileutl_abspn")(path, out, size);
}

int fileutl_strip_leaf(char const* path, int dir_size, char* dir, int leaf_size, char* leaf) {
  return (s_strip_leaf ? s_strip_leaf : replaced(fileutl_strip_leaf, "fileutl_strip_leaf"))(
      path, dir_size, dir, leaf_size, leaf);
}

int fileutl_path_locate(char const* path, char* first, int first_size, char* second,
                        int second_size, char* third, int third_size) {
  return (s_path_locate ? s_path_locate : replaced(fileutl_path_locate, "fileutl_path_locate"))(
      path, first, first_size, second, second_size, third, third_size);
}
}

namespace {

class Pathname : public testing::Test {
 protected:
  ~Pathname() override {
    s_abspn = nullptr;
    s_strip_leaf = nullptr;
    s_path_locate = nullptr;
  }
};

TEST_F(Pathname, JoinsWithOneSeparatorAtTheSeam) {
  char const* const table[][3] = {{"a", "b", "a/b"},    {"a/", "/b", "a/b"},
                                  {"a", "/b", "a/b"},   {"a//", "b", "a//b"},
                                  {"a", "//b", "a//b"}, {"", "/b", "b"},
                                  {"", "b", "b"},       {"a", "", "a/"},
                                  {"/", "/", "/"},      {"a\xC3\xA9", "b", "a\xC3\xA9/b"}};
  for (auto const& [left, right, joined] : table) {
    GCL_Pathname path = GCL_String(left);
    GCL_String const before(path);
    EXPECT_EQ(&path.append_path(GCL_String(right)), &path);
    EXPECT_EQ(text(path), joined);
    EXPECT_EQ(text(before), left);
  }
  GCL_Pathname self = GCL_String("/a");
  EXPECT_EQ(text(self.append_path(self)), "/a/a");
  GCL_Pathname zero = GCL_String("a");
  zero.append_path(GCL_String("/b\0c", 4));
  EXPECT_EQ(text(zero), std::string("a/b\0c", 5));
}

TEST_F(Pathname, IsAbsoluteOrRelative) {
  EXPECT_TRUE(GCL_Pathname(GCL_String("/")).is_absolute());
  EXPECT_TRUE(GCL_Pathname(GCL_String("x/")).is_relative());
  EXPECT_TRUE(GCL_Pathname().is_relative() && GCL_Pathname(GCL_String("")).is_relative());
  EXPECT_STREQ(GCL_Pathname::separator(), "/");
}

TEST_F(Pathname, KeepsItsValueWhenAnAllocationFails) {
  GCL_Pathname const long_tail = GCL_String('t', 100);
  std::size_t const held = failing_allocator::live_blocks();
  for (bool shared : {false, true}) {
    GCL_Pathname const original = GCL_String("abcdef");
    int const failures =
        fail_each_allocation([&] { return shared ? original : GCL_Pathname(GCL_String("abcdef")); },
                             [&](GCL_Pathname& path) { path.append_path(long_tail); },
                             [&](GCL_Pathname const& path, bool failed) {
                               EXPECT_EQ(path.length(), failed ? 6u : 107u);
                             });
    EXPECT_GE(failures, 2);
  }
  EXPECT_EQ(failing_allocator::live_blocks(), held);
}

// A fake fills each buffer to its last byte and leaves the end to us.
TEST_F(Pathname, PassesBuffersInEachServicesOrder) {
  auto const fill = [](char* buffer, int size, char c) {
    EXPECT_EQ(size, 1024);
    EXPECT_STREQ(buffer, "");
    for (int i = 0; i < size; ++i) buffer[i] = c;
    return 0;
  };
  s_abspn = [&](char const* path, char* out, int size) {
    EXPECT_STREQ(path, "p");
    return fill(out, size, 'a');
  };
  s_strip_leaf = [&](char const*, int dir_size, char* dir, int leaf_size, char* leaf) {
    return fill(dir, dir_size, 'd') + fill(leaf, leaf_size, 'l');
  };
  s_path_locate = [&](char const*, char* a, int as, char* b, int bs, char* c, int cs) {
    return fill(a, as, '1') + fill(b, bs, '2') + fill(c, cs, '3');
  };
  GCL_Pathname const path = GCL_String("p");
  EXPECT_EQ(text(path.absolute()), std::string(1023, 'a'));
  EXPECT_EQ(text(path.dirname()), std::string(1023, 'd'));
  EXPECT_EQ(text(path.basename()), std::string(1023, 'l'));
  GCL_String first("old");
  GCL_Pathname second = GCL_String("old");
  GCL_Pathname third = GCL_String("old");
  path.components(first, second, third);
  EXPECT_EQ(text(first) + text(second) + text(third),
            std::string(1023, '1') + std::string(1023, '2') + std::string(1023, '3'));
}

TEST_F(Pathname, FailuresGiveTheEmptyPathname) {
  s_abspn = [](char const*, char* out, int) { return out[0] = 'x', 1; };
  s_strip_leaf = [](char const*, int, char* dir, int, char* leaf) { return *dir = *leaf = 'x', 1; };
  s_path_locate = [](char const*, char* a, int, char*, int, char*, int) { return *a = 'x', -1; };
  GCL_Pathname const path = GCL_String("p");
  EXPECT_EQ(path.absolute().length() + path.dirname().length() + path.basename().length(), 0u);
  GCL_String first("old");
  GCL_Pathname second = GCL_String("old");
  GCL_Pathname third = GCL_String("old");
  path.components(first, second, third);
  EXPECT_EQ(first.length() + second.length() + third.length(), 0u);
}

TEST_F(Pathname, AgreesWithTheSystem) {
  for (char const* name : {"/usr/bin", "/usr/", "usr", "/", "a/b//", ".", "..", "a b/c"}) {
    GCL_Pathname const path = GCL_String(name);
    std::string const quoted = std::string(" '") + name + "'";
    EXPECT_EQ(text(path.dirname()), output_of("dirname" + quoted));
    EXPECT_EQ(text(path.basename()), output_of("basename" + quoted));
  }
  EXPECT_EQ(text(GCL_Pathname(GCL_String("./x/../y//z/.")).absolute()), output_of("pwd") + "/y/z");
  GCL_String source;
  GCL_Pathname mount;
  GCL_Pathname below;
  GCL_Pathname(GCL_String("/proc/self/status")).components(source, mount, below);
  EXPECT_EQ(text(source), output_of("df --output=source /proc/self/status | tail -n 1"));
  EXPECT_EQ(text(mount), output_of("df --output=target /proc/self/status | tail -n 1"));
}

}  // namespace
