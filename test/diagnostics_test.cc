// What reports: message tables, checks, the status base, debug lines, traces and indentation.
#include <gtest/gtest.h>
#include <sys/stat.h>

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

TEST(Messages, IndicesThatNoTableHasAreReported) {
  GCL_Status errors;
  {
    GCL_ImsgRedirect const redirect(errors);
    for (int const index : {-1, int{_gcl_string_gcl_msg_table.count}}) {
      tbs_log_int_error("gcl", &_gcl_string_gcl_msg_table, index, "f.cc", 1, 0);
    }
  }
  EXPECT_EQ(split(errors.error_message(), " is not in the table of ").Length(), 3u);
}

TEST(Messages, IdentificationLineHasItsColumns) {
  char line[200] = "", end = '\0';
  int year = 0;
  libmiroxgcl_sprintf_verid(line);
  char const columns[] = "libmiroxgcl%*23[ ]%*[0-9.] (%*3c %*3c %*d %*d:%*d:%*d %d)%c";
  EXPECT_EQ(std::sscanf(line, columns, &year, &end), 2) << line;
  EXPECT_EQ(end, '\n');
  EXPECT_EQ(run_in_child([] { libmiroxgcl_print_verid(); }).out, line);
}

// ---- Checks

TEST(Assertion, LogsAndAbortsUnlessTheEnvironmentSaysOtherwise) {
  auto const child = run_in_child(
      [] {
        GCL_Assert::gcl_assert(false, "f.cc", 2);
        setenv("GCL_ASSERT_DONT_LOG", "0", 1);
        setenv("GCL_ASSERT_CONTINUE", "", 1);
        GCL_Assert::gcl_assert(false, "f.cc", 3);
      },
      {{"GCL_ASSERT_DONT_LOG", ""}, {"GCL_ASSERT_CONTINUE", "0"}});
  EXPECT_EQ(child.err, "Assertion failure.\ngcl: f.cc:2\n");
  EXPECT_EQ(child.signal, SIGABRT);
}

// ---- The status base

struct Report : GCL_StatusBase {
  GCL_String describe() const override { return "a report"; }
};

TEST(StatusBase, KeepsTheCodeOfAPassedCheckAndCollectsApartFromItsStack) {
  Report source;
  source.set(5);
  EXPECT_TRUE(GCL_CHECK(true) && GCL_CHECK_STATUS(source, true) && source == 5);
  EXPECT_FALSE(GCL_CHECK_STATUS(source, false));
  source.add_message("stack");
  auto const assign = [&source](Report& copy) { copy = source; };
  auto const check = [](Report& copy, bool failed) {
    imsg_print(6, "new", -1);
    copy.add_message("own", 9);
    GCL_String text = "not empty";
    copy.messages(text);
    EXPECT_EQ(text, copy.has_message(9) ? "ownnew" : failed ? "" : "none");
    EXPECT_TRUE(failed || (copy == 1001 && copy.error_message() == "stack"));
    copy.clear();
    EXPECT_FALSE(copy.has_messages() || copy.has_message(9));
  };
  EXPECT_GE(fail_each_allocation([&source] { return Report(source); }, assign, check), 1);
}

// ---- Debug levels

TEST(Levels, OfTheEnvironmentThenOfTheArgument) {
  setenv("MIROX_GCL_DEBUG", "5.3", 1);
  GCL_Debug const debug("5.1");
  unsetenv("MIROX_GCL_DEBUG");
  EXPECT_FALSE(debug.is_enabled(GCL_Debug::parsing, GCL_Debug::fine));
  EXPECT_FALSE(debug.is_enabled(GCL_Debug::Discriminator{-1}, GCL_Debug::Level{INT_MIN}));
}

