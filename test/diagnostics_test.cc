// What reports: message tables, checks, the status base, debug lines, traces and indentation.
#include <gtest/gtest.h>
#include <regex.h>

#include <algorithm>
#include <climits>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <locale>
#include <map>
#include <random>
#include <sstream>

#include "miroxgcl/gcl_assert.h"
#include "miroxgcl/gcl_ctrace.h"
#include "miroxgcl/gcl_indent.h"
#include "miroxgcl/gcl_msg_tables.h"
#include "miroxgcl/gcl_status_base.h"
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

// The last allocation is the log's: one sets its code before, the other after it.
TEST(Check, WithoutMemoryRedirectEndsAndCodeIsOfTheStepsDone) {
  GCL_Status outer;
  outer.grab_imsg_out();
  auto code_after = [code = -1](auto report) mutable {
    auto const check = [&](auto& status, bool failed) { code = failed ? status.value() : code; };
    fail_each_allocation([] { return GCL_Status(); }, report, check);
    return code;
  };
  EXPECT_EQ(code_after([](auto& s) { GCL_Assert::gcl_check(s, false, "f", 1); }), 1001);
  EXPECT_EQ(code_after([](auto& s) { GCL_Assert::gcl_not_yet_implemented(s, "f", 1); }), 0);
  print(6, "mine");
  EXPECT_STREQ(outer.error_message().c_str(), "mine");
}

void fail_assertions() {
  GCL_Assert::gcl_assert(false, "f.cc", 2);
  setenv("GCL_ASSERT_CONTINUE", "", 1);
  unsetenv("GCL_ASSERT_DONT_LOG");
  GCL_Assert::gcl_assert(false, "f.cc", 3);
}

