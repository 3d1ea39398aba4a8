/// @file
/// GCL_Indent: indents nested diagnostic printouts.
///
///     {
///       GCL_Indent const block("Outer");                 // standard error: "\nBEGIN Outer\n"
///       std::cerr << GCL_Indent(nullptr) << "a line\n";  // " a line\n": one step deep
///     }                                                  // "END Outer\n"
///
/// The first object of the process reads three variables, and says so on standard output:
/// GCL_INDENT_STRING, the text of one step (a space), GCL_INDENT_HEADER_FORMAT ("BEGIN %s") and
/// GCL_INDENT_FOOTER_FORMAT ("END %s"). In a format the first "%s" is replaced by the title and
/// "%%" by a percent sign; every other character is written as it is.
#ifndef MIROXGCL_GCL_INDENT_H
#define MIROXGCL_GCL_INDENT_H

#include <cstdint>
#include <iosfwd>

#include "miroxgcl/gcl_config.h"
#include "miroxgcl/gcl_string.h"

/// A block of indented output, from its construction to its end.
///
/// An object with a title opens a block; blocks end in the reverse order of their start. One
/// without a title (null or empty) changes nothing: it writes the indentation where it is inserted.
///
/// For one thread at a time; each thread has a depth and results of its own.
/// @ingroup diagnostics
class MIROXGCL_API GCL_Indent {
 public:
  /// Opens a block and writes its header to standard error, when there is a title.
  explicit GCL_Indent(char const* title);
  GCL_Indent(GCL_Indent const&) = delete;
  GCL_Indent& operator=(GCL_Indent const&) = delete;
  /// Closes the block and writes its footer.
  ~GCL_Indent();

  /// The header and footer of this block, and the indentation of the current depth. Each text is
  /// cut at 1023 bytes, between characters, and stays valid until the thread's next call of the
  /// same function on any object.
  /// @{
  char const* header() const;
  char const* footer() const;
  char const* indent() const;
  /// @}

  /// Writes indent().
  std::basic_ostream<char>& insert(std::basic_ostream<char>& os) const;

  /// Reads the three variables. Called once, by the first object.
  static void initialize_indent();

 private:
  GCL_String m_name;  // the title

  // Titled blocks open in this thread.
  static __thread std::int32_t m_indent_level __attribute__((tls_model("initial-exec")));
  static std::int32_t m_indent_initialized;  // a mark, once the variables are read
  static GCL_String m_indent_string;
  static GCL_String m_header_format;
  static GCL_String m_footer_format;
};

/// Writes indent.indent().
/// @ingroup diagnostics
MIROXGCL_API std::basic_ostream<char>& operator<<(std::basic_ostream<char>& os,
                                                  GCL_Indent const& indent);

#endif
