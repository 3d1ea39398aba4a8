#include "miroxplat/strutl.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr unsigned int longest_character = 4;

unsigned char to_byte(char c) { return static_cast<unsigned char>(c); }

bool is_continuation(char c) { return (to_byte(c) & 0xC0) == 0x80; }

// strutl_mblen. Reads a byte only after the ones before it fitted, hence never past a NUL; so any
// `n` of at least 4 is right for terminated text.
unsigned int character_length(char const* p, unsigned int n) {
  if (n == 0) return 0;
  unsigned char const lead = to_byte(p[0]);
  if (lead < 0xC2 || lead > 0xF4) return 1;
  unsigned int const length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (n < length) return 1;
  // The second byte's range excludes overlong forms, surrogates and what lies above 10FFFF.
  unsigned char const low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  unsigned char const high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (to_byte(p[1]) < low || to_byte(p[1]) > high) return 1;
  for (unsigned int i = 2; i < length; ++i) {
    if (!is_continuation(p[i])) return 1;
  }
  return length;
}

// Whether no character that begins before `p`, a continuation byte, reaches over it. At most three
// preceding bytes decide.
bool begins_character(char const* text, char const* p) {
  for (unsigned int k = 1; k < longest_character && p != text + (k - 1); ++k) {
    if (character_length(p - k, longest_character) > k) return false;
  }
  return true;
}

// Whether a character begins at `p`, or the text ends there.
inline bool is_boundary(char const* text, char const* p) {
  return !is_continuation(*p) || begins_character(text, p);
}

// The period of the pattern, when it repeats itself at least twice; otherwise 0. It is the distance
// at which the first half occurs again, if all the rest follows at the same distance.
std::size_t repeating_period(char const* pattern, std::size_t length) {
  if (length < 2) return 0;
  auto const* const again =
      static_cast<char const*>(memmem(pattern + 1, length - 1, pattern, (length + 1) / 2));
  if (again == nullptr) return 0;
  auto const period = static_cast<std::size_t>(again - pattern);
  return std::memcmp(pattern, again, length - period) == 0 ? period : 0;
}

// memmem() over a piece of the text at a time, each twice as long as the last: no more is read than
// twice what lies before the occurrence.
char const* find_long(char const* from, char const* pattern, std::size_t length) {
  for (std::size_t piece = 4 * length;; piece *= 2) {
    std::size_t const n = strnlen(from, piece);
    auto const* const found = static_cast<char const*>(memmem(from, n, pattern, length));
    if (found != nullptr || n < piece) return found;
    from += n - (length - 1);
  }
}

// The first occurrence of `pattern` in null-terminated text. The C library's strstr() is fastest,
// but some of its versions take time in proportion to the text times the pattern; memmem() is
// linear.
inline char const* find_bytes(char const* from, char const* pattern, std::size_t length) {
  constexpr std::size_t longest_short_pattern = 64;
  if (length > longest_short_pattern) return find_long(from, pattern, length);
  return length == 1 ? std::strchr(from, pattern[0]) : std::strstr(from, pattern);
}

inline bool is_whole(char const* text, char const* p, std::size_t length) {
  return is_boundary(text, p) && is_boundary(text, p + length);
}

// The occurrences behind one that was refused: see find_whole_text().
//
// Linear: two occurrences either lie at least half the pattern's length apart, which pays for a new
// search, or one period, which is all that is compared to find the second.
char const* find_next_whole(char const* text, char const* refused, char const* pattern,
                            std::size_t length) {
  std::size_t const period = repeating_period(pattern, length);
  for (char const* p = refused; p != nullptr; p = find_bytes(p + 1, pattern, length)) {
    if (is_whole(text, p, length)) return p;
    while (period != 0 && std::strncmp(p + length, p + length - period, period) == 0) {
      p += period;
      if (is_whole(text, p, length)) return p;
    }
  }
  return nullptr;
}