TEST(Assertion, LogsAndAbortsUnlessTheEnvironmentSaysOtherwise) {
  char const* const values[] = {nullptr, "", "0"};
  for (int i = 0; i < 9; ++i) {
    child_result const child = run_in_child(
        fail_assertions,
        {{"GCL_ASSERT_DONT_LOG", values[i / 3]}, {"GCL_ASSERT_CONTINUE", values[i % 3]}});
    std::string const first = i / 3 == 2 ? "" : "Assertion failure.\ngcl: f.cc:2\n";
    EXPECT_EQ(child.err, first + (i % 3 == 2 ? "Assertion failure.\ngcl: f.cc:3\n" : ""));
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

TEST(StatusBase, CollectsWhatServicesPrintApartFromItsStack) {
  Report report;
  report.set(7);
  int n = 0;
  EXPECT_TRUE(GCL_CHECK_STATUS(report, ++n == 1) && GCL_CHECK(n == 1 && report.value() == 7));
  EXPECT_FALSE(GCL_CHECK_STATUS(report, ++n != 2) || report.value() != 1001);
  report.clear();
  print(0, "A");
  report.add_message("own", 9);
  report.add_message("stack");
  EXPECT_TRUE(report.has_message(9) && !report.has_message(6));
  EXPECT_EQ(collected(report), "ownA");
  report.clear();
  EXPECT_FALSE(report.has_messages() || report.has_message(9));
  report.grab_imsg_out();
  print(6, " and grabbed");
  report.release_imsg_out();
  EXPECT_STREQ(report.error_message().c_str(), "stack and grabbed");
}

TEST(StatusBase, CopiesCollectForThemselvesAndWithoutMemoryNothing) {
  Report source;
  source.set(5);
  source.add_message("stack");
  auto const prepare = [&source] {
    Report copy(source);
    EXPECT_EQ(collected(copy) + copy.error_message().c_str(), "stack");
    copy.set_ok();
    print(6, "dropped");
    return copy;
  };
  auto const assign = [&source](Report& copy) { copy = source; };
  auto const check = [&assign](Report& copy, bool failed) {
    if (failed) {
      copy.add_message("lost", 6);
      copy.clear();
      EXPECT_EQ(collected(copy), copy.has_messages() || copy.has_message(6) ? "none" : "");
      assign(copy);
    }
    print(6, "new");
    EXPECT_EQ(collected(copy) + copy.error_message().c_str(), copy.value() == 5 ? "newstack" : "5");
  };
  EXPECT_GE(fail_each_allocation(prepare, assign, check), 1);
  print(6, "after");
  EXPECT_EQ(collected(source), "after");
}

// ---- Debug levels

using levels = std::map<int, int>;

bool has_levels(GCL_Debug const& debug, levels const& expected) {
  for (auto const& [number, level] : expected) {
    auto const area = GCL_Debug::Discriminator{number};
    if (!debug.is_enabled(area, GCL_Debug::Level{level})) return false;
    if (level < INT_MAX && debug.is_enabled(area, GCL_Debug::Level{level + 1})) return false;
  }
  return true;
}

// What the grammar says, item by item.
levels model(std::string const& spec) {
  static regex_t item;
  static int const error = regcomp(&item, "^([0-9]*)(-([0-9]*))?([.]([0-9]*))?", REG_EXTENDED);
  levels result;
  for (int i = 0; i < 712; ++i) result[i] = error;
  regmatch_t match[6];
  for (char const* p = spec.c_str();; p += match[0].rm_eo + 1) {
    regexec(&item, p, 6, match, 0);
    auto const number = [&](int i, double most) {
      std::string const digits(p + match[i].rm_so, p + match[i].rm_eo);
      return static_cast<int>(std::min(std::strtod(digits.c_str(), nullptr), most));
    };
    int const last = number(match[2].rm_so >= 0 ? 3 : 1, 711);
    int const level = match[4].rm_so >= 0 ? number(5, INT_MAX) : 1;
    for (int i = number(1, 711); i <= last; ++i) result[i] = level;
    if (p[match[0].rm_eo] == '\0') return result;
  }
}

TEST(Levels, AreWhatTheModelOfTheGrammarSays) {
  std::mt19937 random(20261122);
  std::string const alphabet = "0123456789012345678900--..., +x\t\x80\xFF";
  for (int round = 0; round < 2000; ++round) {
    std::string spec;
    for (auto n = random() % 16; n != 0; --n) spec += alphabet[random() % alphabet.size()];
    ASSERT_TRUE(has_levels(GCL_Debug(spec.c_str()), model(spec))) << spec;
  }
  setenv("MIROX_GCL_DEBUG", ("5.3,6.4294967297," + std::string(100'000, '8') + ".4").c_str(), 1);
  GCL_Debug const debug("5.1.7,9-8,1-2.2");
  unsetenv("MIROX_GCL_DEBUG");
  EXPECT_TRUE(has_levels(debug, {{0, 0}, {1, 2}, {2, 2}, {5, 1}, {6, INT_MAX}, {7, 1}, {711, 4}}));
  EXPECT_FALSE(debug.is_enabled(GCL_Debug::Discriminator{-1}, GCL_Debug::Level{INT_MIN}));
}

// ---- Debug lines and traces

void skip_numbers(int count) {
  for (; count != 0; --count) GCL_Ctrace("", "", GCL_Debug::Discriminator{712}, GCL_Debug::always);
}

void parse_with_number_12() {
  skip_numbers(11);
  GCL_Ctrace const run("Parser", "run", GCL_Debug::storage, GCL_Debug::coarse);
  GCL_CTRACE("Lexer", "next", GCL_Debug::storage, GCL_Debug::fine);
  GCL_CTRACE_OUT("token=" << 5);
  std::puts("parsed");
}

constexpr char parse_lines[] =
    "....DEBUG: >>[  12] Parser::run\n"
    "....DEBUG:   >>[  13] Lexer::next\n"
    "....DEBUG:            Lexer::next, token=5\n"
    "....DEBUG:   <<[  13] Lexer::next\n"
    "....DEBUG: <<[  12] Parser::run\n";

child_result run_traced(void (*body)(), char const* debug, char const* file = nullptr) {
  return run_in_child(body, {{"MIROX_GCL_DEBUG", debug}, {"MIROX_GCL_DEBUG_FILE", file}});
}

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

void trace_by_the_rules() {
  make_streams_odd();
  std::ostringstream empty, text("text");
  GCL_CTRACE("Off", "off", GCL_Debug::network, GCL_Debug::coarse);
  GCL_CTRACE_OUT(std::fputs("built", stderr));
  skip_numbers(12343);
  GCL_Ctrace const on("On", "on", GCL_Debug::storage, GCL_Debug::Level{-1});
  GCL_Debug::m_debug_ptr->output(empty);
  gcl_ctrace_scope.output(text);
  GCL_Ctrace const entry_only("Entry", "only", GCL_Debug::presentation, GCL_Debug::coarse);
  GCL_Debug::m_debug_ptr->output(text);
  GCL_Debug::m_debug_ptr->set_levels("9.0");
}

TEST(Trace, LinesAreWrittenAsAndWhereTheyAreWanted) {
  EXPECT_EQ(run_traced(parse_with_number_12, "1").err,
            "....DEBUG: >>[   0] Static::trace\n....DEBUG: <<[   0] Static::trace\n");
  scratch_folder const folder;
  std::string const log = folder.path + "/log";
  std::ofstream(log) << std::string(1000, 'x');
  EXPECT_EQ(run_traced(parse_with_number_12, "7.2", log.c_str()).err, "");
  std::string content;
  std::getline(std::ifstream(log), content, '\0');
  EXPECT_EQ(content, parse_lines);
  for (std::string const& lost : {folder.path + "/missing/log", std::string("/dev/full"), {}}) {
    child_result const loses = run_traced(parse_with_number_12, "7.2", lost.c_str());
    EXPECT_EQ(loses.out + loses.err, loses.exit_code == 0 ? "parsed\n" : "exit code 0") << lost;
  }
  EXPECT_EQ(
      run_traced(trace_by_the_rules, "9").err,
      "....DEBUG: >>[12345] On::on\n....DEBUG: \n....DEBUG:          Off::off, text\n"
      "....DEBUG:   >>[12346] Entry::only\n....DEBUG:   text\n....DEBUG:   <<[12345] On::on\n");
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
  child_result const child =
      run_in_child(print_a_body_and_two_blocks, {{"GCL_INDENT_STRING", nullptr},
                                                 {"GCL_INDENT_HEADER_FORMAT", nullptr},
                                                 {"GCL_INDENT_FOOTER_FORMAT", "END %s"}});
  EXPECT_EQ(child.err,
            "Reference Count: 1234\n\nBEGIN Outer\n\n BEGIN Inner\n  \n END Inner\nEND Outer\n");
  EXPECT_EQ(child.out,
            "Did not find GCL_INDENT_STRING environment variable\n"
            "Did not find GCL_INDENT_HEADER_FORMAT environment variable\n"
            "Got GCL_INDENT_FOOTER_FORMAT: END %s\n");

  std::string all;
  while (all.size() < 5000) all += "\xF0\x9D\x84\x9E";
  auto const clefs = [&all](std::size_t count) { return all.substr(0, 4 * count); };
  std::string const x1022(1022, 'x'), hostile = "%n%s%s%99999d %%s %%%";
  std::vector<std::string> const examples[] = {
      {hostile, "%s%n%%", "%n%s%n%%%s%99999d %s %%"},
      {"%s!", std::string(5000, 'x'), x1022 + "x"},
      {"%s", std::string(5000, '\x80'), std::string(1023, '\x80')},
      {x1022 + "%s!%%", clefs(1), x1022},
      {"xxx%s", all, "xxx" + clefs(255)},
      {"xxxx" + all, "T", "xxxx" + clefs(254)}};
  for (std::ostream* stream : {&std::cout, &std::cerr}) stream->setstate(std::ios::failbit);
  setenv("GCL_INDENT_STRING", clefs(150).c_str(), 1);
  for (auto const& example : examples) {
    setenv("GCL_INDENT_HEADER_FORMAT", example[0].c_str(), 1);
    setenv("GCL_INDENT_FOOTER_FORMAT", example[0].c_str(), 1);
    GCL_Indent::initialize_indent();
    GCL_Indent const block(example[1].c_str()), inner("inner");
    EXPECT_EQ(block.header() + std::string(block.footer()), example[2] + example[2]);
    EXPECT_EQ(block.indent(), clefs(255));
  }
  for (std::ostream* stream : {&std::cout, &std::cerr}) stream->clear();
}

}  // namespace
