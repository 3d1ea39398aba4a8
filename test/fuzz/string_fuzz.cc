// Edits and searches of strings that share bodies in all ways, against std::string in bodies that
// shared pointers count. A step edits one of four strings; its argument is one of the four too, so
// often the string itself, another that shares its body, or a part of its own text.
#include <algorithm>
#include <array>
#include <memory>

#include "fuzz/fuzz_input.h"
#include "miroxgcl/gcl_string.h"
#include "miroxgcl/gcl_threads.h"

namespace {

constexpr unsigned int npos = GCL_String::npos;

// What a body should be. Strings that share it share the pointer, so that its count is the body's.
struct model_body {
  std::string text;
  std::size_t capacity;
};
using model = std::shared_ptr<model_body>;

struct string_and_model {
  GCL_String ours;
  model theirs;
};

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

// The library's searches see the text from `pos` up to the next NUL.
std::string seen_from(std::string const& t, std::size_t pos) {
  return t.substr(0, t.find('\0', pos));
}

void search(GCL_String const& s, std::string const& t, std::string const& q, unsigned int pos) {
  GCL_String const p(q);
  unsigned int const last = pos == t.size() ? npos : pos;
  std::string const ahead = seen_from(t, pos), whole = seen_from(t, 0);
  FUZZ_CHECK(s.find(p, pos) == (pos < t.size() ? ahead.find(q, pos) & npos : npos));
  FUZZ_CHECK(q.empty() || s.rfind(p, last) == (whole.rfind(q, last) & npos));
  FUZZ_CHECK(s.find_first_of(p, pos) == (ahead.find_first_of(q, pos) & npos));
  FUZZ_CHECK(s.find_last_of(p, last) == (whole.find_last_of(q, last) & npos));
  FUZZ_CHECK(s.find_first_not_of(p, pos) == (t.find_first_not_of(q, pos) & npos));
  FUZZ_CHECK(s.find_last_not_of(p, last) == (t.find_last_not_of(q, last) & npos));
  FUZZ_CHECK(s.compare(p) == (t > q) - (t < q));
}

enum operation : unsigned int {
  remove_bytes,
  replace_by_string,
  append_string,
  append_array,
  append_characters,
  insert_string,
  put_character,
  get_and_remove,
  assign_string,
  reserve_room,
  construct_from_string,
  move_string,
  copy_string,
  append_array_with_terminator,
  search_text,
  replace_by_array,
  insert_array,
  assign_array,
  last_operation = assign_array
};

void step(fuzz_input& input, std::array<string_and_model, 4>& all) {
  auto& [s, t] = all[input.number(3)];
  auto& [o, u] = all[input.number(3)];

  // What any operation may take: a place in `s` and a count from there, a count of bytes of `o` from
  // its start or from `at` on, a character and how many of it.
  unsigned int const length = s.length();
  bool const may_grow = length + o.length() < 1000;
  unsigned int const kind = may_grow ? input.number(last_operation) : remove_bytes;
  unsigned int const pos = input.number(length);
  unsigned int const few = input.number(31);
  unsigned int const n = few == 31 ? npos : few;
  unsigned int const some = input.number(31);
  unsigned int const count = some == 31 ? npos : std::min(some, o.length());
  unsigned int const at = input.number(o.length() - std::min(count, o.length()));
  char const c = "ab/\xE9"[input.number(3)];

  char const* const array = o.c_str() + at;
  std::string const cut = text(t).substr(pos, n);
  std::string const begin = text(u).substr(0, count);
  std::string const rest = text(u).substr(at);
  std::string const piece = count == npos ? rest.c_str() : rest.substr(0, count);
  std::string const sought = rest.substr(0, few % 4).c_str();
  void const* const old_body = s.body();
  void const* const old_model = t.get();

  switch (kind) {
    case remove_bytes:
      s.remove(pos, n);
      edit(t, pos, n, "");
      break;
    case replace_by_string:
      s.replace(pos, n, o, count);
      edit(t, pos, n, begin);
      break;
    case append_string:
      s.append(o, count);
      edit(t, length, 0, begin, u);
      break;
    case append_array:
      s.append(array, count);
      edit(t, length, 0, piece);
      break;
    case append_characters:
      s.append(c, few);
      edit(t, length, 0, std::string(few, c));
      break;
    case insert_string: {
      bool const edits_even_if_empty = u != nullptr && (t != u || length == 0);
      s.insert(pos, o, count);
      edit(t, pos, 0, begin, u, edits_even_if_empty);
      break;
    }
    case put_character:
      s.put_at(pos, c);
      put(t, pos, 1, {c}, length + 1);
      break;
    case get_and_remove:
      s.get_remove(o, pos, n);
      u = cut.empty() ? empty : make(cut);
      if (&s != &o) put(t, pos, n, "", pos + 1);
      break;
    case assign_string:
      s.assign(o, count);
      put(t, 0, npos, begin, begin.size() + 1);
      break;
    case reserve_room:
      s.reserve(some);
      t = some + length == 0 ? nullptr : make(text(t), some);
      break;
    case construct_from_string:
      s = GCL_String(o, count);
      t = count == npos ? u : make(begin);
      break;
    case move_string:
      s = std::move(o);
      t = std::move(u);
      break;
    case copy_string:
      s = o;
      t = u;
      break;
    case append_array_with_terminator:
      s.append(array, o.length() - at + 1);
      edit(t, length, 0, rest + '\0');
      break;
    case search_text:
      search(s, text(t), sought, pos);
      break;
    case replace_by_array:
      s.replace(pos, n, array, count);
      edit(t, pos, n, piece);
      break;
    case insert_array:
      s.insert(pos, array, count);
      edit(t, pos, 0, piece);
      break;
    case assign_array:
      s.assign(array, count);
      put(t, 0, npos, piece, piece.size() + 1);
      break;
  }
  FUZZ_CHECK((s.body() == old_body) == (t.get() == old_model));
}

}  // namespace

void fuzz_one_input(fuzz_input& input) {
  std::array<string_and_model, 4> all;
  for (auto& one : all) one.theirs = empty;
  while (!input.empty()) {
    step(input, all);
    for (auto const& [s, t] : all) {
      auto const* const body = s.body();
      FUZZ_CHECK(std::string(s.c_str(), s.length()) == text(t));
      FUZZ_CHECK((body ? body->capacity() : 0) == (t ? t->capacity : 0));
      if (t == empty && !gcl_threads::is_single()) continue;  // not counted any more
      FUZZ_CHECK((body ? body->reference_count() : 0) == t.use_count() + others * (t == empty));
    }
  }
}
