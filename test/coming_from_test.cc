// What doc/coming-from.md says: each row of its tables is run, its columns on the same values.
#include <gtest/gtest.h>

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"  // g++ 12 says it of its own <regex>
#endif

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <map>
#include <optional>
#include <regex>
#include <sstream>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "miroxgcl/gcl.h"
#ifdef WITH_QT
#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QList>
#include <QMap>
#include <QSet>
#endif

namespace {

#if __cplusplus > 201703L
static_assert(std::random_access_iterator<LX_TDynamic<int>::iterator>);
static_assert(std::random_access_iterator<LX_TCollection<int>::const_iterator>);
static_assert(std::random_access_iterator<GCL_StringList::iterator>);
static_assert(std::bidirectional_iterator<LX_TUnbounded<int>::iterator>);
#endif

template <class List>
auto list_text(List const& items, int)
    -> std::enable_if_t<std::is_same_v<decltype(*items.begin()), int const&>,
                        std::optional<std::string>> {
  std::string text;
  for (int const item : items) text += std::to_string(item) + ' ';
  return text;
}
template <class Other>
std::optional<std::string> list_text(Other const&, long) {
  return std::nullopt;
}

// A value as text; nothing for what has none, as an iterator.
template <class Value>
std::optional<std::string> text_of(Value const& value) {
  if constexpr (std::is_convertible_v<Value const&, char const*>) {
    return std::string(static_cast<char const*>(value));
  } else if constexpr (std::is_convertible_v<Value const&, std::string_view>) {
    return std::string(std::string_view(value));
  } else if constexpr (std::is_same_v<Value, bool>) {
    return value ? "true" : "false";
  } else if constexpr (std::is_integral_v<Value>) {
    bool const none = value == static_cast<Value>(-1) || std::size_t(value) == GCL_String::npos;
    return none ? "nothing found" : std::to_string(value);
  } else {
    return list_text(value, 0);
  }
}

struct Outcome {
  std::optional<std::string> result;   // what the code returned or threw
  std::optional<std::string> subject;  // what it left
};

template <class Subject, class Code>
Outcome outcome(Subject const& subject, Code const& code) {
  try {
    if constexpr (std::is_void_v<decltype(code())>) {
      code();
      return {std::nullopt, text_of(subject)};
    } else {
      std::optional<std::string> result = text_of(code());
      return {std::move(result), text_of(subject)};
    }
  } catch (std::exception const& e) {
    return {e.what(), text_of(subject)};
  }
}

void expect_same(int line, Outcome (*theirs)(), Outcome (*ours)()) {
  Outcome const expected = theirs(), actual = ours();
  EXPECT_EQ(actual.subject, expected.subject) << "doc/coming-from.md:" << line;
  if (!actual.result || !expected.result) return;  // one of them returns nothing to compare
  EXPECT_EQ(*actual.result, *expected.result) << "doc/coming-from.md:" << line;
}

#pragma GCC diagnostic ignored "-Wunused-variable"
TEST(ComingFrom, EachRowDoesTheSameInItsColumns) {
#include "coming_from_rows.inc"
}

}  // namespace
