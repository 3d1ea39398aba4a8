// Line ends, style characters and stream input, each beside the single steps that define it.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "miroxgcl/gcl_string.h"
#include "miroxplat/imsg.h"
#include "support/failing_allocator.h"

namespace {

using namespace std::string_literals;

constexpr unsigned int npos = GCL_String::npos;

std::string text(GCL_String const& s) { return {s.c_str(), s.length()}; }

GCL_String to_string(std::string const& t) {
  return {t.data(), static_cast<unsigned int>(t.size())};
}

unsigned int capacity(GCL_String const& s) {
  return s.body() != nullptr ? s.body()->capacity() : 0;
}

// Chance, the same in every run.
class Random {
 public:
  explicit Random(unsigned int seed) : m_engine(seed) {}
  unsigned int below(unsigned int n) { return static_cast<unsigned int>(m_engine() % n); }
  template <class T>
  T one_of(std::initializer_list<T> choices) {
    return choices.begin()[below(static_cast<unsigned int>(choices.size()))];
  }

 private:
  std::mt19937 m_engine;
};

// `percent` of the bytes are from `rare`, the others letters.
std::string random_text(Random& random, std::size_t size, std::string const& rare,
                        unsigned int percent) {
  std::string result;
  while (result.size() < size) {
    bool const is_rare = random.below(100) < percent;
    result += is_rare ? rare[random.below(static_cast<unsigned int>(rare.size()))]
                      : static_cast<char>('a' + random.below(3));
  }
  return result;
}

// --- Line ends: the definition by single edits.

// An edit of a string, and whether it moved the string to another body.
template <class Edit>
bool moves(GCL_String& s, Edit edit) {
  GCL_StringRep const* const before = s.body();
  edit(s);
  return s.body() != before;
}

bool from_pc_by_steps(GCL_String& s) {
  GCL_String const cr("\r");
  bool moved = false;
  for (unsigned int i = 0; (i = s.find(cr, i)) != npos;) {
    moved |= moves(s, [=](GCL_String& t) { t.remove(i, 1); });
  }
  return moved;
}

bool to_pc_by_steps(GCL_String& s) {
  GCL_String const lf("\n");
  GCL_String const cr_lf("\r\n");
  bool moved = from_pc_by_steps(s);
  for (unsigned int i = 0; (i = s.find(lf, i)) != npos; i += 2) {
    moved |= moves(s, [&](GCL_String& t) { t.replace(i, 1, cr_lf, npos); });
  }
  return moved;
}

// The shapes that a string's body may have.
enum class Shape { tight, full, roomy, shared };

// The string and, when it is shared, its other holder.
struct Subject {
  Subject(std::string const& t, Shape shape, unsigned int room) : string(to_string(t)) {
    if (shape == Shape::full) {
      while (string.length() + 1 + room < capacity(string)) string.append("x\n", 1 + room % 2);
    }
    if (shape == Shape::roomy) string.reserve(string.length() + room);
    if (shape == Shape::shared) other = string;
  }

