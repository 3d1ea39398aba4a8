// Finds the lines of text files that hold any of the given words.
//
//   logscan WORD... [-- FILE...]       without files, reads standard input
//
// Prints each such line as `path:line: text`, whichever way the file ends its lines, and at the end
// what it read and how long that took. A file that cannot be read is reported and does not stop the
// rest. Exit code: 0 when a line was found, 1 when none was, 2 when a file could not be read.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "miroxgcl/gcl_pathname.h"
#include "miroxgcl/gcl_status.h"

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

constexpr unsigned int block_size = 1u << 20;

struct Totals {
  unsigned long long lines = 0;
  unsigned long long matches = 0;
  unsigned long long bytes = 0;
};

// One file's text, a block of whole lines at a time: searching a block at once is faster than
// searching line by line, and only lines that match are ever taken apart.
class Scan {
 public:
  Scan(std::vector<GCL_String> const& words, GCL_String const& path, Totals& totals)
      : m_words(words), m_next(words.size()), m_path(path), m_totals(totals) {}

  void run(GCL_Status& status, std::FILE* file) {
    std::vector<char> buffer(block_size);
    std::size_t held = 0;
    while (std::size_t const n = std::fread(&buffer[held], 1, buffer.size() - held, file)) {
      held += n;
      m_totals.bytes += n;
      std::size_t const whole = end_of_last_line(buffer, held);
      block(GCL_String(buffer.data(), static_cast<unsigned int>(whole)));
      std::memmove(buffer.data(), &buffer[whole], held - whole);
      held -= whole;
      if (held == buffer.size()) buffer.resize(2 * held);  // a line longer than the buffer
    }
    if (std::ferror(file) != 0) return fail(status, m_path);
    block(GCL_String(buffer.data(), static_cast<unsigned int>(held)));
    status.set_ok();
  }

  static void fail(GCL_Status& status, GCL_String const& path) {
    status.set(GCL_Status::general_failure);
    status.add_message(GCL_String("Cannot read ")
                           .append(path)
                           .append(": ")
                           .append(GCL_String(std::strerror(errno)).append("\n")));
  }

 private:
  static std::size_t end_of_last_line(std::vector<char> const& buffer, std::size_t n) {
    void const* const lf = memrchr(buffer.data(), '\n', n);
    return lf == nullptr ? 0
                         : static_cast<std::size_t>(static_cast<char const*>(lf) + 1 - &buffer[0]);
  }

  void block(GCL_String const& text) {
    unsigned int counted = 0;  // line feeds are counted up to here
    for (std::size_t w = 0; w < m_words.size(); ++w) m_next[w] = find(text, m_words[w], 0);
    for (;;) {
      unsigned int const hit = *std::min_element(m_next.begin(), m_next.end());
      if (hit == GCL_String::npos) break;
      count_lines(text, counted, hit);
      counted = show_line(text, hit);
      for (std::size_t w = 0; w < m_words.size(); ++w) {
        if (m_next[w] < counted) m_next[w] = find(text, m_words[w], counted);
      }
    }
    count_lines(text, counted, text.length());
    bool const has_last_line = text.length() != 0 && text.get_at(text.length() - 1) != '\n';
    if (has_last_line && counted != text.length()) ++m_totals.lines;
  }

  // The text is searched past NUL bytes, at which find() ends.
  static unsigned int find(GCL_String const& text, GCL_String const& word, unsigned int from) {
    while (from < text.length()) {
      unsigned int const i = text.find(word, from);
      if (i != GCL_String::npos) return i;
      from += static_cast<unsigned int>(std::strlen(text.c_str() + from)) + 1;
    }
    return GCL_String::npos;
  }

  void count_lines(GCL_String const& text, unsigned int from, unsigned int to) {
    char const* p = text.c_str() + from;
    char const* const end = text.c_str() + to;
    while (
        (p = static_cast<char const*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p))))) {
      ++m_totals.lines;
      ++m_line;
      ++p;
    }
  }

  // Prints the line around `hit` and answers where the next one begins.
  unsigned int show_line(GCL_String const& text, unsigned int hit) {
    char const* const begin = text.c_str();
    auto const* const before = static_cast<char const*>(memrchr(begin, '\n', hit));
    auto const* const behind =
        static_cast<char const*>(std::memchr(begin + hit, '\n', text.length() - hit));
    unsigned int const first =
        before != nullptr ? static_cast<unsigned int>(before + 1 - begin) : 0;
    unsigned int const last =
        behind != nullptr ? static_cast<unsigned int>(behind - begin) : text.length();
    GCL_String line = text.substr(first, last - first);
    line.from_pc_mode();
    std::printf("%s:%llu: ", m_path.c_str(), ++m_line);
    std::fwrite(line.c_str(), 1, line.length(), stdout);
    std::putchar('\n');
    ++m_totals.lines;
    ++m_totals.matches;
    return behind != nullptr ? last + 1 : last;
  }

  std::vector<GCL_String> const& m_words;
  std::vector<unsigned int> m_next;  // where each word comes next in the block
  GCL_String m_path;
  Totals& m_totals;
  unsigned long long m_line = 0;  // lines that ended so far
};

}  // namespace

int main(int argc, char** argv) {
  char** const end = argv + argc;
  char** const separator =
      std::find_if(argv + 1, end, [](char const* a) { return std::strcmp(a, "--") == 0; });
  std::vector<GCL_String> const words(argv + 1, separator);
  if (words.empty() || std::find(words.begin(), words.end(), GCL_String()) != words.end()) {
    std::fprintf(stderr, "usage: logscan WORD... [-- FILE...]\n");
    return 2;
  }

  auto const start = std::chrono::steady_clock::now();
  Totals totals;
  bool all_read = true;
  auto const scan = [&](GCL_String const& path, std::FILE* file) {
    GCL_Status status;
    if (file != nullptr) {
      Scan(words, path, totals).run(status, file);
    } else {
      Scan::fail(status, path);
    }
    if (!status.is_ok()) std::fputs(status.error_message().c_str(), stderr);
    all_read = all_read && status.is_ok();
  };
  if (separator == end) scan("(standard input)", stdin);
  for (char** file = separator; file != end && ++file != end;) {
    GCL_Pathname const path = GCL_Pathname(*file).absolute();
    File const opened(std::fopen(*file, "rb"), std::fclose);
    scan(path.length() != 0 ? path : GCL_Pathname(*file), opened.get());
  }
  std::chrono::duration<double> const seconds = std::chrono::steady_clock::now() - start;
  std::printf("%llu lines, %llu matches, %llu bytes in %.3f s\n", totals.lines, totals.matches,
              totals.bytes, seconds.count());
  return !all_read ? 2 : totals.matches != 0 ? 0 : 1;
}
