// What reports: message tables, checks, the status base, debug lines, traces and indentation.
#include <gtest/gtest.h>
#include <nl_types.h>
#include <regex.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <locale>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "miroxgcl/gcl_assert.h"
#include "miroxgcl/gcl_ctrace.h"
#include "miroxgcl/gcl_imsg_redirect.h"
#include "miroxgcl/gcl_indent.h"
#include "miroxgcl/gcl_msg_tables.h"
#include "miroxgcl/gcl_status_base.h"
#include "support/child.h"
#include "support/failing_allocator.h"

namespace {

using texts = std::vector<std::string>;

template <class T>
constexpr bool is_fixed = !std::is_copy_constructible_v<T> && !std::is_copy_assignable_v<T>;
static_assert(is_fixed<GCL_Debug> && is_fixed<GCL_Ctrace> && is_fixed<GCL_Indent>);

constexpr auto area_7 = GCL_Debug::Discriminator{7};

// Traced while the program is loaded and unloaded; the first trace of every process.
struct static_object {
  static_object() { GCL_CTRACE("Static", "begin", GCL_Debug::startup, GCL_Debug::coarse); }
  ~static_object() { GCL_CTRACE("Static", "end", GCL_Debug::startup, GCL_Debug::coarse); }
} s_static_object;

// A folder of its own, gone with the object.
class scratch_folder {
 public:
  scratch_folder() {
    std::string name = testing::TempDir() + "diagnostics_XXXXXX";
    if (mkdtemp(name.data()) != nullptr) m_path = name;
  }
  ~scratch_folder() { std::filesystem::remove_all(m_path); }
  std::string file(char const* name) const { return m_path / name; }

