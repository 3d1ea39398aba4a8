/// @file
/// GCL_ImsgCollector: while it exists, information, warnings and errors of the message service are
/// collected here, with a record of which of them occurred.
#ifndef MIROXGCL_GCL_IMSG_COLLECTOR_H
#define MIROXGCL_GCL_IMSG_COLLECTOR_H

#include "miroxgcl/gcl_string_list.h"
#include "miroxplat/imsg.h"

/// Collects messages from its construction to its end.
///
/// Messages of other kinds go where they went before. GCL_ImsgRedirect is disabled meanwhile, so
/// that what an operation's services print arrives here and not in its status; a direct
/// GCL_Status::grab_imsg_out still grabs. Collectors and grabs normally end in the reverse order of
/// their start; one that ends earlier removes its
/// own table and leaves the others in place.
///
/// A severity is IMSG_INFORMATION (0), IMSG_WARNING (4) or IMSG_ERROR (6); a derived class may use
/// 0 to 10. Others are not recorded.
///
/// For one thread at a time: it acts on the messages of the thread that made it.
/// @ingroup statuses
class MIROXGCL_API GCL_ImsgCollector {
 public:
  /// Installs its redirect table. Allocates nothing.
  GCL_ImsgCollector();
  GCL_ImsgCollector(GCL_ImsgCollector const&) = delete;
  GCL_ImsgCollector& operator=(GCL_ImsgCollector const&) = delete;

  /// Puts everything back as it was found. When "IMSG_LOST_OUTPUT" was not empty as the first
  /// collector of the process ended, writes the messages still held to standard output, after a
  /// notice.
  virtual ~GCL_ImsgCollector();

  /// Whether any message is held.
  virtual bool has_messages() const;

  /// Replaces the content of `list` by the messages, the most recent first.
  virtual void messages(GCL_StringList& list) const;

  /// Discards all messages and severities.
  virtual void clear_messages();

  /// Puts `message` before the others and records its severity.
  virtual void add_message(GCL_String const& message, int severity);

  /// Whether a message of that severity was added since the last clear_messages().
  virtual bool has_message(int severity);

  /// Calls add_message.
  virtual void handle_message(GCL_String const& message, int severity);

 private:
  static constexpr int severity_count = 11;

  GCL_StringList m_messages;                          // the most recent first
  imsg_redirect_proc m_procs[IMSG_PROC_COUNT];        // the table installed here
  imsg_redirect_proc m_saved_procs[IMSG_PROC_COUNT];  // the table found
  void* m_saved_proc_arg;                             // and its context
  bool m_redirect_was_enabled;
  bool m_has_severity[severity_count];
};

#endif
