#include "miroxgcl/gcl_indent.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>

#include "gcl_environment.h"
#include "gcl_output.h"
#include "miroxplat/strutl.h"

__thread std::int32_t GCL_Indent::m_indent_level = 0;
std::int32_t GCL_Indent::m_indent_initialized = 0;
GCL_String GCL_Indent::m_indent_string;
GCL_String GCL_Indent::m_header_format;
GCL_String GCL_Indent::m_footer_format;

namespace {

constexpr std::int32_t initialized_mark = 1029384756;

std::string_view view(GCL_String const& s) { return {s.c_str(), s.length()}; }

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

enum Which { of_header, of_footer, of_indentation, which_count };

// The calling thread's result. The first thread to ask has static memory, which outlives every
// static object; the others' goes with them.
Text& result_of_thread(Which which) {
  static Text first_thread[which_count];
  static __thread char identity __attribute__((tls_model("initial-exec")));
  static char* first = nullptr;
  char* nobody = nullptr;
  if (__atomic_compare_exchange_n(&first, &nobody, &identity, false, __ATOMIC_RELAXED,
                                  __ATOMIC_RELAXED) ||
      nobody == &identity) {
    return first_thread[which];
  }
  static thread_local std::unique_ptr<Text[]> const other_thread(new Text[which_count]);
  return other_thread[which];
}

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
  std::string line = value != nullptr ? "Got " : "Did not find ";
  line.append(variable);
  line.append(value != nullptr ? std::string(": ") + value : " environment variable");
  gcl_write_diagnostic(std::cout, line += '\n');
  if (value != nullptr) setting = value;
}

// The first thread to come initialises for all.
void initialize_once(std::int32_t const& mark, void (*initialize)()) {
  static std::mutex mutex;
  if (__atomic_load_n(&mark, __ATOMIC_ACQUIRE) == initialized_mark) return;
  std::lock_guard<std::mutex> const lock(mutex);
  if (mark != initialized_mark) initialize();
}

}  // namespace

void GCL_Indent::initialize_indent() {
  m_indent_string = " ";
  m_header_format = "BEGIN %s";
  m_footer_format = "END %s";
  configure(m_indent_string, "GCL_INDENT_STRING");
  configure(m_header_format, "GCL_INDENT_HEADER_FORMAT");
  configure(m_footer_format, "GCL_INDENT_FOOTER_FORMAT");
  __atomic_store_n(&m_indent_initialized, initialized_mark, __ATOMIC_RELEASE);
}

GCL_Indent::GCL_Indent(char const* title) {
  initialize_once(m_indent_initialized, &GCL_Indent::initialize_indent);
  if (title != nullptr) m_name = title;
  char const* const text = header();
  if (*text != '\0') {
    for (char const* const piece : {"\n", indent(), text}) gcl_write_diagnostic(std::cerr, piece);
  }
  if (m_name.length() != 0) {
    ++m_indent_level;
    gcl_write_diagnostic(std::cerr, "\n");
  }
}

GCL_Indent::~GCL_Indent() {
  if (m_name.length() == 0) return;
  --m_indent_level;
  for (char const* const piece : {indent(), footer(), "\n"}) gcl_write_diagnostic(std::cerr, piece);
}

char const* GCL_Indent::header() const {
  Text& result = result_of_thread(of_header);
  return fill_for(result, m_header_format, m_name);
}

char const* GCL_Indent::footer() const {
  Text& result = result_of_thread(of_footer);
  return fill_for(result, m_footer_format, m_name);
}

char const* GCL_Indent::indent() const {
  Text& result = result_of_thread(of_indentation);
  result.clear();
  for (int i = 0; i < m_indent_level && !result.is_cut(); ++i) result.append(view(m_indent_string));
  return result.c_str();
}

std::basic_ostream<char>& GCL_Indent::insert(std::basic_ostream<char>& os) const {
  char const* const text = indent();
  return os.write(text, static_cast<std::streamsize>(std::strlen(text)));
}

std::basic_ostream<char>& operator<<(std::basic_ostream<char>& os, GCL_Indent const& indent) {
  return indent.insert(os);
}
