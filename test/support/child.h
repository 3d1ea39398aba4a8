// Runs a function of a test program in a process of its own: for what a process does only once, for
// what ends it, and for what goes to which stream.
//
//   child_result const child = run_in_child([] { std::puts(std::getenv("WORD")); std::exit(3); },
//                                           {{"WORD", "hello"}, {"OTHER", nullptr}});
//   EXPECT_EQ(child.out, "hello\n");
//   EXPECT_EQ(child.exit_code, 3);
#ifndef TEST_SUPPORT_CHILD_H
#define TEST_SUPPORT_CHILD_H

#include <string>
#include <utility>
#include <vector>

struct child_result {
  std::string out;     // all it wrote to standard output
  std::string err;     // and to standard error
  int exit_code = -1;  // -1 when a signal ended it
  int signal = 0;      // 0 when it ended by itself
};

// Names and values; a null value removes the variable.
using child_environment = std::vector<std::pair<char const*, char const*>>;

// The program is started anew and calls `body` instead of its tests, so that everything done when
// it is loaded happens under these variables; all others are as here. Returning from `body` is
// exit(0). A child that does not end within a minute is ended by SIGALRM. Checks of the testing
// framework do not work in `body`: let it write what it finds. Throws std::system_error when there
// can be no child.
child_result run_in_child(void (*body)(), child_environment const& variables = {});

#endif
