// Arrays, lists, stacks and string lists beside vectors: what they hold, how many slots they take,
// which position a list remembers. Arguments are now and then the container's own items.
#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "miroxgcl/gcl.h"

namespace {

// Counts the bytes of its blocks and hands them out full of garbage.
struct counting {
  static void* AllocateBlock(std::size_t n) {
    s_bytes += n;
    return std::memset(::operator new(n), 0xAB, n);
  }
  static void ReleaseBlock(void* p, std::size_t n) noexcept {
    s_bytes -= n;
    ::operator delete(p);
  }
  static inline std::size_t s_bytes = 0;
};

template <class T, class C>
struct beside {
  C real;
  std::vector<T> model;
  int touched = -1;  // the index of the item dealt with last

  static T item(fuzz_input& input) { return T(static_cast<char>('0' + input.number(9))); }
  void step(fuzz_input& input) {
    auto const n = static_cast<unsigned int>(model.size());
    unsigned int const what = input.number(n > 40 ? 7 : 5);
    unsigned int const i = n != 0 ? input.number(n - 1) : 0;
    unsigned int const own = n != 0 ? input.number(4 * n) : n;
    T const fresh = item(input);
    T const& x = own < n ? real.ItemAt(own) : fresh;
    T const value = x;
    if (what == 0) put(n, value), real.Append(x);
    if (what == 1) put(0, value), real.Insert(x);
    if (what == 2) put(i, value), real.Insert(x, i);
    if (what == 3) put(n != 0 ? i + 1 : 0, value), real.Append(x, i);
    if (what == 4 && n != 0) model[i] = value, touched = static_cast<int>(i), real.Replace(i, x);
    if (what >= 5 && n != 0) {
      model.erase(model.begin() + static_cast<int>(i));
      touched = static_cast<int>(std::min(i, n - 2));
      real.Remove(i);
    }
    if (model.empty()) touched = -1;
    check();
  }
  void put(unsigned int at, T const& value) {
    model.insert(model.begin() + static_cast<int>(at), value);
    touched = static_cast<int>(at);
  }
  void check() const {
    FUZZ_CHECK(real.Length() == model.size());
    FUZZ_CHECK(std::equal(model.begin(), model.end(), real.begin()));
  }
};

// With the capacity by the rules of growth.
template <class T>
void arrays(fuzz_input& input) {
  struct walked : beside<T, LX_TDynamicCollection<T, counting>> {
    std::size_t slots = 0;
    void resize(std::size_t n) {
      std::size_t const chunk = this->real.ChunkSize() != 0 ? this->real.ChunkSize() : 32;
      slots = (n + chunk - 1) / chunk * chunk;
    }
    void assign(walked& other, bool as_abstract) {
      LX_TCollection<T>&to = this->real, &from = other.real;
      as_abstract ? void(to = from) : void(this->real = other.real);
      this->model = other.model;
      resize(this->model.size());
    }
  } both[2];
  for (unsigned int k = 0; !input.empty(); k = input.number(1)) {
    walked& a = both[k];
    auto const n = a.model.size();
    unsigned int const what = input.number(15);
    if (what == 0) a.real.SetChunkSize(input.number(7) + 1);
    if (what == 1) a.assign(both[1 - k], input.number(1) != 0);
    if (what == 2) std::swap(both[0], both[1]), a.real = *&a.real;
    if (what == 3 && n < 20) a.real.Preallocate(20), a.resize(20);
    if (what == 4) a.real.Clear(), a.model.clear(), a.slots = 0;
    if (what > 4) {
      a.step(input);
      if (a.model.size() < n || a.model.size() > a.slots) a.resize(a.model.size());
    }
    a.check();
    FUZZ_CHECK((both[0].real != both[1].real) == (both[0].model != both[1].model));
    FUZZ_CHECK(counting::s_bytes == (both[0].slots + both[1].slots) * sizeof(T));
  }
}

// Where items repeat, Location() shows the position that the list remembers.
void lists(fuzz_input& input) {
  beside<GCL_String, LX_TUnbounded<GCL_String, counting>> l;
  LX_TUnboundedStack<GCL_String, counting> stack;
  while (!input.empty()) {
    l.step(input);
    auto const n = static_cast<unsigned int>(l.model.size());
    auto const x = l.item(input);
    unsigned int const start = input.number(1) * input.number(n);
    auto const found = std::find(l.model.begin() + static_cast<int>(start), l.model.end(), x);
    int const first = found != l.model.end() ? static_cast<int>(found - l.model.begin()) : -1;
    bool const hit = start == 0 && l.touched >= 0 && l.model[static_cast<unsigned>(l.touched)] == x;
    int const expected = hit ? l.touched : first;
    FUZZ_CHECK(l.real.Location(x, start) == expected);
    if (expected >= 0) l.touched = expected;
    auto other = l.real;
    FUZZ_CHECK(other == l.real && (n == 0 || l.real.Last() == l.model.back()));
    other.Append(x);
    FUZZ_CHECK(other != l.real && l.real != other);
    stack.Push(x);
    FUZZ_CHECK(stack.Top() == x && stack.ItemAt(stack.Depth() - 1) == *--stack.end());
    if (input.number(2) != 0) stack.Pop();
  }
}

void string_lists(fuzz_input& input) {
  beside<GCL_String, GCL_StringList> l{GCL_StringList(3), {}};
  while (!input.empty()) {
    l.step(input);
    FUZZ_CHECK(GCL_StringList(l.real) == l.real);
  }
}

}  // namespace

void fuzz_one_input(fuzz_input& input) {
  void (*const kinds[])(fuzz_input&) = {arrays<int>, arrays<GCL_String>, lists, string_lists};
  kinds[input.number(3)](input);
  FUZZ_CHECK(counting::s_bytes == 0);
}
