#include "support/child.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

namespace {

constexpr char child_option[] = "--run-in-child";
constexpr unsigned int longest_run = 60;  // seconds

// A file, unlike a pipe, takes any amount of output before anyone reads it.
using output_file = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

std::string text_of(std::FILE* file) {
  std::string text;
  std::rewind(file);
  for (int c = std::getc(file); c != EOF; c = std::getc(file)) text += static_cast<char>(c);
  return text;
}

// The program lies elsewhere in each process, but its functions lie at the same distances.
std::uintptr_t origin() { return reinterpret_cast<std::uintptr_t>(&run_in_child); }

[[noreturn]] void start_anew(void (*body)(), child_environment const& variables, std::FILE* out,
                             std::FILE* err) {
  for (auto const& [name, value] : variables) {
    value != nullptr ? setenv(name, value, 1) : unsetenv(name);
  }
  rlimit const no_core_file = {};
  setrlimit(RLIMIT_CORE, &no_core_file);
  alarm(longest_run);
  dup2(fileno(out), STDOUT_FILENO);
  dup2(fileno(err), STDERR_FILENO);
  std::string const distance = std::to_string(reinterpret_cast<std::uintptr_t>(body) - origin());
  std::string const program = std::filesystem::read_symlink("/proc/self/exe");
  execl(program.c_str(), program_invocation_name, child_option, distance.c_str(), nullptr);
  _exit(127);
}

}  // namespace

child_result run_in_child(void (*body)(), child_environment const& variables) {
  output_file const out(std::tmpfile(), std::fclose), err(std::tmpfile(), std::fclose);
  pid_t const child = out != nullptr && err != nullptr ? fork() : -1;
  if (child == 0) start_anew(body, variables, out.get(), err.get());

  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) {
    throw std::system_error(errno, std::generic_category(), "child");
  }
  return {text_of(out.get()), text_of(err.get()), WIFEXITED(status) ? WEXITSTATUS(status) : -1,
          WIFSIGNALED(status) ? WTERMSIG(status) : 0};
}

// Takes the place of the testing framework's own.
int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], child_option) == 0) {
    auto const address = origin() + static_cast<std::uintptr_t>(std::strtoul(argv[2], nullptr, 10));
    reinterpret_cast<void (*)()>(address)();
    return 0;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