TEST(Levels, SpecificationsNameAreasRangesAndLevels) {
  struct {
    char const* levels;
    int area, level;
  } const rows[] = {
      {"7", 7, 1},
      {"6-8.2", 7, 2},
      {"8-6.2", 7, 0},
      {"7.3+7.", 7, 0},
      {"6-7.2,7.4", 7, 4},
      {"0-711.3-7", 7, 1},
      {"6-99999999999.99999999999", 711, INT_MAX},
  };
  for (auto const& row : rows) {
    GCL_Debug const debug(row.levels);
    GCL_Debug::Discriminator const area{row.area};
    EXPECT_TRUE(debug.is_enabled(area, GCL_Debug::Level{row.level})) << row.levels;
    if (row.level == INT_MAX) continue;
    EXPECT_FALSE(debug.is_enabled(area, GCL_Debug::Level{row.level + 1})) << row.levels;
  }
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
  for (int n = 1; n < 12345; ++n) GCL_Ctrace("", "", GCL_Debug::storage, GCL_Debug::finest);
  GCL_Ctrace on("On", "on", GCL_Debug::storage, GCL_Debug::Level{-1});
  std::ostringstream empty, text("text");
  GCL_Debug::m_debug_ptr->output(empty);
  GCL_CTRACE("Entry", "only", GCL_Debug::presentation, GCL_Debug::coarse);
  GCL_CTRACE_OUT("token=" << 5);
  GCL_Debug::m_debug_ptr->set_levels("7-9.0");
  GCL_CTRACE_OUT(std::fputs("built", stderr));
  GCL_Ctrace("Off", "off", GCL_Debug::storage, GCL_Debug::coarse).output(text);
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
  for (char const* file : std::vector<char const*>{nullptr, log.c_str(), "/dev/full", ""}) {
    auto const child =
        run_in_child(trace, {{"MIROX_GCL_DEBUG", "1,8-9"}, {"MIROX_GCL_DEBUG_FILE", file}});
    EXPECT_EQ(child.exit_code, 0);
    EXPECT_EQ(child.err, file == nullptr ? trace_lines : "");
  }
  std::string content;
  std::getline(std::ifstream(log), content, '\0');
  EXPECT_EQ(content, trace_lines);
}

// A debug file that nobody reads, and a closed standard error that is to throw.
void trace_into_nothing() {
  std::cerr.exceptions(std::ios_base::badbit | std::ios_base::failbit);
  std::fclose(stderr);
  GCL_CTRACE(nullptr, "outer", GCL_Debug::general, GCL_Debug::coarse);
  {
    GCL_CTRACE(nullptr, "inner", GCL_Debug::general, GCL_Debug::coarse);
    GCL_CTRACE_OUT(std::max(1, 2));
  }
  GCL_Indent const block("block");
  std::puts(std::cerr.good() ? "good" : "changed");
}

TEST(Trace, NeitherBlocksNorThrows) {
  scratch_folder const folder;
  std::string const fifo = folder.path + "/fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  for (char const* file : std::vector<char const*>{nullptr, fifo.c_str()}) {
    auto const child = run_in_child(trace_into_nothing,
                                    {{"MIROX_GCL_DEBUG", "0"}, {"MIROX_GCL_DEBUG_FILE", file}});
    EXPECT_EQ(child.out.substr(child.out.rfind('\n', child.out.size() - 2) + 1), "good\n");
    EXPECT_EQ(child.exit_code, 0);
  }
}

// ---- Indentation

void print_a_body_and_two_blocks() {
  make_streams_odd();
  std::vector<GCL_String> const sharers(1234, GCL_String("text"));
  std::cerr << GCL_HandleBase() << static_cast<GCL_HandleBase const&>(sharers[0]);
  GCL_Indent const outer("Outer"), inner("Inner"), null(nullptr), empty("");
  (std::cerr << inner).put('\n');
}

TEST(Indent, BlocksNestAndTextsAreCutAtAWholeCharacter) {
  auto const child =
      run_in_child(print_a_body_and_two_blocks, {{"GCL_INDENT_FOOTER_FORMAT", "END %s"}});
  EXPECT_EQ(child.err,
            "Reference Count: 1234\n\nBEGIN Outer\n\n BEGIN Inner\n  \n END Inner\nEND Outer\n");
  EXPECT_EQ(child.out,
            "Did not find GCL_INDENT_STRING environment variable\n"
            "Did not find GCL_INDENT_HEADER_FORMAT environment variable\n"
            "Got GCL_INDENT_FOOTER_FORMAT: END %s\n");

  std::string clefs = "\xF0\x9D\x84\x9E";
  while (clefs.size() < 2048) clefs += clefs;
  for (std::ostream* stream : {&std::cout, &std::cerr}) stream->setstate(std::ios::failbit);
  setenv("GCL_INDENT_STRING", clefs.c_str(), 1);
  GCL_Indent const block(("x" + clefs).c_str());
  EXPECT_EQ(block.header(), "BEGIN x" + clefs.substr(0, 1016));
  EXPECT_EQ(block.indent(), clefs.substr(0, 1020));
}

TEST(Indent, FormatTakesTheTitleOnceAndHalvesPercentSigns) {
  struct {
    char const *format, *title, *header;
  } const rows[] = {
      {"[%s]", "title", "[title]"},
      {"%s, %s", "title", "title, %s"},
      {"100%% %s", "title", "100% title"},
      {"%%s", "title", "%s"},
      {"%n%", "title", "%n%"},
      {"%s", "%s%n", "%s%n"},
      {"no title: %s", "", ""},
  };
  std::cout.setstate(std::ios::failbit);
  for (auto const& row : rows) {
    setenv("GCL_INDENT_HEADER_FORMAT", row.format, 1);
    GCL_Indent::initialize_indent();
    EXPECT_STREQ(GCL_Indent(row.title).header(), row.header) << row.format;
  }
}

}  // namespace
