/// @file
/// GCL_Assert: checks that report through the product's internal-error log.
///
///     if (!GCL_CHECK(size > 0)) return;                 // logs when the condition is false
///     if (!GCL_CHECK_STATUS(status, size > 0)) return;  // and reports it in the status
///     GCL_ASSERT(m_head != nullptr);                    // logs and ends the process
///     GCL_NOT_YET_IMPLEMENTED();                        // logs
///
/// The macros supply the file and the line and evaluate each argument once, in every build.
///
/// An assertion that fails while a status grabs or a collector exists ends the process with its
/// text captured: "GCL_STATUS_IMSG_COPY" shows it, and gdb finds it in the process and in its core.
#ifndef MIROXGCL_GCL_ASSERT_H
#define MIROXGCL_GCL_ASSERT_H

#include "miroxgcl/gcl_status.h"

/// The functions behind the macros. Any thread may call them; what they log goes where the calling
/// thread's messages go.
/// @ingroup diagnostics
class MIROXGCL_API GCL_Assert {
 public:
  /// Answer the condition. When it is false they log "Unexpected error." for that place; the second
  /// also sets the status to 1001 and has the log's message on it. When it is true they do nothing:
  /// the status is not even set to ok.
  /// @{
  static bool gcl_check(bool condition, char const* file, int line);
  static bool gcl_check(GCL_Status& status, bool condition, char const* file, int line);
  /// @}

  /// Log "Not yet implemented." for that place; the second also sets the status to 1001.
  /// @{
  static void gcl_not_yet_implemented(char const* file, int line);
  static void gcl_not_yet_implemented(GCL_Status& status, char const* file, int line);
  /// @}

  /// When the condition is false, logs "Assertion failure." for that place, unless the variable
  /// "GCL_ASSERT_DONT_LOG" is set, and ends the process with abort(), unless "GCL_ASSERT_CONTINUE"
  /// is; an empty value counts as none. Both are read at each failure.
  static void gcl_assert(bool condition, char const* file, int line);
};

/// Answers the condition; logs "Unexpected error." for this place when it is false.
#define GCL_CHECK(condition) GCL_Assert::gcl_check((condition) ? true : false, __FILE__, __LINE__)
/// The same, reported in the status too.
#define GCL_CHECK_STATUS(status, condition) \
  GCL_Assert::gcl_check((status), (condition) ? true : false, __FILE__, __LINE__)
/// Logs "Assertion failure." and ends the process when the condition is false.
#define GCL_ASSERT(condition) GCL_Assert::gcl_assert((condition) ? true : false, __FILE__, __LINE__)
/// Logs "Not yet implemented." for this place.
#define GCL_NOT_YET_IMPLEMENTED() GCL_Assert::gcl_not_yet_implemented(__FILE__, __LINE__)

#endif
