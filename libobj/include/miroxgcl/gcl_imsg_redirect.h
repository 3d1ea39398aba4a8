/// @file
/// GCL_ImsgRedirect: for a scope, what the message service prints goes to a status.
///
///     {
///       GCL_ImsgRedirect const redirect(status);
///       code = some_service(...);              // its messages are pushed onto the status
///     }                                        // and are displayed again
///     status.set(code);
#ifndef MIROXGCL_GCL_IMSG_REDIRECT_H
#define MIROXGCL_GCL_IMSG_REDIRECT_H

#include "miroxgcl/gcl_status.h"

/// Redirects messages to a status from its construction to its end.
///
/// Remembers the status and nothing else: each end of the scope asks anew whether redirection is
/// disabled, as it is while a GCL_ImsgCollector exists, and then does nothing. The status must
/// outlive the scope.
///
/// For one thread at a time: it acts on the messages of the thread that made it.
/// @ingroup statuses
class MIROXGCL_API GCL_ImsgRedirect {
 public:
  /// Grabs for `status`, unless redirection is disabled.
  explicit GCL_ImsgRedirect(GCL_Status& status) : m_status(status) {
    if (!m_no_redirect) m_status.grab_imsg_out();
  }
  GCL_ImsgRedirect(GCL_ImsgRedirect const&) = delete;
  GCL_ImsgRedirect& operator=(GCL_ImsgRedirect const&) = delete;
  /// Releases the grab, unless redirection is disabled.
  ~GCL_ImsgRedirect() {
    if (!m_no_redirect) m_status.release_imsg_out();
  }

  /// Switch redirection off and on for the calling thread.
  /// @{
  static void disable_redirection() noexcept { m_no_redirect = true; }
  static void enable_redirection() noexcept { m_no_redirect = false; }
  /// @}

  /// True while redirection is disabled in this thread.
  static __thread bool m_no_redirect __attribute__((tls_model("initial-exec")));

 private:
  GCL_Status& m_status;
};

#endif
