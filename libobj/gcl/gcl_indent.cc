#include "miroxgcl/gcl_indent.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <string_view>

#include "gcl_environment.h"
#include "miroxplat/strutl.h"

std::int32_t GCL_Indent::m_indent_level = 0;
std::int32_t GCL_Indent::m_indent_initialized = 0;
GCL_String GCL_Indent::m_indent_string;
GCL_String GCL_Indent::m_header_format;
GCL_String GCL_Indent::m_footer_format;

namespace {

constexpr std::int32_t initialized_mark = 1029384756;

std::string_view view(GCL_String const& s) { return {s.c_str(), s.length()}; }

void write(std::ostream& os, std::string_view text) {
  os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

// The most bytes of `text`, at most `room`, that do not end inside a character.
std::size_t whole_characters(std::string_view text, std::size_t room) {
  if (text.size() <= room) return text.size();
  for (std::size_t back = 1; back <= std::min<std::size_t>(3, room); ++back) {
    std::size_t const at = room - back;
    auto const left = static_cast<unsigned int>(std::min<std::size_t>(4, text.size() - at));
    if (strutl_mblen(text.data() + at, left) > back) return at;
  }
  return room;
}

// A result text, cut where its buffer ends. What comes after a cut is dropped.
class Text {
 public:
  char const* c_str() const { return m_buffer; }

  void clear() {
    m_length = 0;
    m_is_cut = false;
    m_buffer[0] = '\0';
  }

  void append(std::string_view text) {
    if (m_is_cut) return;
    std::size_t const n = whole_characters(text, sizeof m_buffer - 1 - m_length);
    std::memcpy(m_buffer + m_length, text.data(), n);
    m_length += n;
    m_buffer[m_length] = '\0';
    m_is_cut = n < text.size();
  }

  bool is_cut() const { return m_is_cut; }

 private:
  char m_buffer[1024] = "";
  std::size_t m_length = 0;
  bool m_is_cut = false;
};

// Fills a format: its first "%s" becomes the title, "%%" a percent sign.
void fill(Text& result, std::string_view format, std::string_view title) {
  bool title_is_due = true;
  while (!format.empty() && !result.is_cut()) {
    std::size_t const plain = std::min(format.find('%'), format.size());
    result.append(format.substr(0, plain));
    format.remove_prefix(plain);
    std::string_view const two = format.substr(0, 2);
    if (two == "%%" || (two == "%s" && title_is_due)) {
      result.append(two == "%%" ? "%" : title);
      title_is_due = title_is_due && two != "%s";
      format.remove_prefix(2);
    } else if (!format.empty()) {
      result.append(format.substr(0, 1));
      format.remove_prefix(1);
    }
  }
}

char const* fill_for(Text& result, GCL_String const& format, GCL_String const& title) {
  result.clear();
  if (title.length() != 0) fill(result, view(format), view(title));
  return result.c_str();
}

// Takes a variable's value where it is set, and says whether it is.
void configure(GCL_String& setting, char const* variable) {
  char const* const value = gcl_environment(variable);
  if (value == nullptr) {
    write(std::cout, "Did not find ");
    write(std::cout, variable);
    write(std::cout, " environment variable\n");
    return;
  }
  write(std::cout, "Got ");
  write(std::cout, variable);
  write(std::cout, ": ");
  write(std::cout, value);
  write(std::cout, "\n");
  setting = value;
}

}  // namespace

void GCL_Indent::initialize_indent() {
  m_indent_string = " ";
  m_header_format = "BEGIN %s";
  m_footer_format = "END %s";
  configure(m_indent_string, "GCL_INDENT_STRING");
  configure(m_header_format, "GCL_INDENT_HEADER_FORMAT");
  configure(m_footer_format, "GCL_INDENT_FOOTER_FORMAT");
  m_indent_initialized = initialized_mark;
}

GCL_Indent::GCL_Indent(char const* title) {
  if (m_indent_initialized != initialized_mark) initialize_indent();
  if (title != nullptr) m_name = title;
  char const* const text = header();
  if (*text != '\0') {
    write(std::cerr, "\n");
    write(std::cerr, indent());
    write(std::cerr, text);
  }
  if (m_name.length() != 0) {
    ++m_indent_level;
    write(std::cerr, "\n");
  }
}

GCL_Indent::~GCL_Indent() {
  if (m_name.length() == 0) return;
  --m_indent_level;
  write(std::cerr, indent());
  write(std::cerr, footer());
  write(std::cerr, "\n");
}

char const* GCL_Indent::header() const {
  static Text result;
  return fill_for(result, m_header_format, m_name);
}

char const* GCL_Indent::footer() const {
  static Text result;
  return fill_for(result, m_footer_format, m_name);
}

char const* GCL_Indent::indent() const {
  static Text result;
  result.clear();
  for (int i = 0; i < m_indent_level && !result.is_cut(); ++i) result.append(view(m_indent_string));
  return result.c_str();
}

std::basic_ostream<char>& GCL_Indent::insert(std::basic_ostream<char>& os) const {
  write(os, indent());
  return os;
}

std::basic_ostream<char>& operator<<(std::basic_ostream<char>& os, GCL_Indent const& indent) {
  return indent.insert(os);
}