// The first occurrence of `pattern` in `text`, at or after `from`, that is made of whole
// characters; null if there is none. Only a pattern that is malformed at an end is ever refused.
char const* find_whole_text(char const* text, char const* from, char const* pattern) {
  std::size_t const length = std::strlen(pattern);
  if (length == 0) return nullptr;
  char const* const found = find_bytes(from, pattern, length);
  if (found == nullptr || is_whole(text, found, length)) return found;
  return find_next_whole(text, found, pattern, length);
}

// The same, sooner for an ASCII character, which is whole wherever it stands.
inline char const* find_whole(char const* text, char const* from, char const* pattern) {
  bool const is_character = pattern[0] != '\0' && to_byte(pattern[0]) < 0x80 && pattern[1] == '\0';
  return is_character ? std::strchr(from, pattern[0]) : find_whole_text(text, from, pattern);
}

// Where a character of a set occurs in the text and in the set; both null when none does.
struct set_match {
  char const* in_text;
  char const* in_set;
};

set_match find_ascii_of(char const* from, char const* set) {
  bool const is_single = set[0] != '\0' && set[1] == '\0';
  char const* const found = is_single ? std::strchr(from, set[0]) : std::strpbrk(from, set);
  if (found == nullptr) return {nullptr, nullptr};
  return {found, std::strchr(set, *found)};
}

// Two tables pass over nearly all the text; only what begins and ends like a member is looked up.
set_match find_character_of(char const* text, char const* from, char const* set) {
  bool begins_member[256] = {true};  // and the NUL, which ends the scan
  bool ends_member[256] = {};
  for (char const* p = set; *p != '\0';) {
    begins_member[to_byte(*p)] = true;
    p += character_length(p, longest_character);
    ends_member[to_byte(p[-1])] = true;
  }
  for (;; ++from) {
    while (!begins_member[to_byte(*from)]) ++from;
    if (*from == '\0') return {nullptr, nullptr};
    unsigned int const length = character_length(from, longest_character);
    if (!ends_member[to_byte(from[length - 1])] || !is_boundary(text, from)) continue;
    char character[longest_character + 1] = {};
    std::memcpy(character, from, length);
    char const* const member = find_whole(set, set, character);
    if (member != nullptr) return {from, member};
  }
}

bool is_ascii(char const* text) {
  for (; *text != '\0'; ++text) {
    if (to_byte(*text) >= 0x80) return false;
  }
  return true;
}

unsigned int distance(char const* from, char const* to) {
  return static_cast<unsigned int>(to - from);
}

char to_lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

}  // namespace

unsigned int strutl_mblen(char const* p, unsigned int n) { return character_length(p, n); }

int strutl_find_str(char const* text, unsigned int start, char const* pattern,
                    unsigned int* index) {
  char const* const found = find_whole(text, text + start, pattern);
  if (found == nullptr) return 0;
  *index = distance(text, found);
  return 1;
}

int strutl_find_char_from(char const* text, unsigned int start, char const* set,
                          unsigned int* index, unsigned int* second) {
  set_match const match =
      is_ascii(set) ? find_ascii_of(text + start, set) : find_character_of(text, text + start, set);
  if (match.in_text == nullptr) return 0;
  *index = distance(text, match.in_text);
  *second = distance(set, match.in_set);
  return 1;
}

void strutl_cvt_case_string(char const* text, int mode, unsigned int size, char* dest) {
  if (size == 0) return;
  std::size_t const length = strnlen(text, size - 1);
  if (mode == 1) {
    std::transform(text, text + length, dest, to_lower);
  } else {
    std::memmove(dest, text, length);
  }
  dest[length] = '\0';
}

int strutl_find_last_char(char const* text, int first, int last, int* index) {
  if (first < 0) return 1;
  if (last == -1) last = first + static_cast<int>(std::strlen(text + first));
  if (last <= first) return 1;
  *index = last - 1;
  for (int at = last - 2; at >= first && at >= last - 4; --at) {
    auto const rest = static_cast<unsigned int>(last - at);
    if (character_length(text + at, rest) == rest) *index = at;
  }
  return 0;
}
