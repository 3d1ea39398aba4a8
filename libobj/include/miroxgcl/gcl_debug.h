/// @file
/// GCL_Debug: which of the process's debug traces are switched on, and where their lines go.
///
/// Configured once, before the first static object of any file that includes this header:
///
///     MIROX_GCL_DEBUG=1-4.3,9    areas 1 to 4 at level 3, area 9 at level 1
///     MIROX_GCL_DEBUG_FILE=log   lines go to this file, which is emptied, not to standard error; they
///                                are lost, and nothing else is, when it cannot be written or is no
///                                regular file and no device of characters
///
/// Functions are traced with gcl_ctrace.h.
#ifndef MIROXGCL_GCL_DEBUG_H
#define MIROXGCL_GCL_DEBUG_H

#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <string_view>
#include <utility>

#include "miroxgcl/gcl_config.h"
#include "miroxgcl/gcl_threads.h"

/// The process's debug table and its debug file.
///
/// One instance for each process, at m_debug_ptr. Any number of threads may trace at once: each has
/// a depth of its own, and lines are whole. set_levels() is for one thread, while no other traces.
/// @ingroup diagnostics
class MIROXGCL_API GCL_Debug {
 public:
  /// A subject area: 0 to 711. A product numbers its own from `own_area` on, as in
  /// `constexpr auto billing = GCL_Debug::Discriminator{GCL_Debug::own_area + 5};`. An area outside
  /// the table is never enabled.
  enum Discriminator : int {
    general = 0,
    startup = 1,
    configuration = 2,
    reading = 3,
    writing = 4,
    parsing = 5,
    evaluation = 6,
    storage = 7,
    network = 8,
    presentation = 9,
    own_area = 10,
    last_area = 711
  };

  /// How fine a trace is. A trace is enabled when its area's level is at least its own: a bare area
  /// number in the variable enables `coarse` and nothing finer; `always` cannot be switched off.
  enum Level : int { always = 0, coarse = 1, fine = 2, finest = 3 };

  /// Reads the two variables, then applies `levels` on top; null for none.
  explicit GCL_Debug(char const* levels);
  GCL_Debug(GCL_Debug const&) = delete;
  GCL_Debug& operator=(GCL_Debug const&) = delete;
  /// Closes the debug file.
  ~GCL_Debug();

  /// Applies a specification: items `first[-last][.level]`, each followed by one separator, which
  /// may be any other character. A missing number is 0, a missing level 1; areas above 711 count as
  /// 711. Every text is valid, the empty one too: it names area 0. Answers 0.
  int set_levels(char const* levels);

  /// Whether an area is enabled at a level: one comparison.
  bool is_enabled(Discriminator area, Level level) const {
    return static_cast<unsigned int>(area) < area_count && m_levels[area] >= level;
  }

  /// Writes a line with the text of `message`, indented by the traces that are open, whatever their
  /// levels are: whole, in one piece. Lines of a debug file are gathered and not flushed. Throws
  /// std::bad_alloc alone, for a copy of the text.
  void output(std::basic_ostringstream<char>& message);

  /// The instance; null before the first initialiser of the process and after the last.
  static GCL_Debug* m_debug_ptr;

  /// Each file that includes this header holds one. The first makes the instance, and so before any
  /// static object of its file; the last to go destroys it.
  class MIROXGCL_API _DebugInit {
   public:
    _DebugInit();
    _DebugInit(_DebugInit const&) = delete;
    _DebugInit& operator=(_DebugInit const&) = delete;
    ~_DebugInit();

   private:
    static std::uint16_t m_init_cnt;
  };

 private:
  friend class GCL_Ctrace;

  static constexpr int area_count = 712;

  // The number of the next trace, after 2^31 - 1 the least.
  std::int32_t next_trace_id() noexcept {
    if (!gcl_threads::is_single()) return __atomic_fetch_add(&m_trace_count, 1, __ATOMIC_RELAXED);
    auto const next = static_cast<std::uint32_t>(m_trace_count) + 1;
    return std::exchange(m_trace_count, static_cast<std::int32_t>(next));
  }

  // The depth of the calling thread: the field for the one that made this object.
  MIROXGCL_LOCAL std::int32_t& depth() noexcept;

  // Writes one line made of `pieces`. The one place that knows the prefix and the indentation.
  MIROXGCL_LOCAL void write_line(std::initializer_list<std::string_view> pieces) noexcept;

  std::int32_t m_levels[area_count];  // the level enabled for each area
  std::ostream* m_stream;             // standard error, or a file stream that this object owns
  std::int32_t m_depth;               // traces that wrote their entry line and not yet their exit
  std::int32_t m_trace_count;         // traces opened so far, enabled or not
};

static GCL_Debug::_DebugInit _debug_init;

#endif
