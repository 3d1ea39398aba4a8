// The build gives this source the older string, which no interface to another source may name.
#include "cow_program.h"

#include <string>

#include "program_loops.h"

static_assert(_GLIBCXX_USE_CXX11_ABI == 0, "std::string shares its bytes");

namespace {

struct Roomy : std::string {
  using std::string::string;
};

}  // namespace

template <>
struct std::hash<Roomy> : std::hash<std::string> {};

template <>
struct Texts<Roomy> {
  static Roomy make(std::string_view text) {
    std::size_t const n = text.size() + 1;
    std::size_t const capacity = n <= 63 ? 2 * n : n <= 255 ? n + n / 2 : n + n / 4;
    Roomy made;
    made.reserve(capacity + 7);  // our body has 32 bytes, this one 24 and one for the terminator
    made.append(text.data(), text.size());
    return made;
  }
};

Programs cow::programs() { return ::programs<std::string>(); }

Programs cow::programs_in_our_blocks() {
  Programs all = {};
  all.count_hashed = count_words<Roomy, std::unordered_map<Roomy, int>>;
  all.count_ordered = count_words<Roomy, std::map<Roomy, int>>;
  all.sort = sort_names<Roomy>;
  all.build_and_drop = build_and_drop<Roomy>;
  all.copy_and_drop = copy_and_drop_all<Roomy>;
  return all;
}