  GCL_String string;
  GCL_String other;
};

// What an edit left behind, for comparing and printing.
std::string outcome(Subject const& subject, bool moved) {
  GCL_String const& s = subject.string;
  std::ostringstream os;
  os << "capacity " << capacity(s) << (moved ? ", moved" : "") << ", holders "
     << (s.body() != nullptr ? s.body()->reference_count() : 0) << ", other \""
     << text(subject.other) << "\", text \"" << text(s) << '"';
  return os.str();
}

void expect_same_conversions(std::string const& t, Shape shape, unsigned int room) {
  Subject ours(t, shape, room);
  Subject steps(t, shape, room);
  std::string const start = text(ours.string);
  bool const has_pair = ours.string.find("\n\r") != npos || ours.string.find("\r\n") != npos;
  EXPECT_EQ(ours.string.is_pc_mode(), has_pair) << start;

  bool const moved_from = moves(ours.string, [](GCL_String& s) { s.from_pc_mode(); });
  bool const moved_from_by_steps = from_pc_by_steps(steps.string);
  EXPECT_EQ(outcome(ours, moved_from), outcome(steps, moved_from_by_steps)) << "from " << start;

  Subject ours_to(t, shape, room);
  Subject steps_to(t, shape, room);
  bool const moved_to = moves(ours_to.string, [](GCL_String& s) { s.to_pc_mode(); });
  bool const moved_to_by_steps = to_pc_by_steps(steps_to.string);
  EXPECT_EQ(outcome(ours_to, moved_to), outcome(steps_to, moved_to_by_steps)) << "to " << start;
}

TEST(LineEnds, AreConvertedAsBySingleEdits) {
  Random random(4);
  for (int i = 0; i != 20000 && !HasFailure(); ++i) {
    std::string const rare = random.one_of({"\r\n"s, "\r"s, "\n"s, "\r\n\0"s, "\r\n\n\n\xC3\xA9"s});
    std::size_t const size = random.below(random.one_of({4u, 40u, 400u}));
    std::string const t = random_text(random, size, rare, random.one_of({2u, 30u, 100u}));
    auto const shape = random.one_of({Shape::tight, Shape::full, Shape::roomy, Shape::shared});
    expect_same_conversions(t, shape, random.below(random.one_of({3u, 300u})));
  }
}

TEST(LineEnds, OfAnEmptyTextStayAsTheyAre) {
  GCL_String const three[] = {GCL_String(""), GCL_String(), GCL_String(GCL_String(), 0)};
  for (GCL_String const& empty : three) {
    GCL_String s(empty);
    EXPECT_FALSE(s.is_pc_mode());
    EXPECT_EQ(s.from_pc_mode().to_pc_mode().body(), empty.body());
  }
}

TEST(LineEnds, ConversionWithoutMemoryLeavesTheOldValue) {
  for (std::string const& t : {"\n\r\na\rb\n"s, std::string(9, '\n') + "\r"s}) {
    for (Shape const shape : {Shape::tight, Shape::full, Shape::shared}) {
      std::size_t const held = failing_allocator::live_blocks();
      int const failures =
          fail_each_allocation([&] { return Subject(t, shape, 0); },
                               [](Subject& subject) { subject.string.to_pc_mode(); },
                               [&](Subject const& subject, bool failed) {
                                 Subject const before(t, shape, 0);
                                 if (failed) {
                                   EXPECT_EQ(outcome(subject, false), outcome(before, false));
                                 }
                               });
      EXPECT_EQ(failures, shape == Shape::tight ? 0 : 2);
      EXPECT_EQ(failing_allocator::live_blocks(), held);
    }
  }
}

TEST(LineEnds, TakeTimeInProportionToTheText) {
  auto const start = std::chrono::steady_clock::now();
  std::string lines;
  while (lines.size() < 10'000'000) lines += std::string(78, 'x') + "\r\n";
  GCL_String s = to_string(lines);
  s.from_pc_mode();
  EXPECT_EQ(s.length(), lines.size() / 80 * 79);
  s.to_pc_mode();             // to a new body
  s.reserve(s.length() * 2);  // and in place
  s.from_pc_mode().to_pc_mode();
  EXPECT_TRUE(text(s) == lines);
  GCL_String feeds('\n', 10'000'000);
  EXPECT_EQ(feeds.to_pc_mode().length(), 20'000'000u);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

// --- Style characters.

TEST(Formatting, IsRemovedInANewBodyOfTheOldSize) {
  Random random(5);
  for (int i = 0; i != 5000 && !HasFailure(); ++i) {
    std::string const rare = random.one_of({"\x1B[;m"s, "\x1B\0"s, "\x1B[1m\xC3\x9B"s});
    std::string const t =
        random_text(random, random.below(300), rare, random.one_of({0u, 5u, 60u}));
    Subject subject(t, random.one_of({Shape::tight, Shape::full, Shape::shared}), random.below(9));
    std::string const before = text(subject.string);
    std::vector<char> stripped(before.size() + 1);
    imsg_strip_style_chars(stripped.data(), before.c_str());
    GCL_StringRep const model(static_cast<unsigned int>(before.size() + 1), 1, nullptr);

    EXPECT_TRUE(moves(subject.string, [](GCL_String& s) { s.remove_formatting(); }));
    EXPECT_EQ(text(subject.string), stripped.data());
    EXPECT_EQ(capacity(subject.string), model.capacity());
    EXPECT_EQ(text(subject.other), subject.other.length() != 0 ? before : "");
  }
  for (GCL_String s : {GCL_String(""), GCL_String()}) {
    EXPECT_EQ(capacity(s.remove_formatting()), 8u);
    EXPECT_EQ(s.length(), 0u);
  }
}

// --- Streams: the definition by single characters.

// Gathers characters by 32; what it holds at its end goes into the string, however that comes.
class Chunk {
 public:
  explicit Chunk(GCL_String& s) : m_string(s) {}
  Chunk(Chunk const&) = delete;
  Chunk& operator=(Chunk const&) = delete;
  ~Chunk() { m_string.append(m_bytes.data(), static_cast<unsigned int>(m_bytes.size())); }

  void add(char c) {
    if (m_bytes.size() == 32) {
      m_string.append(m_bytes.data(), 32);
      m_bytes.clear();
    }
    m_bytes += c;
  }

 private:
  GCL_String& m_string;
  std::string m_bytes;
};

constexpr int word = -1;  // in the place of a line's delimiter

bool ends(int delim, char c) {
  return delim == word ? std::string(" \t\n\v\f\r").find(c) != std::string::npos
                       : c == static_cast<char>(delim);
}

std::istream& read_by_steps(std::istream& is, GCL_String& s, int delim) {
  s.assign("", 0);
  if (is.rdstate() == std::ios_base::eofbit) is.setstate(std::ios_base::failbit);
  if (is.good() && delim == word && (is.flags() & std::ios_base::skipws) != 0) is >> std::ws;
  if (!is.fail()) {
    Chunk chunk(s);
    for (char c; is.get(c);) {
      if (ends(delim, c)) {
        if (delim == word) is.putback(c);
        break;
      }
      chunk.add(c);
    }
  }
  if (is.eof() && s.length() != 0) is.clear();
  return is;
}

std::istream& read(std::istream& is, GCL_String& s, int delim) {
  return delim == word ? is >> s : getline(is, s, static_cast<char>(delim));
}

struct SourceError {};

// A buffer that hands out `step` bytes at a time, or when that is 0 has no get area and gives
// single characters; at `throws_at` it throws once.
class Source : public std::streambuf {
 public:
  Source(std::string t, std::size_t step, std::size_t throws_at)
      : m_text(std::move(t)), m_step(step), m_throws_at(throws_at) {}

 protected:
  int_type underflow() override {
    if (gptr() != nullptr) m_pos = static_cast<std::size_t>(gptr() - eback());
    if (m_pos == m_throws_at) {
      m_throws_at = std::string::npos;
      throw SourceError();
    }
    std::size_t const end = std::min({m_text.size(), m_pos + m_step, m_throws_at});
    if (m_step != 0) setg(&m_text[0], &m_text[0] + m_pos, &m_text[0] + end);
    return m_pos == m_text.size() ? traits_type::eof() : traits_type::to_int_type(m_text[m_pos]);
  }

  int_type uflow() override {
    int_type const c = underflow();
    if (c == traits_type::eof()) return c;
    if (m_step == 0) ++m_pos;
    if (m_step != 0) gbump(1);
    return c;
  }

  int_type pbackfail(int_type c) override {
    if (m_step != 0 || m_pos == 0) return traits_type::eof();
    --m_pos;
    return c;
  }

 private:
  std::string m_text;
  std::size_t m_step;
  std::size_t m_throws_at;
  std::size_t m_pos = 0;
};

// Reads by each of `delims` in turn and tells of each read what it showed; then what was left.
template <class Read>
std::string trace(std::istream& is, Read read_one, std::vector<int> const& delims) {
  std::ostringstream log;
  GCL_String s("old");
  GCL_String other(s);
  for (int const delim : delims) {
    char const* end = "";
    try {
      if (&read_one(is, s, delim) != &is) end = ", another stream";
    } catch (std::ios_base::failure const&) {
      end = ", throws";
    } catch (SourceError const&) {
      end = ", passes on";
    }
    log << '"' << text(s) << "\", capacity " << capacity(s) << ", state " << is.rdstate() << end
        << ", other \"" << text(other) << "\"\n";
    if (s.length() % 3 == 0) other = s;  // the next read finds it shared
  }
  is.exceptions(std::ios_base::goodbit);
  is.clear();
  log << "left: " << is.rdbuf();
  log.clear();
  log << is.rdbuf();  // what follows where the source threw
  return log.str();
}

// What a stream is like before it is read.
struct StreamSetup {
  std::ios_base::iostate throws_on;
  std::ios_base::iostate state;
  bool skips_space;
};

template <class Read>
std::string trace(std::streambuf* buffer, Read read_one, StreamSetup const& setup,
                  std::vector<int> const& delims) {
  std::istream is(buffer);
  is.setstate(setup.state);
  if (!setup.skips_space) is >> std::noskipws;
  try {
    is.exceptions(setup.throws_on);
  } catch (std::ios_base::failure const&) {  // it is set all the same
  }
  return trace(is, read_one, delims);
}

TEST(StreamInput, ReadsAsBySingleCharacters) {
  constexpr auto good = std::ios_base::goodbit;
  constexpr auto eof = std::ios_base::eofbit;
  constexpr auto fail = std::ios_base::failbit;
  constexpr auto bad = std::ios_base::badbit;
  Random random(6);
  for (int i = 0; i != 40000 && !HasFailure(); ++i) {
    std::string const rare = random.one_of({" \n"s, "\n\xFF"s, " \t\n\v\f\r\0\xFF\x85\xA0"s});
    std::string const t = random_text(random, random.below(random.one_of({5u, 50u, 600u})), rare,
                                      random.one_of({1u, 2u, 5u, 40u}));
    StreamSetup const setup = {random.one_of({good, good, eof, fail, bad, eof | fail | bad}),
                               random.one_of({good, good, good, good, eof, fail, bad}),
                               random.below(4) != 0};
    std::vector<int> delims(1 + random.below(6));
    for (int& delim : delims) delim = random.one_of({word, word, int{'\n'}, 0xFF, 0});

    std::size_t const step = random.below(3) == 0 ? 0 : 1 + random.below(70);
    std::size_t const throws_at = random.below(3) == 0
                                      ? random.below(static_cast<unsigned int>(t.size()) + 1)
                                      : std::string::npos;
    Source ours(t, step, throws_at);
    Source steps(t, step, throws_at);
    EXPECT_EQ(trace(&ours, read, setup, delims), trace(&steps, read_by_steps, setup, delims))
        << "step " << step << ", throws at " << throws_at << ", mask " << setup.throws_on
        << ", entry state " << setup.state << ", text " << t;

    std::stringbuf our_text(t);
    std::stringbuf their_text(t);
    EXPECT_EQ(trace(&our_text, read, setup, delims),
              trace(&their_text, read_by_steps, setup, delims));
  }
}

TEST(StreamInput, ReadsFiles) {
  std::string const name = testing::TempDir() + "miroxgcl_text_test.tmp";
  Random random(7);
  std::string const t = random_text(random, 100'000, " \n\0\xFF"s, 2);
  std::ofstream(name, std::ios_base::binary) << t;
  std::vector<int> delims;
  for (int i = 0; i != 2000; ++i) delims.push_back(random.one_of({word, int{'\n'}}));
  std::ifstream ours(name, std::ios_base::binary);
  std::ifstream steps(name, std::ios_base::binary);
  EXPECT_TRUE(trace(ours, read, delims) == trace(steps, read_by_steps, delims));
  std::remove(name.c_str());
}

TEST(StreamInput, FlushesTheTiedStreamBeforeItReads) {
  struct Sink : std::stringbuf {
    int sync() override { return ++flushes, 0; }
    int flushes = 0;
  };
  Sink sink;
  std::ostream out(&sink);
  std::istringstream in("line\nword");
  in.tie(&out);
  GCL_String s;
  EXPECT_TRUE(getline(in, s));
  EXPECT_EQ(sink.flushes, 1);
  EXPECT_TRUE(in >> s);
  EXPECT_GE(sink.flushes, 2);
}

TEST(StreamInput, WithoutMemoryLeavesWhatWasRead) {
  struct Reading {
    std::stringstream stream{std::string(500, 'x') + "\n"};
    GCL_String line;
  };
  std::size_t const held = failing_allocator::live_blocks();
  int const failures = fail_each_allocation(
      [] { return Reading(); }, [](Reading& r) { getline(r.stream, r.line); },
      [](Reading const& r, bool failed) { EXPECT_EQ(r.line.length(), failed ? 0u : 500u); });
  EXPECT_EQ(failures, 2);
  EXPECT_EQ(failing_allocator::live_blocks(), held);
}

TEST(StreamOutput, WritesTheBytesAndNothingElse) {
  std::ostringstream os;
  os.width(20);
  os.fill('*');
  os << GCL_String("a\0b", 3) << GCL_String() << GCL_String("") << GCL_String("\xFF");
  EXPECT_EQ(os.str(), "a\0b\xFF"s);
  EXPECT_EQ(os.width(), 20);
}

}  // namespace
