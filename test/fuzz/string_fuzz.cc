// Edits and searches of strings that share bodies in all ways, the argument being often the string
// itself, against bodies that shared pointers count.
#include <algorithm>
#include <functional>
#include <memory>

#include "fuzz/fuzz_input.h"
#include "miroxgcl/gcl_string.h"

namespace {

constexpr unsigned int npos = GCL_String::npos;

// What a body should be. Strings that share it share the pointer, so that its count is the body's.
struct model_body {
  std::string text;
  std::size_t capacity;
};
using model = std::shared_ptr<model_body>;

std::string text(model const& t) { return t != nullptr ? t->text : ""; }

model make(std::string const& text, std::size_t room) {
  auto const grown = room <= 63 ? 2 * room : room <= 255 ? room + room / 2 : room + room / 4;
  return std::make_shared<model_body>(model_body{text, std::max<std::size_t>(grown, 8)});
}
model make(std::string const& text) { return make(text, text.size() + 1); }

// In place if the body is unshared and has room, else with a new one.
void change(model& t, std::string const& text, std::size_t room) {
  if (t.use_count() != 1 || text.size() >= t->capacity) t = make("", room);
  t->text = text;
  if (text.empty()) t = nullptr;
}

// The last argument is one more handle on the body, where the operation takes one.
void put(model& t, std::size_t pos, std::size_t n, std::string const& piece, model = {}) {
  std::string const result = text(t).replace(pos, n, piece);
  change(t, result, std::max(result.size(), pos + 1));
}

// Most edits that neither remove nor put a byte do nothing at all.
void edit(model& t, std::size_t pos, std::size_t n, std::string const& piece, model u = {}) {
  if (!piece.empty() || !text(t).substr(pos, n).empty()) put(t, pos, n, piece, u);
}

void search(GCL_String const& s, std::string const& t, GCL_String const& p, unsigned int pos) {
  std::string const q = p.c_str();
  auto const found = [](std::size_t i) { return static_cast<unsigned int>(i) & npos; };
  unsigned int const last = pos == t.size() ? npos : pos;
  FUZZ_CHECK(s.find(p, pos) == (pos < t.size() ? found(t.find(q, pos)) : npos));
  FUZZ_CHECK(q.empty() || s.rfind(p, last) == found(t.rfind(q, last)));
  FUZZ_CHECK(s.find_first_of(p, pos) == found(t.find_first_of(q, pos)));
  FUZZ_CHECK(s.find_last_of(p, last) == found(t.find_last_of(q, last)));
  FUZZ_CHECK(s.find_first_not_of(p, pos) == found(t.find_first_not_of(q, pos)));
  FUZZ_CHECK(s.find_last_not_of(p, last) == found(t.find_last_not_of(q, last)));
  FUZZ_CHECK(s.compare(p) == (t > q) - (t < q));
}

struct strings {
  void step(fuzz_input& input) {
    auto const k = input.number(3), other = input.number(3);
    auto &s = ours[k], &o = ours[other];
    auto &t = theirs[k], &u = theirs[other];
    auto const length = s.length(), kind = length + o.length() < 1000 ? input.number(14) : 0;
    auto const pos = input.number(length), few = input.number(31), n = few == 31 ? npos : few;
    auto const some = input.number(31), count = some == 31 ? npos : std::min(some, o.length());
    auto const at = input.number(o.length() - std::min(count, o.length()));
    auto const c = "ab/\xE9"[input.number(3)];
    std::string const cut = text(t).substr(pos, n), begin = text(u).substr(0, count);
    std::string const piece = text(u).substr(at, count), run(few, c);
    bool const is_nothing = u == nullptr || (begin.empty() && t == u && length != 0);
    std::function<void()> const steps[][2] = {
        {[&] { s.remove(pos, n); }, [&] { edit(t, pos, n, ""); }},
        {[&] { s.replace(pos, n, o, count); }, [&] { edit(t, pos, n, begin); }},
        {[&] { s.append(o, count); }, [&] { edit(t, length, 0, begin, u); }},
        {[&] { s.append(o.c_str() + at, count); }, [&] { edit(t, length, 0, piece); }},
        {[&] { s.append(c, few); }, [&] { edit(t, length, 0, run); }},
        {[&] { s.insert(pos, o, count); }, [&] { is_nothing ? void() : put(t, pos, 0, begin, u); }},
        {[&] { s.put_at(pos, c); }, [&] { change(t, text(t).replace(pos, 1, 1, c), length + 1); }},
        {[&] { s.get_remove(o, pos, n); },
         [&] {
           u = cut.empty() ? empty : make(cut);
           if (k != other) put(t, pos, n, "");
         }},
        {[&] { s.assign(o, count); }, [&] { change(t, begin, begin.size() + 1); }},
        {[&] { s.reserve(some); },
         [&] { t = some + length == 0 ? nullptr : make(text(t), std::max(some, length + 1)); }},
        {[&] { s = GCL_String(o, count); }, [&] { t = count == npos ? u : make(begin); }},
        {[&] { s = std::move(o); }, [&] { t = std::move(u); }},
        {[&] { s = o; }, [&] { t = u; }},
        {[&] { s = o; }, [&] { t = u; }},
        {[&] { search(s, text(t), o.substr(at, few % 4), pos); }, [] {}}};
    std::pair const old(s.body(), t.get());
    for (auto const& run_step : steps[kind]) run_step();
    FUZZ_CHECK((s.body() == old.first) == (t.get() == old.second));
  }

  void check() const {
    for (int i = 0; i < 4; ++i) {
      auto const& t = theirs[i];
      FUZZ_CHECK(std::string(ours[i].c_str(), ours[i].length()) == text(t));
      FUZZ_CHECK((ours[i].body() == nullptr) == (t == nullptr));
      if (t == nullptr) continue;
      FUZZ_CHECK(ours[i].body()->capacity() == t->capacity);
      auto const count = static_cast<unsigned int>(t.use_count());
      FUZZ_CHECK(ours[i].body()->reference_count() == count + (t == empty ? others : 0));
    }
  }

  model empty = make("");
  // Strings of the library's own share the empty body, too; `empty` counts for one of them.
  unsigned int others = GCL_StringRep::null_instance()->reference_count() - 1;
  GCL_String ours[4];
  model theirs[4] = {empty, empty, empty, empty};
};

}  // namespace

void fuzz_one_input(fuzz_input& input) {
  for (strings all; !input.empty(); all.check()) all.step(input);
}
