// What reports: message tables, checks, the status base, debug lines, traces and indentation.
#include <gtest/gtest.h>

#include <climits>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <locale>
#include <sstream>

#include "miroxgcl/gcl.h"
#include "support/child.h"
#include "support/failing_allocator.h"

namespace {

// Open from the program's loading to its unloading; the first trace of every process.
GCL_Ctrace const s_static_trace("Static", "trace", GCL_Debug::startup, GCL_Debug::coarse);

// A folder of its own, gone with the object.
struct scratch_folder {
  ~scratch_folder() { std::filesystem::remove_all(path); }
  std::string path = mkdtemp((testing::TempDir() + "diagnostics_XXXXXX").data());
};

void print(int slot, char const* text) { imsg_print(slot, "%s", -1, text); }

// ---- Message tables

// Entries 1, which is translated, and 0, which is not.
void report() {
  GCL_Status status;
  GCL_Assert::gcl_check(status, false, "f.cc", 7);
  GCL_Assert::gcl_not_yet_implemented(status, "f.cc", 8);
  std::printf("%d: %s", status.value(), status.error_message().c_str());
}

TEST(Messages, LoggedTextIsTheUsersOrTheTables) {
  std::string const rest = "gcl: f.cc:7\nNot yet implemented.\ngcl: f.cc:8\n";
  EXPECT_EQ(run_in_child(report, {{"NLSPATH", nullptr}}).out, "1001: Unexpected error.\n" + rest);
  EXPECT_TRUE(_gcl_string_gcl_msg_table.set == 2 && _gcl_string_gcl_msg_table.numbers[0] == 1);
#ifdef GENCAT
  scratch_folder const folder;
  std::string const source = folder.path + "/source", path = folder.path + "/%N";
  std::ofstream(source) << "$set 1\n2 Oh: 100%s\\n\n";
  ASSERT_EQ(std::system((GENCAT " " + folder.path + "/gcl_libobj " + source).c_str()), 0);
  EXPECT_EQ(run_in_child(report, {{"NLSPATH", path.c_str()}}).out, "1001: Oh: 100%s\n" + rest);
#endif
}

// ---- Checks

TEST(Check, WithoutMemoryRedirectEndsAndCodeIsOfTheStepsDone) {
  GCL_Status outer;
  outer.grab_imsg_out();
  for (bool check : {true, false}) {
    auto const report_one = [check](GCL_Status& s) {
      check ? void(GCL_CHECK_STATUS(s, false)) : GCL_Assert::gcl_not_yet_implemented(s, "f", 1);
    };
    fail_each_allocation(
        [] { return GCL_Status(); }, report_one,
        [check](auto& s, bool failed) { EXPECT_EQ(s.value(), check || !failed ? 1001 : 0); });
  }
  print(6, "mine");
  EXPECT_STREQ(outer.error_message().c_str(), "mine");
}

void fail_assertions() {
  GCL_Assert::gcl_assert(false, "f.cc", 2);
  setenv("GCL_ASSERT_CONTINUE", "", 1);
  GCL_Assert::gcl_assert(false, "f.cc", 3);
}

TEST(Assertion, LogsAndAbortsUnlessTheEnvironmentSaysOtherwise) {
  std::string const both = "Assertion failure.\ngcl: f.cc:2\nAssertion failure.\ngcl: f.cc:3\n";
  char const* const values[] = {"", "0"};
  for (bool silent : {false, true}) {
    auto const child = run_in_child(fail_assertions, {{"GCL_ASSERT_DONT_LOG", values[silent]},
                                                      {"GCL_ASSERT_CONTINUE", values[!silent]}});
    EXPECT_EQ(child.err, silent ? "" : both);
    EXPECT_EQ(child.signal, SIGABRT);
  }
}

// ---- The status base

struct Report : GCL_StatusBase {
  GCL_String describe() const override { return "a report"; }
};

std::string collected(GCL_StatusBase const& status) {
  GCL_String text = "not empty";
  status.messages(text);
  return text.c_str();
}

TEST(StatusBase, CollectsApartFromItsStackAndKeepsTheCodeOfAPassedCheck) {
  Report report;
  report.set(7);
  int n = 0;
  EXPECT_TRUE(GCL_CHECK_STATUS(report, ++n == 1) && GCL_CHECK(n == 1 && report.value() == 7));
  EXPECT_FALSE(GCL_CHECK_STATUS(report, ++n != 2) || report.value() != 1001);
  report.clear();
  report.add_message("own", 9);
  report.add_message("stack");
  EXPECT_TRUE(report.has_message(9) && !report.has_message(6));
  EXPECT_EQ(collected(report) + report.error_message().c_str(), "ownstack");
  report.clear();
  EXPECT_FALSE(report.has_messages() || report.has_message(9));
}

TEST(StatusBase, CopiesCollectForThemselvesAndWithoutMemoryNothing) {
  Report source;
  source.set(5);
  source.add_message("stack");
  auto const assign = [&source](Report& copy) { copy = source; };
  auto const check = [](Report& copy, bool failed) {
    print(6, "new");
    copy.add_message("own", 6);
    bool const collects = copy.has_messages();
    EXPECT_EQ(collected(copy), collects ? "ownnew" : failed ? "" : "none");
    EXPECT_TRUE(failed || (copy == 5 && copy.error_message() == "stack"));
    copy.clear();
  };
  EXPECT_GE(fail_each_allocation([&source] { return Report(source); }, assign, check), 1);
}

// ---- Debug levels

TEST(Levels, OfTheEnvironmentThenOfTheArgument) {
  setenv("MIROX_GCL_DEBUG", "5.3,6.4294967297,800.4", 1);
  GCL_Debug const debug("5.1.7,9-8,1-2.2");
  unsetenv("MIROX_GCL_DEBUG");
  auto const is_enabled = [&debug](int area, int level) {
    return debug.is_enabled(GCL_Debug::Discriminator{area}, GCL_Debug::Level{level});
  };
  for (auto [area, level] : {std::pair(0, 0), {1, 2}, {2, 2}, {3, 0}, {5, 1}, {7, 1}, {711, 4}}) {
    EXPECT_TRUE(is_enabled(area, level) && !is_enabled(area, level + 1)) << area;
  }
  EXPECT_TRUE(is_enabled(6, INT_MAX) && !is_enabled(-1, INT_MIN));
}

// ---- Debug lines and traces

// Writes numbers in groups of one digit.
struct grouping : std::numpunct<char> {
  std::string do_grouping() const override { return "\1"; }
};

// Nothing that is written may depend on any of it.
void make_streams_odd() {
  std::locale::global(std::locale(std::locale::classic(), new grouping));
  std::cerr.imbue(std::locale());
  std::cerr << std::hex << std::showbase << std::showpos << std::setfill('*') << std::setw(40);
}

void trace() {
  make_streams_odd();
  for (int number = 1; number < 12345; ++number) {
    GCL_Ctrace("Off", "off", GCL_Debug::storage, GCL_Debug::finest);
  }
  GCL_Ctrace on("On", "on", GCL_Debug::storage, GCL_Debug::Level{-1});
  std::ostringstream empty, text("text");
  GCL_Debug::m_debug_ptr->output(empty);
  GCL_CTRACE("Entry", "only", GCL_Debug::presentation, GCL_Debug::coarse);
  GCL_CTRACE_OUT("token=" << 5);
  GCL_Debug::m_debug_ptr->set_levels("7-9.0");
  GCL_CTRACE_OUT(std::fputs("built", stderr));
  GCL_Ctrace("Off", "off", GCL_Debug::storage, GCL_Debug::coarse).output(text);
  std::puts("done");
}

constexpr char trace_lines[] =
    "....DEBUG: >>[   0] Static::trace\n"
    "....DEBUG:   >>[12345] On::on\n"
    "....DEBUG:   \n"
    "....DEBUG:     >>[12346] Entry::only\n"
    "....DEBUG:              Entry::only, token=5\n"
    "....DEBUG:              Off::off, text\n"
    "....DEBUG:     <<[12345] On::on\n"
    "....DEBUG:   <<[   0] Static::trace\n";

TEST(Trace, LinesAreWrittenAsAndWhereTheyAreWanted) {
  scratch_folder const folder;
  std::string const log = folder.path + "/log";
  std::ofstream(log) << std::string(1000, 'x');
  std::string const missing = folder.path + "/missing/log";
  char const* const files[] = {nullptr, log.c_str(), missing.c_str(), "/dev/full", ""};
  for (char const* file : files) {
    auto const child =
        run_in_child(trace, {{"MIROX_GCL_DEBUG", "1,8-9"}, {"MIROX_GCL_DEBUG_FILE", file}});
    EXPECT_EQ(child.exit_code, 0);
    EXPECT_EQ(child.out, "done\n");
    EXPECT_EQ(child.err, file == nullptr ? trace_lines : "");
  }
  std::string content;
  std::getline(std::ifstream(log), content, '\0');
  EXPECT_EQ(content, trace_lines);
}

// ---- Indentation

void print_a_body_and_two_blocks() {
  make_streams_odd();
  std::vector<GCL_String> const sharers(1234, GCL_String("text"));
  std::cerr << GCL_HandleBase() << static_cast<GCL_HandleBase const&>(sharers[0]);
  GCL_Indent const outer("Outer"), inner("Inner"), null(nullptr), empty("");
  (std::cerr << inner).put('\n');
}

TEST(Indent, BlocksNestAndFormatsAreFilledByHandAndCutAtAWholeCharacter) {
  auto const child =
      run_in_child(print_a_body_and_two_blocks, {{"GCL_INDENT_STRING", nullptr},
                                                 {"GCL_INDENT_HEADER_FORMAT", nullptr},
                                                 {"GCL_INDENT_FOOTER_FORMAT", "END %s"}});
  EXPECT_EQ(child.err,
            "Reference Count: 1234\n\nBEGIN Outer\n\n BEGIN Inner\n  \n END Inner\nEND Outer\n");
  EXPECT_EQ(child.out,
            "Did not find GCL_INDENT_STRING environment variable\n"
            "Did not find GCL_INDENT_HEADER_FORMAT environment variable\n"
            "Got GCL_INDENT_FOOTER_FORMAT: END %s\n");

  std::string clefs = "\xF0\x9D\x84\x9E";
  while (clefs.size() < 2048) clefs += clefs;
  for (std::ostream* stream : {&std::cout, &std::cerr}) stream->setstate(std::ios::failbit);
  setenv("GCL_INDENT_STRING", clefs.substr(0, 600).c_str(), 1);
  setenv("GCL_INDENT_HEADER_FORMAT", "xxx%s", 1);
  GCL_Indent::initialize_indent();
  GCL_Indent const block(clefs.c_str()), inner("inner");
  EXPECT_EQ(block.header(), "xxx" + clefs.substr(0, 1020));
  EXPECT_EQ(block.indent(), clefs.substr(0, 1020));
}

}  // namespace