 private:
  std::filesystem::path m_path;
};

std::string content(std::string const& file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::string repeat(std::string const& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

// ---- Message tables

texts defaults(tbs_msg_table_t const& table) { return {table.texts, table.texts + table.count}; }

TEST(Messages, TablesAndCatalogComeFromTheirSources) {
  texts const general = {"Not yet implemented.\n", "Unexpected error.\n", "Assertion failure.\n",
                         "GCL_Status class usage error occurred.\nFile: %s Line: %d\nReason: %s\n"};
  texts const string = {"Out of range error. Index = %d, String Length = %d\n"};
  EXPECT_EQ(defaults(_gcl_gcl_msg_table), general);
  EXPECT_EQ(defaults(_gcl_string_gcl_msg_table), string);
  EXPECT_EQ(_gcl_gcl_msg_table.set, 1);
  EXPECT_EQ(_gcl_string_gcl_msg_table.set, 2);
  for (tbs_msg_table_t const* table : {&_gcl_gcl_msg_table, &_gcl_string_gcl_msg_table}) {
    EXPECT_STREQ(table->catalog, "gcl_libobj");
    EXPECT_STREQ(table->component, "gcl");
    for (short i = 0; i < table->count; ++i) EXPECT_EQ(table->numbers[i], i + 1);
  }
#ifdef CATALOG
  nl_catd const catalog = catopen(CATALOG, 0);
  ASSERT_NE(catalog, reinterpret_cast<nl_catd>(-1));
  for (tbs_msg_table_t const* table : {&_gcl_gcl_msg_table, &_gcl_string_gcl_msg_table}) {
    for (short i = 0; i < table->count; ++i) {
      EXPECT_STREQ(catgets(catalog, table->set, table->numbers[i], "none"), table->texts[i]);
    }
    EXPECT_STREQ(catgets(catalog, table->set, table->count + 1, "none"), "none");
  }
  catclose(catalog);
#endif
}

// Entries 1, which is translated, 0, which is not, and 3, which holds conversions.
void log_into_a_status() {
  GCL_Status status;
  GCL_Assert::gcl_check(status, false, "f.cc", 7);
  GCL_Assert::gcl_not_yet_implemented(status, "f.cc", 8);
  GCL_ImsgRedirect const redirect(status);
  tbs_log_int_error("gcl", &_gcl_gcl_msg_table, 3, "f.cc", 9, 0);
  std::printf("%d: %s", status.value(), status.error_message().c_str());
}

TEST(Messages, LoggedTextIsTheUsersOrTheTables) {
  std::string const rest =
      "gcl: f.cc:7\nNot yet implemented.\ngcl: f.cc:8\nGCL_Status class usage error occurred.\n"
      "File: %s Line: %d\nReason: %s\ngcl: f.cc:9\n";
  child_environment variables = {
      {"NLSPATH", nullptr}, {"LC_ALL", nullptr}, {"LC_MESSAGES", nullptr}, {"LANG", "xx"}};
  EXPECT_EQ(run_in_child(log_into_a_status, variables).out, "1001: Unexpected error.\n" + rest);
#ifdef GENCAT
  scratch_folder const folder;
  std::filesystem::create_directory(folder.file("xx"));
  std::ofstream(folder.file("xx.msg")) << "$set 1\n2 Unerwartet: 100%s\\n\n";
  std::string const command =
      GENCAT " " + folder.file("xx/gcl_libobj.cat") + " " + folder.file("xx.msg");
  ASSERT_EQ(std::system(command.c_str()), 0);
  std::string const path = folder.file("%L/%N.cat");
  variables[0].second = path.c_str();
  EXPECT_EQ(run_in_child(log_into_a_status, variables).out, "1001: Unerwartet: 100%s\n" + rest);
#endif
}

// ---- Checks

void print(int slot, char const* text) { imsg_print(slot, "%s", -1, text); }

// Under a status that grabs: it takes what a test leaves to others.
class Outer : public testing::Test {
 protected:
  Outer() { m_status.grab_imsg_out(); }
  ~Outer() override {
    EXPECT_TRUE(has_the_table());
    EXPECT_FALSE(GCL_ImsgRedirect::m_no_redirect);
  }
  std::string took() {
    std::string const result = m_status.error_message().c_str();
    m_status.set_ok();
    return result;
  }
  bool has_the_table() {
    took();
    print(6, "mine");
    return took() == "mine";
  }

 private:
  GCL_Status m_status;
};
using Throw = Outer;
using StatusBase = Outer;

TEST(Check, StatusTellsOnlyOfFailure) {
  GCL_Status status;
  status.set(7);
  status.add_message("before\n");
  EXPECT_TRUE(GCL_Assert::gcl_check(status, true, "f.cc", 1));
  EXPECT_TRUE(GCL_Assert::gcl_check(true, "f.cc", 1));
  EXPECT_EQ(status.value(), 7);
  EXPECT_STREQ(status.error_message().c_str(), "before\n");
  EXPECT_FALSE(GCL_Assert::gcl_check(status, false, "f.cc", 2));
  EXPECT_EQ(status.value(), 1001);
  EXPECT_STREQ(status.error_message().c_str(), "before\nUnexpected error.\ngcl: f.cc:2\n");
}

TEST(Check, MacrosNameTheirPlaceAndEvaluateOnce) {
  GCL_Status log;
  GCL_ImsgRedirect const redirect(log);
  int evaluated = 0;
  auto const once = [&evaluated](auto value) { return ++evaluated, value; };
  GCL_Status status;
  int const line = __LINE__;
  EXPECT_TRUE(GCL_CHECK(once(&evaluated)));
  EXPECT_FALSE(GCL_CHECK(once(false)));
  EXPECT_FALSE(GCL_CHECK_STATUS((once(0), status), once(false)));
  GCL_ASSERT(once(true));
  GCL_NOT_YET_IMPLEMENTED();
  EXPECT_EQ(evaluated, 5);
  auto const at = [&](int n) {
    return std::string("gcl: ") + __FILE__ + ":" + std::to_string(line + n) + "\n";
  };
  EXPECT_EQ(log.error_message().c_str(),
            "Unexpected error.\n" + at(2) + "Not yet implemented.\n" + at(5));
  EXPECT_EQ(status.error_message().c_str(), "Unexpected error.\n" + at(3));
}

// A client's table whose receiver looks at a status and throws.
int s_value_seen = 0;
void look_and_throw(void* status, char*) {
  s_value_seen = static_cast<GCL_Status*>(status)->value();
  throw 'x';
}

TEST(Check, CodeIsSetBeforeTheLogByOneAndAfterItByTheOther) {
  imsg_redirect_proc found[IMSG_PROC_COUNT], procs[IMSG_PROC_COUNT];
  void* context = nullptr;
  imsg_get_redirect_procs(IMSG_PROC_COUNT, found, &context);
  std::fill(std::begin(procs), std::end(procs), look_and_throw);
  GCL_Status status;
  status.set(7);
  imsg_set_redirect_procs(procs, IMSG_PROC_COUNT, &status);
  GCL_ImsgRedirect::disable_redirection();
  EXPECT_THROW(GCL_Assert::gcl_not_yet_implemented(status, "f.cc", 1), char);
  EXPECT_EQ(s_value_seen, 7);
  EXPECT_EQ(status.value(), 7);
  EXPECT_THROW(GCL_Assert::gcl_check(status, false, "f.cc", 2), char);
  EXPECT_EQ(s_value_seen, 1001);
  GCL_ImsgRedirect::enable_redirection();
  imsg_set_redirect_procs(found, IMSG_PROC_COUNT, context);
}

TEST_F(Throw, RedirectEndsWhateverIsThrown) {
  void (*const reports[])(GCL_Status&) = {
      [](GCL_Status& status) { GCL_Assert::gcl_check(status, false, "f.cc", 1); },
      [](GCL_Status& status) { GCL_Assert::gcl_not_yet_implemented(status, "f.cc", 1); }};
  for (auto const report : reports) {
    int const failures = fail_each_allocation(
        [] { return GCL_Status(); }, report, [this](auto&, bool) { ASSERT_TRUE(has_the_table()); });
    EXPECT_GE(failures, 2);
  }
}

void fail_assertions() {
  GCL_Assert::gcl_assert(true, "f.cc", 1);
  GCL_Assert::gcl_assert(false, "f.cc", 2);
  std::puts("went on");
  setenv("GCL_ASSERT_CONTINUE", "", 1);
  unsetenv("GCL_ASSERT_DONT_LOG");
  std::fflush(stdout);
  GCL_Assert::gcl_assert(false, "f.cc", 3);
}

TEST(Assertion, LogsAndAbortsUnlessTheEnvironmentSaysOtherwise) {
  std::string const second = "Assertion failure.\ngcl: f.cc:2\n";
  std::string const third = "Assertion failure.\ngcl: f.cc:3\n";
  for (char const* dont_log : {static_cast<char const*>(nullptr), "", "0"}) {
    for (char const* go_on : {static_cast<char const*>(nullptr), "", "0"}) {
      child_result const child = run_in_child(
          fail_assertions, {{"GCL_ASSERT_DONT_LOG", dont_log}, {"GCL_ASSERT_CONTINUE", go_on}});
      bool const logs = dont_log == nullptr || *dont_log == '\0';
      bool const goes_on = go_on != nullptr && *go_on != '\0';
      EXPECT_EQ(child.err, (logs ? second : "") + (goes_on ? third : ""));
      EXPECT_EQ(child.out, goes_on ? "went on\n" : "");
      EXPECT_EQ(child.signal, SIGABRT);
    }
  }
}

// ---- The status base

class Report : public GCL_StatusBase {
 public:
  GCL_String describe() const override { return "a report"; }
};

// Sees one message more.
class LongReport : public Report {
 public:
  using Report::messages;
  void messages(GCL_StringList& list) const override {
    Report::messages(list);
    list.Append("last");
  }
};

std::string collected(GCL_StatusBase const& status) {
  GCL_String text = "not empty";
  status.messages(text);
  return text.c_str();
}

TEST_F(StatusBase, CollectsWhatServicesPrintApartFromItsStack) {
  Report report;
  EXPECT_FALSE(report.has_messages());
  EXPECT_EQ(collected(report), "");
  EXPECT_FALSE(GCL_CHECK_STATUS(report, false));
  EXPECT_EQ(report.value(), 1001);
  EXPECT_EQ(report.get_message_stack(), nullptr);
  EXPECT_TRUE(report.has_message(6) && !report.has_message(0) && !report.has_message(4));
  report.clear();
  EXPECT_FALSE(report.has_messages() || report.has_message(6));
  EXPECT_EQ(report.value(), 1001);

  print(0, "A");
  print(4, "B");
  print(2, "other");
  report.add_message("own", 9);
  report.add_message("stack");
  EXPECT_EQ(took(), "other");
  EXPECT_TRUE(report.has_message(0) && report.has_message(4) && report.has_message(9));
  EXPECT_EQ(collected(report), "ownBA");
  report.clear();
  EXPECT_STREQ(report.error_message().c_str(), "stack");
  EXPECT_EQ(collected(LongReport()), "last");
}

TEST_F(StatusBase, GrabsAsTheStatusThatItIs) {
  Report report;
  report.grab_imsg_out();
  {
    Report inner;
    print(6, "collected");
    print(2, "passed on");
    EXPECT_EQ(collected(inner), "collected");
  }
  print(6, " and grabbed");
  report.release_imsg_out();
  EXPECT_STREQ(report.error_message().c_str(), "passed on and grabbed");
  EXPECT_FALSE(report.has_messages());
}

TEST_F(StatusBase, CopiesHaveCodeAndStackAndCollectForThemselves) {
  Report report;
  report.set(5);
  report.add_message("stack");
  print(6, "before");
  {
    Report copy(report), assigned;
    print(6, "dropped");
    assigned = report;
    for (Report* other : {&copy, &assigned}) {
      EXPECT_EQ(other->value(), 5);
      EXPECT_STREQ(other->error_message().c_str(), "stack");
      EXPECT_FALSE(other->has_messages() || other->has_message(6));
    }
    print(6, "new");
    EXPECT_EQ(collected(assigned), "new");
    assigned = *&assigned;
    EXPECT_EQ(collected(assigned), "");
    EXPECT_STREQ(assigned.error_message().c_str(), "stack");
  }
  print(6, "after");
  EXPECT_EQ(collected(report), "afterbefore");
}

TEST_F(StatusBase, WithoutMemoryForACollectorItIsEmpty) {
  Report source;
  auto const prepare = [] {
    auto report = std::make_unique<Report>();
    report->add_message("old", 6);
    return report;
  };
  auto const assign = [&](auto& report) { *report = source; };
  auto const check = [&](auto& report, bool failed) {
    if (failed) {
      report->add_message("lost", 6);
      EXPECT_FALSE(report->has_messages() || report->has_message(6));
      report->clear();
      EXPECT_EQ(collected(*report), "");
      GCL_StringList list(4);
      list.Append("replaced");
      report->messages(list);
      EXPECT_EQ(list.Length(), 0u);
      print(6, "for the source");
      EXPECT_EQ(collected(source), "for the source");
      source.clear();
      assign(report);
    }
    print(6, "again");
    EXPECT_EQ(collected(*report), "again");
  };
  EXPECT_GE(fail_each_allocation(prepare, assign, check), 1);
}

// ---- Debug levels

using levels = std::array<int, 712>;

// The level of each area: the highest that is enabled, of those that `spec` might name.
levels observed(GCL_Debug const& debug, levels const& expected) {
  levels result = expected;
  for (std::size_t i = 0; i < result.size(); ++i) {
    auto const area = static_cast<GCL_Debug::Discriminator>(i);
    int& level = result[i];
    bool const is_higher = level < INT_MAX && debug.is_enabled(area, GCL_Debug::Level{level + 1});
    if (is_higher || !debug.is_enabled(area, GCL_Debug::Level{level})) level = -1;
  }
  return result;
}

int number(std::string const& digits) {
  return static_cast<int>(std::min(std::strtod(digits.c_str(), nullptr), double{INT_MAX}));
}

// What the grammar says, item by item.
levels model(std::string const& spec) {
  regex_t item;
  regcomp(&item, "^([0-9]*)(-([0-9]*))?([.]([0-9]*))?", REG_EXTENDED);
  regmatch_t match[6];
  levels result = {};
  for (char const* p = spec.c_str();; p += match[0].rm_eo + 1) {
    regexec(&item, p, std::size(match), match, 0);
    auto const is_there = [&](int i) { return match[i].rm_so >= 0; };
    auto const value = [&](int i) { return number({p + match[i].rm_so, p + match[i].rm_eo}); };
    auto const area = [&](int i) { return static_cast<std::size_t>(std::min(711, value(i))); };
    std::size_t const last = area(is_there(2) ? 3 : 1);
    for (std::size_t i = area(1); i <= last; ++i) result[i] = is_there(4) ? value(5) : 1;
    if (p[match[0].rm_eo] == '\0') break;
  }
  regfree(&item);
  return result;
}

class Levels : public testing::Test {
 protected:
  void SetUp() override {
    unsetenv("MIROX_GCL_DEBUG");
    unsetenv("MIROX_GCL_DEBUG_FILE");
  }
};

TEST_F(Levels, ExamplesMeanWhatTheyShould) {
  std::string const forty(40, '9');
  struct {
    std::string spec;
    std::map<std::size_t, int> expected;
  } const examples[] = {{"", {{0, 1}}},
                        {"12", {{0, 0}, {12, 1}}},
                        {"5.0", {}},
                        {"1-4.3,9", {{1, 3}, {2, 3}, {3, 3}, {4, 3}, {9, 1}}},
                        {"5,", {{5, 1}, {0, 1}}},
                        {"9-3", {}},
                        {"-2", {{0, 1}, {1, 1}, {2, 1}}},
                        {"7-", {}},
                        {"2.", {}},
                        {"800", {{711, 1}}},
                        {"710-900.2", {{710, 2}, {711, 2}}},
                        {"5.2.3", {{5, 2}, {3, 1}}},
                        {"4294967296.4294967297", {{711, INT_MAX}}},
                        {forty + "-" + forty + "." + forty, {{711, INT_MAX}}},
                        {"+7", {{0, 1}, {7, 1}}},
                        {"\xB2\xFF 6", {{0, 1}, {6, 1}}}};
  for (auto const& [spec, named] : examples) {
    levels expected = {};
    for (auto const& [area, level] : named) expected[area] = level;
    EXPECT_EQ(model(spec), expected) << spec;
    GCL_Debug const debug(spec.c_str());
    EXPECT_EQ(observed(debug, expected), expected) << spec;
  }
}

TEST_F(Levels, RandomSpecificationsAgreeWithTheModel) {
  std::mt19937 random(20261122);
  std::string const alphabet = "0123456789012345678900--..., +x\t\x80\xFF";
  auto const below = [&](std::size_t n) { return random() % n; };
  for (int round = 0; round < 4000; ++round) {
    std::string spec;
    for (std::size_t n = below(16); n != 0; --n) spec += alphabet[below(alphabet.size())];
    GCL_Debug debug(nullptr);
    EXPECT_EQ(debug.set_levels(spec.c_str()), 0);
    levels const expected = model(spec);
    ASSERT_EQ(observed(debug, expected), expected) << spec;
  }
}

TEST_F(Levels, LongSpecificationsAndLaterOnesOverEarlierOnes) {
  setenv("MIROX_GCL_DEBUG", ("5.3,6.2," + std::string(100'000, '8') + ".3").c_str(), 1);
  GCL_Debug debug("5.1,8");
  unsetenv("MIROX_GCL_DEBUG");
  levels expected = {};
  expected[5] = expected[8] = 1;
  expected[6] = 2;
  expected[711] = 3;
  EXPECT_EQ(observed(debug, expected), expected);
  debug.set_levels((repeat("-711.2 ", 14'000) + std::string(100'000, '.')).c_str());
  expected.fill(2);
  expected[0] = 1;  // points in pairs, and an empty item at the end
  EXPECT_EQ(observed(debug, expected), expected);
}

TEST_F(Levels, AreasOutsideTheTableAreNeverEnabled) {
  GCL_Debug const debug("-999.9");
  for (int const area : {-1, 712, INT_MIN, INT_MAX}) {
    EXPECT_FALSE(debug.is_enabled(GCL_Debug::Discriminator{area}, GCL_Debug::Level{INT_MIN}));
  }
  EXPECT_TRUE(debug.is_enabled(GCL_Debug::last_area, GCL_Debug::Level{9}));
  EXPECT_TRUE(GCL_Debug(nullptr).is_enabled(GCL_Debug::general, GCL_Debug::Level{-1}));
}

// ---- Debug lines and traces

void skip_numbers(int count) {
  for (int i = 0; i < count; ++i) {
    GCL_CTRACE("never", "seen", GCL_Debug::Discriminator{712}, GCL_Debug::always);
  }
}

void next_token() {
  GCL_CTRACE("Lexer", "next", area_7, GCL_Debug::fine);
  int const token = 5;
  GCL_CTRACE_OUT("token=" << token);
}

void parse() {
  GCL_CTRACE("Parser", "run", area_7, GCL_Debug::coarse);
  next_token();
}

void parse_with_number_12() {
  skip_numbers(11);
  parse();
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

TEST(Trace, LinesAreWrittenWhereTheyAreWanted) {
  EXPECT_EQ(run_traced(parse_with_number_12, "7.2").err, parse_lines);
  EXPECT_EQ(run_traced(parse_with_number_12, nullptr).err, "");
  EXPECT_EQ(run_traced(parse_with_number_12, "").err, "");
  EXPECT_EQ(run_traced(parse_with_number_12, "7").err,
            "....DEBUG: >>[  12] Parser::run\n....DEBUG: <<[  12] Parser::run\n");
  EXPECT_EQ(run_traced(parse_with_number_12, "1").err,
            "....DEBUG: >>[   0] Static::begin\n....DEBUG: <<[   0] Static::begin\n"
            "....DEBUG: >>[  14] Static::end\n....DEBUG: <<[  14] Static::end\n");
}

TEST(Trace, FileTakesTheLinesOrTheyAreLost) {
  scratch_folder const folder;
  std::string const log = folder.file("log");
  std::ofstream(log) << repeat("an old line\n", 100);
  child_result const child = run_traced(parse_with_number_12, "7.2", log.c_str());
  EXPECT_EQ(child.err, "");
  EXPECT_EQ(content(log), parse_lines);
  for (std::string const& lost : {folder.file("missing/log"), std::string("/dev/full"), {}}) {
    child_result const loses = run_traced(parse_with_number_12, "7.2", lost.c_str());
    EXPECT_EQ(loses.out, "parsed\n") << lost;
    EXPECT_EQ(loses.err, "") << lost;
    EXPECT_EQ(loses.exit_code, 0) << lost;
  }
}

// Writes numbers in groups of one digit.
struct grouping : std::numpunct<char> {
  char do_thousands_sep() const override { return '\''; }
  std::string do_grouping() const override { return "\1"; }
};

void trace_with_odd_streams() {
  std::locale::global(std::locale(std::locale::classic(), new grouping));
  std::cerr.imbue(std::locale());
  std::cerr << std::hex << std::showbase << std::showpos << std::setfill('*') << std::left;
  skip_numbers(998);
  std::cerr << std::setw(40);
  GCL_CTRACE("A", "a", area_7, GCL_Debug::coarse);
  skip_numbers(11345);
  GCL_CTRACE_OUT("x");
  GCL_Ctrace("B", "b", area_7, GCL_Debug::coarse);
}

TEST(Trace, LinesDependOnNoStreamsStateAndNoLocale) {
  EXPECT_EQ(run_traced(trace_with_odd_streams, "7").err,
            "....DEBUG: >>[ 999] A::a\n"
            "....DEBUG:          A::a, x\n"
            "....DEBUG:   >>[12345] B::b\n"
            "....DEBUG:   <<[12345] B::b\n"
            "....DEBUG: <<[ 999] A::a\n");
}

int s_built = 0;
char const* build() { return ++s_built, "built"; }

void trace_by_the_rules() {
  std::ostringstream empty, text;
  text << "text";
  GCL_Debug::m_debug_ptr->output(text);
  {
    GCL_CTRACE("Off", "off", GCL_Debug::Discriminator{8}, GCL_Debug::coarse);
    GCL_CTRACE_OUT(build());
    GCL_Ctrace on("On", "on", area_7, GCL_Debug::always);
    GCL_Ctrace deeper("On", "deeper", area_7, GCL_Debug::Level{-1});
    gcl_ctrace_scope.output(text);
    deeper.output(empty);
    GCL_Debug::m_debug_ptr->output(empty);
    GCL_Ctrace deepest("On", "deepest", area_7, GCL_Debug::always);
    GCL_Debug::m_debug_ptr->output(text);
  }
  {
    GCL_CTRACE("Entry", "only", GCL_Debug::Discriminator{9}, GCL_Debug::coarse);
    GCL_Debug::m_debug_ptr->set_levels("9.0");
    GCL_Ctrace("Too", "deep", area_7, GCL_Debug::always);
    GCL_Ctrace exit_only("Exit", "only", GCL_Debug::Discriminator{10}, GCL_Debug::coarse);
    GCL_Debug::m_debug_ptr->set_levels("10");
  }
  { GCL_Debug::_DebugInit const another; }
  GCL_Ctrace("At", "last", area_7, GCL_Debug::always);
  std::printf("%d", s_built);
}

TEST(Trace, DepthFollowsTheLinesThatWereWritten) {
  child_result const child = run_traced(trace_by_the_rules, "9");
  EXPECT_EQ(child.out, "0");
  EXPECT_EQ(child.err,
            "....DEBUG: text\n"
            "....DEBUG: >>[   2] On::on\n"
            "....DEBUG:   >>[   3] On::deeper\n"
            "....DEBUG:            Off::off, text\n"
            "....DEBUG:            On::deeper, \n"
            "....DEBUG:   \n"
            "....DEBUG:     >>[   4] On::deepest\n"
            "....DEBUG:     text\n"
            "....DEBUG:     <<[   4] On::deepest\n"
            "....DEBUG:   <<[   3] On::deeper\n"
            "....DEBUG: <<[   2] On::on\n"
            "....DEBUG: >>[   5] Entry::only\n"
            "....DEBUG:   >>[   6] Too::deep\n"
            "....DEBUG:   <<[   6] Too::deep\n"
            "....DEBUG: <<[   7] Exit::only\n"
            "....DEBUG: >>[   8] At::last\n"
            "....DEBUG: <<[   8] At::last\n");
}

// ---- Indentation

void indent_two_blocks() {
  GCL_Indent const outer("Outer");
  GCL_Indent const inner("Inner");
}

TEST(FirstIndent, FirstObjectReportsItsVariablesAndBlocksNest) {
  child_result child = run_in_child(indent_two_blocks, {{"GCL_INDENT_STRING", nullptr},
                                                        {"GCL_INDENT_HEADER_FORMAT", nullptr},
                                                        {"GCL_INDENT_FOOTER_FORMAT", nullptr}});
  EXPECT_EQ(child.err, "\nBEGIN Outer\n\n BEGIN Inner\n END Inner\nEND Outer\n");
  EXPECT_EQ(child.out,
            "Did not find GCL_INDENT_STRING environment variable\n"
            "Did not find GCL_INDENT_HEADER_FORMAT environment variable\n"
            "Did not find GCL_INDENT_FOOTER_FORMAT environment variable\n");

  child = run_in_child(indent_two_blocks, {{"GCL_INDENT_STRING", "%d "},
                                           {"GCL_INDENT_HEADER_FORMAT", ""},
                                           {"GCL_INDENT_FOOTER_FORMAT", "</%s>"}});
  EXPECT_EQ(child.err, "\n\n%d </Inner>\n</Outer>\n");
  EXPECT_EQ(child.out,
            "Got GCL_INDENT_STRING: %d \n"
            "Got GCL_INDENT_HEADER_FORMAT: \n"
            "Got GCL_INDENT_FOOTER_FORMAT: </%s>\n");
}

// With settings of its own and the standard streams' output caught.
class Indent : public testing::Test {
 protected:
  Indent() : m_cout(std::cout.rdbuf(m_out.rdbuf())), m_cerr(std::cerr.rdbuf(m_err.rdbuf())) {
    configure(" ", "BEGIN %s", "END %s");
  }
  ~Indent() override {
    std::cout.rdbuf(m_cout);
    std::cerr.rdbuf(m_cerr);
  }
  static void configure(std::string const& indent, std::string const& header,
                        std::string const& footer) {
    setenv("GCL_INDENT_STRING", indent.c_str(), 1);
    setenv("GCL_INDENT_HEADER_FORMAT", header.c_str(), 1);
    setenv("GCL_INDENT_FOOTER_FORMAT", footer.c_str(), 1);
    GCL_Indent::initialize_indent();
  }
  // How the title is formatted; header and footer follow the same rules.
  static std::string formatted(std::string const& format, std::string const& title) {
    configure(" ", format, "-");
    std::string const header = GCL_Indent(title.c_str()).header();
    configure(" ", "-", format);
    EXPECT_EQ(GCL_Indent(title.c_str()).footer(), header);
    return header;
  }
  static std::string indent_at(int depth, std::string const& step) {
    configure(step, "", "");
    std::deque<GCL_Indent> blocks;
    for (int i = 0; i < depth; ++i) blocks.emplace_back("block");
    return GCL_Indent(nullptr).indent();
  }

  std::ostringstream m_out, m_err;

 private:
  std::streambuf *m_cout, *m_cerr;
};

TEST_F(Indent, ObjectsWithoutTitleOnlyIndent) {
  {
    GCL_Indent const null(nullptr), empty("");
    EXPECT_STREQ(null.header(), "");
    EXPECT_STREQ(empty.footer(), "");
    EXPECT_STREQ(empty.indent(), "");
  }
  EXPECT_EQ(m_err.str(), "");
  GCL_Indent const a("a"), b("b"), c("c");
  std::ostringstream os;
  os << std::setw(9) << GCL_Indent(nullptr) << c;
  EXPECT_EQ(os.str(), "      ");
  char const* const header = a.header();
  EXPECT_STREQ(b.header(), "BEGIN b");
  EXPECT_STREQ(header, "BEGIN b");
  EXPECT_STREQ(a.footer(), "END a");
}

TEST_F(Indent, FormatsOfTheEnvironmentAreFilledByHand) {
  EXPECT_EQ(formatted("%n%s%s%99999d", "T"), "%nT%s%99999d");
  EXPECT_EQ(formatted("%%s %% %s %%%", "T"), "%s % T %%");
  EXPECT_EQ(formatted("%5s%-s%", "T"), "%5s%-s%");
  EXPECT_EQ(formatted("%s", "%s%n%%"), "%s%n%%");
  EXPECT_EQ(formatted("", "T"), "");
  EXPECT_EQ(formatted("%s", ""), "");
}

TEST_F(Indent, LongTextsEndAtAWholeCharacter) {
  std::string const long_text(5000, 'x'), e_acute = "\xC3\xA9", clef = "\xF0\x9D\x84\x9E";
  EXPECT_EQ(formatted(long_text, "T"), std::string(1023, 'x'));
  EXPECT_EQ(formatted("%s!", long_text), std::string(1023, 'x'));
  EXPECT_EQ(formatted("%s", std::string(5000, '\x80')), std::string(1023, '\x80'));
  EXPECT_EQ(formatted(std::string(1022, 'x') + "%s!%%", e_acute), std::string(1022, 'x'));
  EXPECT_EQ(formatted(std::string(1022, 'x') + e_acute + "%%", "T"), std::string(1022, 'x'));
  for (std::size_t room = 0; room < 6; ++room) {
    std::string const filler(1023 - room, 'x');
    EXPECT_EQ(formatted("%s", filler + clef + clef), filler + (room < 4 ? "" : clef)) << room;
  }
  EXPECT_EQ(indent_at(2, long_text), std::string(1023, 'x'));
  EXPECT_EQ(indent_at(6, repeat(e_acute, 100)), repeat(e_acute, 511));
  EXPECT_EQ(indent_at(3, " "), "   ");
  EXPECT_EQ(indent_at(3, ""), "");
}

TEST_F(Indent, BodiesPrintTheirCountInDecimal) {
  GCL_String const text("text");
  std::vector<GCL_String> const sharers(1233, text);
  std::ostringstream os;
  os.imbue(std::locale(std::locale::classic(), new grouping));
  os << std::hex << std::showbase << std::setw(40);
  os << GCL_HandleBase();
  GCL_Indent const outer("Outer"), inner("Inner");
  os << static_cast<GCL_HandleBase const&>(text);
  EXPECT_EQ(os.str(), "  Reference Count: 1234\n");
}

void print_a_body() { std::cerr << static_cast<GCL_HandleBase const&>(GCL_String("text")); }

TEST(FirstIndent, PrintingABodyMayBeTheFirstUse) {
  child_result const child = run_in_child(print_a_body, {{"GCL_INDENT_STRING", "-"}});
  EXPECT_EQ(child.err, "Reference Count: 1\n");
  EXPECT_EQ(child.out.find("Got GCL_INDENT_STRING: -\n"), 0u);
}

}  // namespace
