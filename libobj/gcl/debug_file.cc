#include "debug_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <mutex>

namespace {

// One for all such files: there is one in a process, but for tests.
std::mutex s_mutex;

bool may_be_written(int descriptor) {
  struct stat status;
  return fstat(descriptor, &status) == 0 && (S_ISREG(status.st_mode) || S_ISCHR(status.st_mode));
}

// -1 when the file cannot be written.
int open_for_append(char const* file) {
  int const flags = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  int const descriptor = open(file, flags, 0666);
  if (descriptor < 0) return -1;
  constexpr int first_free = STDERR_FILENO + 1;
  int const result =
      may_be_written(descriptor) ? fcntl(descriptor, F_DUPFD_CLOEXEC, first_free) : -1;
  close(descriptor);
  return result;
}

}  // namespace

debug_file::debug_file(char const* file)
    : std::ostream(nullptr), m_descriptor(open_for_append(file)), m_process(getpid()) {
  rdbuf(this);
  if (m_descriptor < 0) setstate(badbit);
}

debug_file::~debug_file() {
  if (m_descriptor < 0) return;
  if (m_process == getpid()) hand_over(m_buffer, m_used);
  close(m_descriptor);
}

std::streamsize debug_file::xsputn(char const* text, std::streamsize n) {
  std::lock_guard<std::mutex> const lock(s_mutex);
  if (m_process != getpid()) {  // in a child: what is gathered is the parent's
    m_process = getpid();
    m_used = 0;
  }
  auto const size = static_cast<std::size_t>(n);
  if (size > sizeof m_buffer - m_used) {
    hand_over(m_buffer, m_used);
    m_used = 0;
  }
  if (size > sizeof m_buffer) {
    hand_over(text, size);
  } else {
    std::memcpy(m_buffer + m_used, text, size);
    m_used += size;
  }
  return n;
}

int debug_file::overflow(int c) {
  using traits = std::char_traits<char>;
  char const text = static_cast<char>(c);
  if (c != traits::eof()) xsputn(&text, 1);
  return traits::not_eof(c);
}

void debug_file::hand_over(char const* text, std::size_t n) noexcept {
  while (n != 0) {
    ssize_t const written = ::write(m_descriptor, text, n);
    if (written < 0 && errno != EINTR) return;
    if (written > 0) {
      text += written;
      n -= static_cast<std::size_t>(written);
    }
  }
}
