// Arrays, lists, stacks and string lists beside vectors: what they hold, how many slots they take,
// which position a list remembers. Arguments are now and then the container's own items.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "miroxgcl/gcl_integer_list.h"
#include "miroxgcl/gcl_string_list.h"
#include "miroxgcl/lx_stack.h"

namespace {

// Accounts for its blocks and hands them out full of garbage.
class counting {
 public:
  static void* AllocateBlock(std::size_t n) {
    void* const p = std::memset(::operator new(n), 0xAB, n);
    s_blocks[p] = n;
    return p;
  }
  static void ReleaseBlock(void* p, std::size_t n) noexcept {
    auto const block = s_blocks.find(p);
    FUZZ_CHECK(block != s_blocks.end() && block->second == n);
    s_blocks.erase(block);
    ::operator delete(p);
  }
  static inline std::map<void*, std::size_t> s_blocks;
};

template <class T>
T make(unsigned int v) {
  if constexpr (std::is_same_v<T, GCL_String>) return GCL_String(std::to_string(v));
  if constexpr (std::is_same_v<T, int>) return static_cast<int>(v);
}

template <class T, class C>
struct beside {
  C real;
  std::vector<T> model;
  int touched = -1;  // the index of the item dealt with last

  void step(fuzz_input& input) {
    auto const n = static_cast<unsigned int>(model.size());
    unsigned int const what = input.number(n > 40 ? 7 : 5);
    unsigned int const i = n != 0 ? input.number(n - 1) : 0;
    unsigned int const own = n != 0 ? input.number(4 * n) : n;
    T const fresh = make<T>(input.number(9));
    T const& x = own < n ? real.ItemAt(own) : fresh;
    T const value = x;
    unsigned int const behind = n != 0 ? i + 1 : 0;
    if (what == 0) put(n, value), real.Append(x);
    if (what == 1) put(0, value), real.Insert(x);
    if (what == 2) put(i, value), real.Insert(x, i);
    if (what == 3) put(behind, value), real.Append(x, i);
    if (what == 4 && n != 0) model[i] = value, touched = static_cast<int>(i), real.Replace(i, x);
    if (what >= 5 && n != 0) {
      model.erase(std::next(model.begin(), static_cast<int>(i)));
      touched = static_cast<int>(std::min(i, n - 2));
      real.Remove(i);
    }
    if (model.empty()) touched = -1;
  }
  void put(unsigned int at, T const& value) {
    model.insert(std::next(model.begin(), static_cast<int>(at)), value);
    touched = static_cast<int>(at);
  }
  void check() const {
    FUZZ_CHECK(real.Length() == model.size());
    FUZZ_CHECK(std::equal(model.begin(), model.end(), real.begin()));
  }
  int first_from(T const& x, unsigned int start) const {
    auto const found = std::find(std::next(model.begin(), static_cast<int>(start)), model.end(), x);
    return found != model.end() ? static_cast<int>(found - model.begin()) : -1;
  }
};

// With the capacity by the rules of growth.
template <class T>
void arrays(fuzz_input& input) {
  struct walked : beside<T, LX_TDynamic<T, counting>> {
    std::size_t slots = 0;
    void resize(std::size_t n) {
      std::size_t const chunk = this->real.ChunkSize() != 0 ? this->real.ChunkSize() : 32;
      slots = (n + chunk - 1) / chunk * chunk;
    }
  } both[2];
  for (unsigned int k = 0; !input.empty(); k = input.number(1)) {
    walked& a = both[k];
    auto const n = a.model.size();
    unsigned int const what = input.number(15);
    if (what > 4) {
      a.step(input);
      if (a.model.size() < n || a.model.size() > a.slots) a.resize(a.model.size());
    } else if (what == 0) {
      a.real.SetChunkSize(input.number(7) + 1);
    } else if (what == 1) {
      a.real = both[1 - k].real, a.model = both[1 - k].model, a.resize(a.model.size());
    } else if (what == 2) {
      std::swap(both[0], both[1]);
    } else if (what == 3 && n < 20) {
      a.real.Preallocate(20), a.resize(20);
    } else if (what == 4) {
      a.real.Clear(), a.model.clear(), a.slots = 0;
    }
    a.check();
    FUZZ_CHECK((both[0].real == both[1].real) == (both[0].model == both[1].model));
    std::size_t bytes = 0;
    for (auto const& block : counting::s_blocks) bytes += block.second;
    FUZZ_CHECK(bytes == (both[0].slots + both[1].slots) * sizeof(T));
  }
}

// Where items repeat, Location() shows the position that the list remembers.
void lists(fuzz_input& input) {
  beside<GCL_String, LX_TUnbounded<GCL_String, counting>> l;
  LX_TUnboundedStack<GCL_String, counting> stack;
  while (!input.empty()) {
    l.step(input);
    auto const n = static_cast<unsigned int>(l.model.size());
    auto const x = make<GCL_String>(input.number(9));
    unsigned int const start = input.number(1) * input.number(n);
    bool const hit = start == 0 && l.touched >= 0 && l.model[static_cast<unsigned>(l.touched)] == x;
    int const expected = hit ? l.touched : l.first_from(x, start);
    FUZZ_CHECK(l.real.Location(x, start) == expected);
    if (expected >= 0) l.touched = expected;
    l.check();
    FUZZ_CHECK(LX_TUnbounded(l.real) == l.real && (n == 0 || l.real.Last() == l.model.back()));
    stack.Push(x);
    FUZZ_CHECK(stack.Top() == x && stack.ItemAt(stack.Depth() - 1) == *--stack.end());
    if (input.number(2) != 0) stack.Pop();
  }
}

void string_lists(fuzz_input& input) {
  beside<GCL_String, GCL_StringList> l{GCL_StringList(3), {}};
  while (!input.empty()) {
    l.step(input);
    l.check();
    FUZZ_CHECK(GCL_StringList(l.real) == l.real);
  }
}

}  // namespace

void fuzz_one_input(fuzz_input& input) {
  void (*const kinds[])(fuzz_input&) = {arrays<int>, arrays<GCL_String>, lists, string_lists};
  kinds[input.number(3)](input);
  FUZZ_CHECK(counting::s_blocks.empty());
}
