// The stream of the debug file: whole lines, gathered and handed over a buffer at a time.
#ifndef MIROXGCL_DEBUG_FILE_H
#define MIROXGCL_DEBUG_FILE_H

#include <sys/types.h>

#include <cstddef>
#include <ostream>
#include <streambuf>

// Opens `file`, emptied, for append, on a descriptor above 2 that no program inherits that this one
// starts. A file that would block, or end the process, counts as one that cannot be written: a
// fifo, a socket, whatever is no regular file and no device of characters. The stream has failed
// then.
//
// Each call of write() is one line, or more, and goes whole into the buffer or whole to the system:
// in one call for all that the buffer held. What the system does not take is lost. The lines
// gathered before a fork() are the parent's, who writes them; the destructor writes the rest.
//
// Any number of threads may write at once.
class debug_file : private std::streambuf, public std::ostream {
 public:
  explicit debug_file(char const* file);
  ~debug_file() override;

 private:
  std::streamsize xsputn(char const* text, std::streamsize n) override;
  int overflow(int c) override;
  void hand_over(char const* text, std::size_t n) noexcept;

  int m_descriptor;
  pid_t m_process;  // whose lines are in the buffer
  std::size_t m_used = 0;
  char m_buffer[8192];
};

#endif
