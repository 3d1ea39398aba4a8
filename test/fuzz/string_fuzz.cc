// Edits and searches of strings that share bodies in all ways, the argument being often the string
// itself, against bodies that shared pointers count.
#include <algorithm>
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

model make(std::string const& text, std::size_t room = 0) {
  room = std::max(room, text.size() + 1);
  auto const grown = room <= 63 ? 2 * room : room <= 255 ? room + room / 2 : room + room / 4;
  return std::make_shared<model_body>(model_body{text, std::max<std::size_t>(grown, 8)});
}

// The body of all empty strings. The library has strings of its own that share it.
model const empty = make("");
std::int64_t const others = GCL_StringRep::null_instance()->reference_count() - 1;

// In place if the body is unshared and has room, else in a new one.
void put(model& t, std::size_t pos, std::size_t n, std::string const& piece, std::size_t room) {
  std::string const next = text(t).replace(pos, n, piece);
  if (t.use_count() != 1 || next.size() >= t->capacity) t = make("", std::max(next.size(), room));
  t->text = next;
  if (next.empty()) t = nullptr;
}

// Most edits that neither remove nor put a byte do nothing at all. The unnamed argument is one more
// handle on the body, where the operation takes one.
void edit(model& t, std::size_t pos, std::size_t n, std::string const& piece, model = {},
          bool always = false) {
  if (always || !piece.empty() || !text(t).substr(pos, n).empty()) put(t, pos, n, piece, pos + 1);
}

void search(GCL_String const& s, std::string const& t, std::string const& q, unsigned int pos) {
  GCL_String const p(q);
  unsigned int const last = pos == t.size() ? npos : pos;
  FUZZ_CHECK(s.find(p, pos) == (pos < t.size() ? t.find(q, pos) & npos : npos));
  FUZZ_CHECK(q.empty() || s.rfind(p, last) == (t.rfind(q, last) & npos));
  FUZZ_CHECK(s.find_first_of(p, pos) == (t.find_first_of(q, pos) & npos));
  FUZZ_CHECK(s.find_last_of(p, last) == (t.find_last_of(q, last) & npos));
  FUZZ_CHECK(s.find_first_not_of(p, pos) == (t.find_first_not_of(q, pos) & npos));
  FUZZ_CHECK(s.find_last_not_of(p, last) == (t.find_last_not_of(q, last) & npos));
  FUZZ_CHECK(s.compare(p) == (t > q) - (t < q));
}

void step(fuzz_input& input, std::pair<GCL_String, model>* all) {
  auto &one = all[input.number(3)], &two = all[input.number(3)];
  auto &s = one.first, &o = two.first;
  auto &t = one.second, &u = two.second;
  auto const length = s.length(), kind = length + o.length() < 1000 ? input.number(14) : 0;
  auto const pos = input.number(length), few = input.number(31), n = few == 31 ? npos : few;
  auto const some = input.number(31), count = some == 31 ? npos : std::min(some, o.length());
  auto const at = input.number(o.length() - std::min(count, o.length()));
  auto const c = "ab/\xE9"[input.number(3)];
  std::string const cut = text(t).substr(pos, n), begin = text(u).substr(0, count);
  std::string const piece = text(u).substr(at, count), run(few, c);
  bool const inserts = u != nullptr && (t != u || length == 0);
  std::function<void()> const steps[][2] = {
      {[&] { s.remove(pos, n); }, [&] { edit(t, pos, n, ""); }},
      {[&] { s.replace(pos, n, o, count); }, [&] { edit(t, pos, n, begin); }},
      {[&] { s.append(o, count); }, [&] { edit(t, length, 0, begin, u); }},
      {[&] { s.append(o.c_str() + at, count); }, [&] { edit(t, length, 0, piece); }},
      {[&] { s.append(c, few); }, [&] { edit(t, length, 0, run); }},
      {[&] { s.insert(pos, o, count); }, [&] { edit(t, pos, 0, begin, u, inserts); }},
      {[&] { s.put_at(pos, c); }, [&] { put(t, pos, 1, {c}, length + 1); }},
      {[&] { s.get_remove(o, pos, n); },
       [&] {
         u = cut.empty() ? empty : make(cut);
         if (&s != &o) put(t, pos, n, "", pos + 1);
       }},
      {[&] { s.assign(o, count); }, [&] { put(t, 0, npos, begin, begin.size() + 1); }},
      {[&] { s.reserve(some); }, [&] { t = some + length == 0 ? nullptr : make(text(t), some); }},
      {[&] { s = GCL_String(o, count); }, [&] { t = count == npos ? u : make(begin); }},
      {[&] { s = std::move(o); }, [&] { t = std::move(u); }},
      {[&] { s = o; }, [&] { t = u; }},
      {[&] { search(s, text(t), o.substr(at, few % 4).c_str(), pos); }, [] {}}};
  // Kinds 12 and 13 are the same.
  std::pair const old(s.body(), t.get());
  for (auto const& run_step : steps[kind - kind / 13]) run_step();
  FUZZ_CHECK((s.body() == old.first) == (t.get() == old.second));
}

}  // namespace

void fuzz_one_input(fuzz_input& input) {
  std::pair<GCL_String, model> all[] = {{{}, empty}, {{}, empty}, {{}, empty}, {{}, empty}};
  while (!input.empty()) {
    step(input, all);
    for (auto const& [s, t] : all) {
      auto const* const body = s.body();
      FUZZ_CHECK(std::string(s.c_str(), s.length()) == text(t));
      FUZZ_CHECK((body ? body->capacity() : 0) == (t ? t->capacity : 0));
      FUZZ_CHECK((body ? body->reference_count() : 0) == t.use_count() + others * (t == empty));
    }
  }
}
