#include "gcl_output.h"

#include <ostream>
#include <streambuf>

void gcl_write_diagnostic(std::ostream& stream, std::string_view text) noexcept {
  try {
    if (!stream.good() || stream.rdbuf() == nullptr) return;
    if (stream.tie() != nullptr) stream.tie()->flush();
    stream.rdbuf()->sputn(text.data(), static_cast<std::streamsize>(text.size()));
    if ((stream.flags() & std::ios_base::unitbuf) != 0) stream.rdbuf()->pubsync();
  } catch (...) {  // a buffer of the program's own, or a stream that it made throw
  }
}
