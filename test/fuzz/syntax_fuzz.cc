// The library's small languages: debug levels, indentation formats, style sequences, pathnames and
// dates, each against a model of its own.
#include <algorithm>
#include <array>
#include <climits>
#include <iostream>

#include "fuzz/fuzz_input.h"
#include "miroxgcl/gcl.h"

namespace {

void check_levels(fuzz_input& input) {
  std::string const spec = input.text(16, "012345678901234567890123456789--..., +x\xFF");
  char const* p = spec.c_str();
  auto const number = [&p](double most) {
    std::string const digits(p, std::strspn(p, "0123456789"));
    p += digits.size();
    return static_cast<int>(std::min(std::strtod(digits.c_str(), nullptr), most));
  };
  int levels[712] = {};
  do {
    int const first = number(711);
    int const last = *p == '-' && ++p ? number(711) : first;
    int const level = *p == '.' && ++p ? number(INT_MAX) : 1;
    for (int i = first; i <= last; ++i) levels[i] = level;
  } while (*p++ != '\0');
  GCL_Debug const debug(spec.c_str());
  for (int i = 0; i < 712; ++i) {
    auto const area = GCL_Debug::Discriminator{i};
    FUZZ_CHECK(debug.is_enabled(area, GCL_Debug::Level{levels[i]}));
    FUZZ_CHECK(levels[i] == INT_MAX || !debug.is_enabled(area, GCL_Debug::Level{levels[i] + 1}));
  }
}

void check_format(fuzz_input& input) {
  std::string const format = input.text(12, "%%%ss nx");
  std::string title = input.text(40, "%s%nx\xC3\xA4");
  for (auto doublings = input.number(7); doublings != 0; --doublings) title += title;
  std::string filled;
  for (std::size_t i = 0, titles = 0; i < format.size() && !title.empty(); ++i) {
    std::string const two = format.substr(i, 2);
    bool const is_title = two == "%s" && titles++ == 0;
    filled += is_title ? title : format.substr(i, 1);
    if (is_title || two == "%%") ++i;
  }
  for (std::ostream* stream : {&std::cout, &std::cerr}) stream->setstate(std::ios::failbit);
  setenv("GCL_INDENT_HEADER_FORMAT", format.c_str(), 1);
  GCL_Indent::initialize_indent();
  unsetenv("GCL_INDENT_HEADER_FORMAT");
  std::string const header = GCL_Indent(title.c_str()).header();
  // A cut lies between characters.
  if (filled.size() > 1023) filled.resize(std::clamp<std::size_t>(header.size(), 1020, 1023));
  FUZZ_CHECK(header == filled);
}

void check_styles(fuzz_input& input) {
  GCL_String plain(input.text(20, "\x1B\x1B[]PX^_\a\\01;m( \xC3\n"));
  std::string const sequence = "\x1B[" + input.text(5, "01;?") + "m";
  FUZZ_CHECK(plain.remove_formatting().find("\x1B") == plain.npos);
  FUZZ_CHECK((plain + sequence.c_str() + plain).remove_formatting() == plain + plain);
}

void check_paths(fuzz_input& input) {
  std::string const left = input.text(8, "//..ab"), right = input.text(8, "//..ab");
  std::string const seam = left.empty() || left.back() == '/' ? "" : "/";
  GCL_Pathname path = GCL_String(left.c_str());
  path.append_path(GCL_String(right.c_str()));
  FUZZ_CHECK(path.c_str() == left + seam + right.substr(right[0] == '/' ? 1 : 0));
  FUZZ_CHECK(path.dirname().append_path(path.basename()).absolute() == path.absolute());
}

// A date, read and written again.
std::string whole(GCL_String const& text) {
  GCL_Status status;
  return GCL_DateTime(status, text, GCL_DateTime::past).long_date_time().c_str();
}

void check_dates(fuzz_input& input) {
  std::string text = whole(("@" + std::to_string(input.number(INT_MAX))).c_str());
  auto const changed = std::min<std::size_t>(input.number(40), text.size());
  text.replace(changed, 1, input.text(2, "0123456789, S:"));
  std::string const again = whole(text.c_str());
  FUZZ_CHECK(whole(again.c_str()) == again);
}

}  // namespace

void fuzz_one_input(fuzz_input& input) {
  std::array const checks{check_levels, check_format, check_styles, check_paths, check_dates};
  for (std::size_t i = 0; !input.empty(); ++i) checks[i % checks.size()](input);
}
