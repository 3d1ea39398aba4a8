#include "miroxgcl/gcl_pathname.h"

#include "miroxplat/fileutl.h"
#include "miroxplat/strutl.h"

GCL_String GCL_Pathname::m_seperator(&GCL_Pathname::m_seperator_char, 1);

namespace {

// Room for one result of the file utility, which is the empty text until there is one.
class Buffer {
 public:
  static constexpr int size = 1024;

  char* get() { return m_text; }

  GCL_Pathname pathname() {
    m_text[size - 1] = '\0';
    return GCL_String(m_text);
  }

 private:
  char m_text[size] = "";
};

// Whether the last character of a text that is not empty is `c`. It is the last before a NUL.
bool ends_with_character(GCL_String const& s, char c) {
  int index = 0;
  return strutl_find_last_char(s.c_str(), 0, -1, &index) == 0 &&
         s.get_at(static_cast<unsigned int>(index)) == c;
}

}  // namespace

char const* GCL_Pathname::separator() noexcept { return "/"; }

GCL_Pathname& GCL_Pathname::append_path(GCL_Pathname const& other) {
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): it may be this pathname
  GCL_Pathname const tail(other);
  bool const needs_separator = length() != 0 && !ends_with_character(*this, m_seperator_char);
  unsigned int const dropped = tail.is_absolute() ? 1 : 0;
  if (needs_separator) append(m_seperator_char);
  try {
    append(tail.c_str() + dropped, tail.length() - dropped);
  } catch (...) {
    if (needs_separator) remove(length() - 1, 1);
    throw;
  }
  return *this;
}

GCL_Pathname GCL_Pathname::absolute() const {
  Buffer path;
  bool const done = fileutl_abspn(c_str(), path.get(), Buffer::size) == 0;
  return done ? path.pathname() : GCL_Pathname();
}

GCL_Pathname GCL_Pathname::dirname() const {
  Buffer directory;
  Buffer leaf;
  bool const done =
      fileutl_strip_leaf(c_str(), Buffer::size, directory.get(), Buffer::size, leaf.get()) == 0;
  return done ? directory.pathname() : GCL_Pathname();
}

GCL_Pathname GCL_Pathname::basename() const {
  Buffer directory;
  Buffer leaf;
  bool const done =
      fileutl_strip_leaf(c_str(), Buffer::size, directory.get(), Buffer::size, leaf.get()) == 0;
  return done ? leaf.pathname() : GCL_Pathname();
}

// All three results exist before the first argument changes.
void GCL_Pathname::components(GCL_String& source, GCL_Pathname& mount, GCL_Pathname& below) const {
  Buffer parts[3];
  bool const done = fileutl_path_locate(c_str(), parts[0].get(), Buffer::size, parts[1].get(),
                                        Buffer::size, parts[2].get(), Buffer::size) == 0;
  GCL_Pathname first = done ? parts[0].pathname() : GCL_Pathname();
  GCL_Pathname second = done ? parts[1].pathname() : GCL_Pathname();
  GCL_Pathname third = done ? parts[2].pathname() : GCL_Pathname();
  source = first;
  mount = second;
  below = third;
}
