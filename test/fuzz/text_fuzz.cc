// Line ends and stream input, each against the single steps that define it: the value, the body's
// room and holders, the stream's state and where it stands.
#include <algorithm>
#include <istream>

#include "fuzz/fuzz_input.h"
#include "miroxgcl/gcl_string.h"

namespace {

// Shows `step` bytes at a time, or with 0 hands out single ones. Throws at one place.
struct source : std::streambuf {
  void open(fuzz_input& input) {
    text = input.number(1) == 0 ? input.text(255) : input.text(255, {"\r\n\n \0abcdefg\xFF", 13});
    step = input.number(1) == 0 ? 0 : input.number(70);
    throws_at = input.number(511);
    setg(text.data(), text.data(), text.data());
  }
  int underflow() override {
    if (position() == throws_at) throw throws_at;
    setg(eback(), gptr(), eback() + std::min({text.size(), position() + step, throws_at}));
    return position() == text.size() ? traits_type::eof() : traits_type::to_int_type(*gptr());
  }
  int uflow() override {
    int const c = underflow();
    if (c != traits_type::eof()) setg(eback(), gptr() + 1, std::max(gptr() + 1, egptr()));
    return c;
  }
  std::size_t position() const { return static_cast<std::size_t>(gptr() - eback()); }

  std::string text = "";
  std::size_t step = 0, throws_at = text.npos;
};

struct subject {
  void convert(bool to_pc) {
    if (!by_steps) return void(to_pc ? s.to_pc_mode() : s.from_pc_mode());
    for (auto i = 0u; (i = s.find("\r", i)) != s.npos;) s.remove(i, 1);
    for (auto i = 0u; to_pc && (i = s.find("\n", i)) != s.npos; i += 2) s.replace(i, 1, "\r\n");
  }

  void read(bool word, char delim) {
    if (!by_steps) return void(word ? is >> s : getline(is, s, delim));
    std::string const ends = word ? " \t\n\v\f\r" : std::string(1, delim);
    GCL_String taken;
    if (is.good() && word && (is.flags() & std::ios::skipws) != 0) is >> std::ws;
    char c = '\0';
    while (!is.fail() && is.get(c) && ends.find(c) == ends.npos) taken.append(c);
    if (is.good() && word) is.putback(c);
    if (is.eof() && taken.length() != 0) is.clear();
    s.assign("", 0);
    for (auto i = 0u; i < taken.length(); i += 32) s.append(taken.substr(i, 32));
  }

  void take_step() {
    auto const kind = input.number(8), number = input.number(255);
    if (kind == 0) in.open(input);
    if (kind <= 1) is.clear(static_cast<std::ios::iostate>(number < 8 ? number : 0));
    if (kind == 2) is.flags(is.flags() ^ std::ios::skipws);
    if (kind == 3) s.append(in.text.substr(0, number).c_str());
    if (kind == 4) s.reserve(s.length() + number);
    if (kind == 5) other = s;
    if (kind == 6) convert(number % 2 != 0);
    if (kind >= 7) read(number % 2 != 0, "\n\n\xFF"[number % 3]);
  }

  auto state() const {
    return std::tuple(s, other, s.body() ? s.body()->capacity() : 0, is.rdstate(), in.position());
  }

  bool by_steps;
  fuzz_input input;
  source in = {};
  GCL_String s = {}, other = {};
  std::istream is{&in};
};

}  // namespace

void fuzz_one_input(fuzz_input& input) {
  subject ours{false, input}, steps{true, input};
  while (!ours.input.empty()) {
    for (auto* one : {&ours, &steps}) one->take_step();
    FUZZ_CHECK(ours.state() == steps.state());
  }
}
