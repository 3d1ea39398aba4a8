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
#include <memory>
#include <system_error>

namespace {

constexpr char child_option[] = "--run-in-child";
constexpr unsigned int longest_run = 60;  // seconds

[[noreturn]] void fail(char const* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// A file, unlike a pipe, takes any amount of output before anyone reads it.
class output_file {
 public:
  output_file() : m_file(std::tmpfile()) {
    if (m_file == nullptr) fail("tmpfile");
  }
  int descriptor() const { return fileno(m_file.get()); }
  std::string text() const {
    std::string result;
    char piece[4096];
    std::rewind(m_file.get());
    while (std::size_t const n = std::fread(piece, 1, sizeof piece, m_file.get())) {
      result.append(piece, n);
    }
    return result;
  }

 private:
  struct closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, closer> m_file;
};

// The program lies elsewhere in each process, but its functions lie at the same distances.
std::uintptr_t origin() { return reinterpret_cast<std::uintptr_t>(&run_in_child); }

std::string distance_of(void (*body)()) {
  return std::to_string(reinterpret_cast<std::uintptr_t>(body) - origin());
}

void run_body(char const* distance) {
  std::uintptr_t const address = origin() + std::strtoul(distance, nullptr, 10);
  reinterpret_cast<void (*)()>(address)();
}

[[noreturn]] void start_anew(void (*body)(), child_environment const& variables,
                             output_file const& out, output_file const& err) {
  for (auto const& [name, value] : variables) {
    value != nullptr ? setenv(name, value, 1) : unsetenv(name);
  }
  rlimit const no_core_file = {};
  setrlimit(RLIMIT_CORE, &no_core_file);
  alarm(longest_run);
  dup2(out.descriptor(), STDOUT_FILENO);
  dup2(err.descriptor(), STDERR_FILENO);
  execl("/proc/self/exe", program_invocation_name, child_option, distance_of(body).c_str(),
        static_cast<char*>(nullptr));
  _exit(127);
}

}  // namespace

child_result run_in_child(void (*body)(), child_environment const& variables) {
  output_file const out, err;
  pid_t const child = fork();
  if (child < 0) fail("fork");
  if (child == 0) start_anew(body, variables, out, err);

  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) fail("waitpid");
  }
  child_result result;
  result.out = out.text();
  result.err = err.text();
  if (WIFEXITED(status)) result.exit_code = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  return result;
}

// Takes the place of the testing framework's own.
int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], child_option) == 0) {
    run_body(argv[2]);
    return 0;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
