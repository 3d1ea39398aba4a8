#include "support/child.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace {

constexpr char child_option[] = "--run-in-child";

std::string text_of(std::FILE* file) {
  std::string text;
  std::rewind(file);
  for (int c = std::getc(file); c != EOF; c = std::getc(file)) text += static_cast<char>(c);
  std::fclose(file);
  return text;
}

// An emulator writes a line of its own about the signal that ends a program.
std::string without_notice(std::string text) {
#ifdef EMULATOR
  text.resize(std::min(text.size(), text.find("qemu: uncaught target signal")));
#endif
  return text;
}

// The program lies elsewhere in each process, but its functions lie at the same distances.
std::size_t origin() { return reinterpret_cast<std::size_t>(&run_in_child); }

}  // namespace

child_result run_in_child(void (*body)(), child_environment const& variables) {
  // Files, unlike pipes, take any amount of output before anyone reads it.
  std::FILE *const out = std::tmpfile(), *const err = std::tmpfile();
  pid_t const child = out != nullptr && err != nullptr ? fork() : -1;
  if (child == 0) {
    for (auto const& [name, value] : variables) value ? setenv(name, value, 1) : unsetenv(name);
    rlimit const no_core_file = {};
    setrlimit(RLIMIT_CORE, &no_core_file);
    alarm(60);  // seconds
    dup2(fileno(out), STDOUT_FILENO);
    dup2(fileno(err), STDERR_FILENO);
    auto const distance = std::to_string(reinterpret_cast<std::size_t>(body) - origin());
    // The name that a checker under which the program runs gives it, not the checker's own.
    std::string const program = std::filesystem::read_symlink("/proc/self/exe");
#ifdef EMULATOR  // another machine's program is started by these words
    char const* const words[] = {EMULATOR, program.c_str(), child_option, distance.c_str(),
                                 nullptr};
    execvp(words[0], const_cast<char**>(words));
#else
    execl(program.c_str(), program_invocation_name, child_option, distance.c_str(), nullptr);
#endif
    _exit(127);
  }
  int status = 0;
  if (waitpid(child, &status, 0) < 0) throw std::system_error(errno, std::generic_category());
  return {text_of(out), without_notice(text_of(err)), WIFEXITED(status) ? WEXITSTATUS(status) : -1,
          WIFSIGNALED(status) ? WTERMSIG(status) : 0};
}

// Takes the place of the testing framework's own.
int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], child_option) == 0) {
    reinterpret_cast<void (*)()>(origin() + std::strtoul(argv[2], nullptr, 10))();
    return 0;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
