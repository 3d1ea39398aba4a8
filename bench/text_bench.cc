// Reading text by lines, and converting its line ends: 100 MB in lines of 80 bytes.
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "compare.h"
#include "miroxgcl/gcl_string.h"

namespace {

constexpr std::size_t text_size = 100'000'000;
constexpr std::size_t line_size = 80;

std::string const& unix_text() {
  static std::string const text = [] {
    std::string result(text_size, 'x');
    for (std::size_t i = line_size - 1; i < text_size; i += line_size) result[i] = '\n';
    return result;
  }();
  return text;
}

// A file of the text that goes with the process.
class LineFile {
 public:
  LineFile() : m_name("miroxgcl_text_bench.tmp") { std::ofstream(m_name) << unix_text(); }
  LineFile(LineFile const&) = delete;
  LineFile& operator=(LineFile const&) = delete;
  ~LineFile() { std::remove(m_name.c_str()); }
  std::string const& name() const { return m_name; }

 private:
  std::string m_name;
};

template <class String>
void read_lines(long rounds) {
  static LineFile const file;
  for (long i = 0; i < rounds; ++i) {
    std::ifstream in(file.name());
    String line;
    std::size_t bytes = 0;
    while (getline(in, line)) bytes += line.length();
    keep(bytes);
  }
}

// The limit: one hand-written pass over memory.
char* to_pc_by_hand(char* out, char const* p, char const* end) {
  for (; p != end; ++p) {
    if (*p == '\n') *out++ = '\r';
    *out++ = *p;
  }
  return out;
}

char* from_pc_by_hand(char* out, char const* p, char const* end) {
  for (; p != end; ++p) {
    if (*p != '\r') *out++ = *p;
  }
  return out;
}

std::string const& pc_text() {
  static std::string const text = [] {
    std::string result(text_size + text_size / line_size + 1, '\0');
    char const* const begin = unix_text().data();
    char* const end = to_pc_by_hand(result.data(), begin, begin + text_size);
    result.resize(static_cast<std::size_t>(end - result.data()));
    return result;
  }();
  return text;
}

template <std::string const& text(), char* convert(char*, char const*, char const*)>
void convert_by_hand(long rounds) {
  char const* const begin = text().data();
  for (long i = 0; i < rounds; ++i) {
    std::unique_ptr<char[]> out(new char[text_size + text_size / line_size + 1]);
    char* end = convert(out.get(), begin, begin + text().size());
    keep(end);
  }
}

template <std::string const& text(), GCL_String& (GCL_String::*convert)()>
void convert_ours(long rounds) {
  GCL_String const original(text().data(), static_cast<unsigned int>(text().size()));
  for (long i = 0; i < rounds; ++i) {
    GCL_String copy(original);  // shared, so that each round builds its result anew
    (copy.*convert)();
    keep(copy);
  }
}

}  // namespace

int main(int argc, char** argv) {
  Row("getline of 100 MB in 80-byte lines", "std::getline <= 2", 1)
      .ours(read_lines<GCL_String>)
      .peer("std::getline", read_lines<std::string>);
  Row("to_pc_mode of 100 MB", "by hand <= 1.5", 1)
      .ours(convert_ours<unix_text, &GCL_String::to_pc_mode>)
      .peer("by hand", convert_by_hand<unix_text, to_pc_by_hand>);
  Row("from_pc_mode of 100 MB", "by hand <= 1.5", 1)
      .ours(convert_ours<pc_text, &GCL_String::from_pc_mode>)
      .peer("by hand", convert_by_hand<pc_text, from_pc_by_hand>);
  return run_rows(argc, argv);
}
