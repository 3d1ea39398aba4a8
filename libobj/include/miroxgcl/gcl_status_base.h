/// @file
/// GCL_StatusBase: a status that also collects what the message service prints while it exists.
#ifndef MIROXGCL_GCL_STATUS_BASE_H
#define MIROXGCL_GCL_STATUS_BASE_H

#include <memory>

#include "miroxgcl/gcl_imsg_collector.h"
#include "miroxgcl/gcl_status.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // a GCL_Status is never deleted as its base
/// A status with a collector of its own, to derive from.
///
/// There are two stores of messages: the status's own stack (add_message with one argument,
/// error_message, get_message_stack) and the collector's list (the operations below). While the
/// object exists GCL_ImsgRedirect is disabled, so that what a service prints goes to the list, even
/// during an operation that was given this object as its status.
///
/// Each object installs its collector for its whole life. Objects normally end in the reverse order
/// of their start; those copied by ordinary C++ may end in any. A copy, and the target of an
/// assignment, has the other's code and stack and a collector that is new and empty. Should memory
/// for that collector be lacking, an assignment throws std::bad_alloc and leaves the target without
/// one: it then answers as if empty and collects nothing.
///
/// For one thread at a time: it acts on the messages of the thread that made it.
/// @ingroup statuses
class MIROXGCL_API GCL_StatusBase : public GCL_Status {
 public:
  /// Code 0; begins to collect. Throws std::bad_alloc.
  GCL_StatusBase();
  GCL_StatusBase(GCL_StatusBase const& other);
  GCL_StatusBase& operator=(GCL_StatusBase const& other);
  virtual ~GCL_StatusBase();

  /// Whether any message was collected since the last clear().
  virtual bool has_messages() const;

  /// The collected messages, the most recent first: joined as they are, or replacing the content of
  /// a list. The first asks the second, a derived class's own if it has one.
  /// @{
  virtual void messages(GCL_String& text) const;
  virtual void messages(GCL_StringList& list) const;
  /// @}

  /// Adds to the collected messages; the severities are GCL_ImsgCollector's.
  /// @{
  virtual void add_message(GCL_String const& message, int severity);
  using GCL_Status::add_message;
  /// @}

  /// A description in a derived class's words. The library never calls it.
  virtual GCL_String describe() const = 0;

  /// Discards the collected messages and their severities; the code and the stack stay.
  virtual void clear();

  /// Whether a message of that severity was collected since the last clear().
  virtual bool has_message(int severity);

 private:
  std::unique_ptr<GCL_ImsgCollector> m_collector;
};
#pragma GCC diagnostic pop

#endif
