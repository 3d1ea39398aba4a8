/// @file
/// GCL_Ctrace: traces a function's entry and exit, and what it says in between, as debug lines.
///
///     int Parser::run() {
///       GCL_CTRACE("Parser", "run", GCL_Debug::parsing, GCL_Debug::coarse);
///       GCL_CTRACE_OUT("token=" << token);       // token is looked at only when the trace is enabled
///     }
///
///     ....DEBUG: >>[  12] Parser::run
///     ....DEBUG:          Parser::run, token=5
///     ....DEBUG: <<[  12] Parser::run
#ifndef MIROXGCL_GCL_CTRACE_H
#define MIROXGCL_GCL_CTRACE_H

#include <sstream>

#include "miroxgcl/gcl_debug.h"

/// The trace of one function call, from its declaration to the end of the block.
///
/// Traces end in the reverse order of their start. Every trace takes a number, enabled or not, so
/// that the numbers in a log have gaps; the lines of nested enabled traces are indented one step
/// more. Whether a trace is enabled is asked at its start and again at its end. Entry and
/// exit lines allocate nothing; a message is built by its caller.
///
/// For one thread at a time; each thread has a depth of its own.
/// @ingroup diagnostics
class MIROXGCL_API GCL_Ctrace {
 public:
  /// Starts a trace, and writes its entry line when it is enabled. The names are not copied and
  /// must outlive the trace; null is shown as "?".
  GCL_Ctrace(char const* class_name, char const* function_name, GCL_Debug::Discriminator area,
             GCL_Debug::Level level)
      : m_discriminator(area),
        m_level(level),
        m_class_name(class_name),
        m_function_name(function_name),
        m_trace_id(GCL_Debug::m_debug_ptr->next_trace_id()) {
    if (is_enabled()) enter(m_class_name, m_function_name, m_trace_id);
  }
  GCL_Ctrace(GCL_Ctrace const&) = delete;
  GCL_Ctrace& operator=(GCL_Ctrace const&) = delete;
  /// Writes the exit line when the trace is enabled.
  ~GCL_Ctrace() {
    if (is_enabled()) leave(m_class_name, m_function_name, m_trace_id);
  }

  /// Whether the trace's area is enabled at its level: one comparison.
  bool is_enabled() const { return GCL_Debug::m_debug_ptr->is_enabled(m_discriminator, m_level); }

  /// Writes a line with the class, the function and the text of `message`, enabled or not.
  void output(std::basic_ostringstream<char>& message);

 private:
  // Static, so that a trace that stays disabled takes no memory.
  static void enter(char const* class_name, char const* function_name, std::int32_t trace_id);
  static void leave(char const* class_name, char const* function_name, std::int32_t trace_id);

  GCL_Debug::Discriminator m_discriminator;
  GCL_Debug::Level m_level;
  char const* m_class_name;
  char const* m_function_name;
  std::int32_t m_trace_id;
};

/// Traces from here to the end of the block. In a nested block, its trace hides the outer one.
#define GCL_CTRACE(class_name, function_name, area, level)                         \
  _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wshadow\"")    \
      GCL_Ctrace gcl_ctrace_scope((class_name), (function_name), (area), (level)); \
  _Pragma("GCC diagnostic pop") static_assert(true, "takes the semicolon")

/// Writes a message of the block's trace when it is enabled: what could follow `std::cout <<`.
#define GCL_CTRACE_OUT(...)                                                       \
  do {                                                                            \
    if (gcl_ctrace_scope.is_enabled()) {                                          \
      std::ostringstream gcl_ctrace_message;                                      \
      gcl_ctrace_message << __VA_ARGS__; /* NOLINT(bugprone-macro-parentheses) */ \
      gcl_ctrace_scope.output(gcl_ctrace_message);                                \
    }                                                                             \
  } while (false)

#endif
