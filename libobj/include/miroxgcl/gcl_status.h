/// @file
/// GCL_Status: the value that every operation which can fail reports into: a code, 0 for success,
/// and the messages that explain a failure.
///
///     GCL_Status status;
///     credutl_sid_s const sid = GCL_OSUser(status, "nobody-here").sid(status);
///     if (!status.is_ok()) std::cerr << status.value() << ": " << status.error_message().c_str();
///
/// The convention: an operation that can fail takes a GCL_Status& as its first parameter. On
/// success it sets code 0, which discards the messages held so far; on failure it sets another code
/// and keeps them, so that a caller who passes one status through several operations looks at it
/// after each. 1001 is the library's general failure, 1002 a user or group that does not exist.
#ifndef MIROXGCL_GCL_STATUS_H
#define MIROXGCL_GCL_STATUS_H

#include <memory>
#include <utility>

#include "miroxgcl/gcl_err_msg_stack.h"
#include "miroxgcl/gcl_string.h"
#include "miroxplat/imsg.h"

/// A code and the messages that explain it.
///
/// Copies are deep and never include a grab; a status without messages owns no memory. When memory
/// for a message cannot be had, std::bad_alloc comes through.
///
/// As safe as the standard library's values, but for an open grab: it acts on the messages of the
/// thread that opened it, and the status then belongs to that thread.
/// @ingroup statuses
class MIROXGCL_API GCL_Status {
 public:
  /// The codes that the library sets; an operation may also pass on a service's own.
  /// @{
  static constexpr int general_failure = 1001;
  static constexpr int no_such_name = 1002;  ///< there is no such user or group
  /// @}

  /// Code 0, no messages. Allocates nothing.
  GCL_Status() noexcept = default;
  /// Copies the code and the messages; never a grab.
  GCL_Status(GCL_Status const& other) : m_value(other.m_value) {
    if (other.m_message_stack != nullptr) copy_messages(other);
  }
  /// Takes the messages; `other` is ok and empty afterwards.
  GCL_Status(GCL_Status&& other) noexcept
      : m_value(std::exchange(other.m_value, 0)),
        m_message_stack(std::move(other.m_message_stack)) {}
  /// Ends a grab that is still open.
  ~GCL_Status() {
    if (m_grab_count > 0) restore_redirect_procs();
  }

  /// Keeps the grab that may be open on this status. When the messages cannot be copied, this
  /// status has the other's code and no message.
  /// @{
  GCL_Status& operator=(GCL_Status const& other);
  GCL_Status& operator=(GCL_Status&& other) noexcept;
  /// @}

  /// Whether the code is 0.
  [[nodiscard]] bool is_ok() const noexcept { return m_value == 0; }
  /// Whether the code is not 0.
  [[nodiscard]] bool failed() const noexcept { return m_value != 0; }
  explicit operator bool() const = delete;  // which of the two is meant: is_ok() or failed()?
  /// The code.
  /// @{
  [[nodiscard]] int value() const noexcept { return m_value; }
  int peek() const noexcept { return m_value; }  ///< the same as value()
  /// @}

  /// Says that the caller has looked; no effect.
  void must_check() const noexcept {}

  /// Sets the code. 0 discards the messages, any other code keeps them.
  void set(int value) {
    if (value == 0) discard_messages();
    m_value = value;
  }
  /// Sets the code and discards the messages.
  /// @{
  void reset(int value) {
    discard_messages();
    m_value = value;
  }
  void set_ok() { reset(0); }
  /// @}

  /// The messages, the most recent on top; null when there is none. The status owns them: the
  /// pointer stays valid until they are discarded or the status is assigned to.
  GCL_ErrMsgStack* get_message_stack() noexcept { return m_message_stack.get(); }

  /// Puts a message on top. The code stays.
  void add_message(GCL_String const& message);

  /// All messages joined as they are, the oldest first. Linear in their total length.
  [[nodiscard]] GCL_String error_message() const;

  /// From grab to release, everything the message service prints is added here instead of being
  /// displayed. Grabs nest. Normally those of several statuses end in the reverse order of their
  /// start; in any other order each takes its table away all the same. A grab belongs to the
  /// object: it does not move with its value, and a status in an array moves. GCL_ImsgRedirect does
  /// both for a scope.
  /// @{
  void grab_imsg_out() {
    if (m_grab_count++ == 0) install_redirect_procs();
  }
  void release_imsg_out() {
    if (m_grab_count > 0 && --m_grab_count == 0) restore_redirect_procs();
  }
  /// @}

  /// Receives a message for the status `context`. With "GCL_STATUS_IMSG_COPY" set to "true" or
  /// "TRUE", also writes it to standard output.
  static void handle_imsg_out(void* context, char* text);

 private:
  void discard_messages() noexcept { m_message_stack.reset(); }
  void copy_messages(GCL_Status const& other);
  void install_redirect_procs();
  void restore_redirect_procs() noexcept;

  int m_value = 0;
  std::unique_ptr<GCL_ErrMsgStack> m_message_stack;   // null without messages
  int m_grab_count = 0;                               // grabs open on this status
  imsg_redirect_proc m_saved_procs[IMSG_PROC_COUNT];  // the table found by the first, while any is
  void* m_saved_proc_arg = nullptr;                   // and its context; null before the first
};

/// Compare codes; messages do not matter.
/// @{
MIROXGCL_API inline bool operator==(GCL_Status const& a, GCL_Status const& b) noexcept {
  return a.value() == b.value();
}
MIROXGCL_API inline bool operator==(GCL_Status const& status, int value) noexcept {
  return status.value() == value;
}
MIROXGCL_API inline bool operator==(int value, GCL_Status const& status) noexcept {
  return status.value() == value;
}
/// @}

static_assert(sizeof(void*) != 4 || sizeof(GCL_Status) == 60, "the layout on 32 bit");

#endif
