// The library's strings and lists in other people's libraries, as their users write: GoogleTest and
// GoogleMock, and those of Qt, Boost, nlohmann's json, {fmt} and spdlog that are installed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "miroxgcl/gcl.h"
#ifdef WITH_QT
#include <QByteArray>
#include <QDebug>
#include <QHash>
#include <QSet>
#endif
#ifdef WITH_BOOST
#include <boost/algorithm/string.hpp>
#include <boost/functional/hash.hpp>
#include <boost/lexical_cast.hpp>
#include <boost/unordered_map.hpp>
#endif
#ifdef WITH_JSON
#include <nlohmann/json.hpp>
#endif
#ifdef WITH_FMT
#include <fmt/ranges.h>

#include "miroxgcl/gcl_fmt.h"
#endif
#ifdef WITH_SPDLOG
#include <spdlog/sinks/ostream_sink.h>
#include <spdlog/spdlog.h>
#endif

namespace {

using namespace std::literals;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Eq;
using testing::HasSubstr;
using testing::PrintToString;
using testing::StrEq;

TEST(GoogleTest, PrintsTextsAndItems) {
  EXPECT_EQ(PrintToString(GCL_String("one")), "\"one\"");
  EXPECT_EQ(PrintToString(GCL_Pathname("/one")), "\"/one\"");
  EXPECT_EQ(PrintToString(GCL_StringList{"a", "b"}), "{ \"a\", \"b\" }");
  EXPECT_EQ(PrintToString(GCL_IntegerList{1, 2}), "{ 1, 2 }");
  EXPECT_EQ(PrintToString(LX_TUnbounded<int>{1, 2}), "{ 1, 2 }");
}

TEST(GoogleMock, MatchesTextsAndLists) {
  GCL_String const s("one two");

  EXPECT_THAT(s, StrEq("one two"));
  EXPECT_THAT(s, Eq("one two"));
  EXPECT_THAT(s, HasSubstr("two"));
  EXPECT_THAT(s.str(), EndsWith("two"));  // StartsWith and EndsWith take std::string only
  EXPECT_THAT(split(s, " "), ElementsAre("one", StrEq("two")));
  EXPECT_THAT((GCL_IntegerList{3, 1}), ElementsAre(3, 1));
  EXPECT_THAT((GCL_IntegerList{3, 1}), Contains(1));
}

#ifndef WITH_QT
TEST(Qt, IsNotInstalled) { GTEST_SKIP(); }
#else
TEST(Qt, HashesTexts) {
  QHash<GCL_String, int> const numbers{{"one", 1}, {"two", 2}};
  QSet<GCL_String> const set{"one", "two", "one"};

  EXPECT_EQ(numbers["two"], 2);
  EXPECT_EQ(set.size(), 2);
}

TEST(Qt, WritesTextsForDebugging) {
  QString out;
  QDebug(&out) << GCL_String("one") << 2 << QList<GCL_String>{"a", "b"};
  EXPECT_EQ(out.toStdString(), "one 2 QList(a, b) ");
}

TEST(Qt, ConvertsToByteArraysAndBack) {
  GCL_String const s("a\0\xc3\xa4"s);
  QByteArray const bytes(s.data(), qsizetype(s.size()));

  EXPECT_EQ(bytes.size(), 4);
  EXPECT_EQ(GCL_String(bytes.data(), bytes.size()), s);
  EXPECT_EQ(GCL_String(QString::fromUtf8(s).toStdString()), s);
}
#endif

#ifndef WITH_BOOST
TEST(Boost, IsNotInstalled) { GTEST_SKIP(); }
#else
TEST(Boost, HashesTexts) {
  boost::unordered_map<GCL_String, int> const numbers{{"one", 1}, {"two", 2}};
  EXPECT_EQ(numbers.at("two"), 2);
  EXPECT_EQ(boost::hash<GCL_String>()("one"), hash_value(GCL_String("one")));
}

TEST(Boost, AppliesItsAlgorithms) {
  GCL_String const s(" one,two ");
  std::vector<GCL_String> pieces;

  EXPECT_THAT(boost::split(pieces, s, boost::is_any_of(",")), ElementsAre(" one", "two "));
  EXPECT_EQ(boost::trim_copy(s), "one,two");
  EXPECT_EQ(boost::to_upper_copy(s), " ONE,TWO ");
  EXPECT_TRUE(boost::icontains(s, "ONE") && boost::ends_with(s, " "));
  EXPECT_EQ(boost::replace_all_copy(s.str(), "one", "1"),
            " 1,two ");  // to write needs a std::string
  EXPECT_EQ(boost::lexical_cast<int>(GCL_String("42")), 42);
  EXPECT_EQ(boost::lexical_cast<GCL_String>(42), "42");
  EXPECT_THROW(boost::lexical_cast<GCL_String>("two words"), boost::bad_lexical_cast);
}
#endif

#ifndef WITH_JSON
TEST(Json, IsNotInstalled) { GTEST_SKIP(); }
#else
using nlohmann::json;

TEST(Json, HoldsTextsAndHandsThemOut) {
  GCL_String const key("key");
  json document = {{"key", "one"}};

  EXPECT_EQ(document[key].get<GCL_String>(), "one");
  EXPECT_EQ(document.at(key), "one");
  document[key] = GCL_String("two");
  EXPECT_TRUE(document.contains(key) && document["key"].is_string());
  EXPECT_EQ(json::parse(GCL_String("[\"a\"]")).get<std::vector<GCL_String> >().front(), "a");
  EXPECT_EQ((document.get<std::map<GCL_String, GCL_String> >()[key]), "two");
}

TEST(Json, IsComparedWithTexts) {
  GCL_String const one("one");
  json const same = "one", other = "two", number = 1;

  EXPECT_TRUE(same == one && one == same);
  EXPECT_TRUE(other != one && one != number);
  EXPECT_FALSE(one == other || number == one || same != one);
}
#endif

#ifndef WITH_FMT
TEST(Fmt, IsNotInstalled) { GTEST_SKIP(); }
#else
TEST(Fmt, FormatsTextsAndPathnames) {
  GCL_String const s("one");
  GCL_String written;

  EXPECT_EQ(fmt::format("{:>5}|{}|{:.2}", s, s, GCL_Pathname(s)), "  one|one|on");
  EXPECT_EQ(fmt::format("{}", fmt::join(GCL_StringList{"a", "b"}, "-")), "a-b");
  fmt::format_to(std::back_inserter(written), "{} {}", s, 2);
  EXPECT_EQ(written, "one 2");
}
#endif

#ifndef WITH_SPDLOG
TEST(Spdlog, IsNotInstalled) { GTEST_SKIP(); }
#else
TEST(Spdlog, LogsTexts) {
  std::ostringstream out;
  spdlog::logger log("log", std::make_shared<spdlog::sinks::ostream_sink_st>(out));
  log.set_pattern("%v");

  log.info("<{:>5}>", GCL_String("one"));
  log.info(GCL_String("{}"));

  EXPECT_EQ(out.str(), "<  one>\n{}\n");
}
#endif

}  // namespace
