#include "miroxplat/imsg.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <string>

namespace {

void display_on_stdout(void*, char* text) { std::fputs(text, stdout); }
void display_on_stderr(void*, char* text) { std::fputs(text, stderr); }

struct redirect_table {
  imsg_redirect_proc procs[IMSG_PROC_COUNT];
  void* arg;
};

// Information goes to standard output, everything else to standard error.
constexpr redirect_table own_table = {
    {display_on_stdout, display_on_stdout, display_on_stdout, display_on_stdout, display_on_stderr,
     display_on_stderr, display_on_stderr, display_on_stderr, display_on_stderr, display_on_stderr,
     display_on_stderr},
    nullptr};

// Each thread's own. Initialised before any code runs, so that static constructors may print and
// redirect.
__thread redirect_table s_table __attribute__((tls_model("initial-exec"))) = own_table;

constexpr std::size_t usual_message_size = 512;

// As many as `count` says; a whole table, the usual case, in a few instructions.
void copy_procs(imsg_redirect_proc const* from, int count, imsg_redirect_proc* to) {
  if (count == IMSG_PROC_COUNT) {
    std::copy_n(from, IMSG_PROC_COUNT, to);
  } else {
    std::copy_n(from, std::clamp<int>(count, 0, IMSG_PROC_COUNT), to);
  }
}

// Hands the text to the slot's procedure. What the procedure throws goes to the caller.
void deliver(int slot, char* text) {
  imsg_redirect_proc const proc = s_table.procs[slot];
  (proc != nullptr ? proc : own_table.procs[slot])(s_table.arg, text);
}

// For a format that the C library cannot fill: what it says is better than nothing. The receiver
// gets a copy, which it may write to. Returns its length.
int deliver_as_it_stands(int slot, char const* format) {
  std::string text(format);
  auto const length = static_cast<int>(text.size());
  deliver(slot, text.data());
  return length;
}

// The first byte from `p` on outside low..high. Stops at a NUL, which no range holds.
char const* skip_range(char const* p, unsigned char low, unsigned char high) {
  while (static_cast<unsigned char>(*p) >= low && static_cast<unsigned char>(*p) <= high) ++p;
  return p;
}

// One byte further if the byte at `p` is in low..high: a byte outside is no part of the sequence.
char const* skip_final(char const* p, unsigned char low, unsigned char high) {
  auto const byte = static_cast<unsigned char>(*p);
  return byte >= low && byte <= high ? p + 1 : p;
}

// The end of a control string: behind ESC \ or, where it is allowed, BEL; the text's end if neither
// comes.
char const* skip_control_string(char const* p, bool bell_ends) {
  for (; *p != '\0'; ++p) {
    if (bell_ends && *p == '\a') return p + 1;
    if (*p == '\x1B' && p[1] == '\\') return p + 2;
  }
  return p;
}

// The end of the sequence whose ESC precedes `p`.
char const* skip_sequence(char const* p) {
  switch (*p) {
    case '[':  // CSI: parameters, intermediates, final
      p = skip_range(skip_range(p + 1, 0x30, 0x3F), 0x20, 0x2F);
      return skip_final(p, 0x40, 0x7E);
    case ']':  // OSC
      return skip_control_string(p + 1, true);
    case 'P':  // DCS
    case 'X':  // SOS
    case '^':  // PM
    case '_':  // APC
      return skip_control_string(p + 1, false);
    default:
      return skip_final(skip_range(p, 0x20, 0x2F), 0x30, 0x7E);
  }
}

}  // namespace

void imsg_get_redirect_procs(int count, imsg_redirect_proc* procs, void** arg) {
  copy_procs(s_table.procs, count, procs);
  *arg = s_table.arg;
}

void imsg_set_redirect_procs(imsg_redirect_proc const* procs, int count, void* arg) {
  copy_procs(procs, count, s_table.procs);
  s_table.arg = arg;
}

int imsg_print(int slot, char const* format, int reserved, ...) {
  if (slot < 0 || slot >= IMSG_PROC_COUNT) return -1;
  if (format == nullptr) return deliver_as_it_stands(slot, "(null)");
  char usual[usual_message_size];
  va_list arguments;
  va_start(arguments, reserved);
  int const length = std::vsnprintf(usual, sizeof usual, format, arguments);
  va_end(arguments);
  if (length < 0) return deliver_as_it_stands(slot, format);

  auto const size = static_cast<std::size_t>(length) + 1;
  if (size <= sizeof usual) {
    deliver(slot, usual);
    return length;
  }
  std::unique_ptr<char[]> const whole(new char[size]);
  va_start(arguments, reserved);
  int const written = std::vsnprintf(whole.get(), size, format, arguments);
  va_end(arguments);
  if (written < 0) return deliver_as_it_stands(slot, format);
  deliver(slot, whole.get());
  return written;
}

int imsg_sprintf(char* dest, char const* format, int reserved, ...) {
  va_list arguments;
  va_start(arguments, reserved);
  int const length = std::vsprintf(dest, format, arguments);
  va_end(arguments);
  if (length < 0) *dest = '\0';
  return length;
}

void imsg_strip_style_chars(char* dest, char const* src) {
  while (*src != '\0') {
    if (*src == '\x1B') {
      src = skip_sequence(src + 1);
    } else {
      *dest++ = *src++;
    }
  }
  *dest = '\0';
}
