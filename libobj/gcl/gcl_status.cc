#include "miroxgcl/gcl_status.h"

#include <cstdio>
#include <cstring>
#include <iterator>
#include <utility>

#include "gcl_environment.h"
#include "redirect_context.h"

namespace {

// Read at every message, so that a debugger or the program itself can switch it.
bool copies_to_stdout() {
  char const* const value = gcl_environment("GCL_STATUS_IMSG_COPY");
  return value != nullptr && (std::strcmp(value, "true") == 0 || std::strcmp(value, "TRUE") == 0);
}

}  // namespace

GCL_Status& GCL_Status::operator=(GCL_Status const& other) {
  if (&other == this) return *this;
  reset(other.m_value);
  if (other.m_message_stack != nullptr) copy_messages(other);
  return *this;
}

GCL_Status& GCL_Status::operator=(GCL_Status&& other) noexcept {
  m_value = std::exchange(other.m_value, 0);
  m_message_stack = std::move(other.m_message_stack);
  return *this;
}

void GCL_Status::copy_messages(GCL_Status const& other) {
  m_message_stack = std::make_unique<GCL_ErrMsgStack>(*other.m_message_stack);
}

// A stack made for a message that cannot be pushed goes again.
void GCL_Status::add_message(GCL_String const& message) {
  if (m_message_stack != nullptr) return m_message_stack->Push(message);
  auto stack = std::make_unique<GCL_ErrMsgStack>();
  stack->Push(message);
  m_message_stack = std::move(stack);
}

// Steps from the bottom of the stack to its top, each a constant-time look-up next to the last.
GCL_String GCL_Status::error_message() const {
  GCL_String result;
  if (m_message_stack == nullptr) return result;
  for (unsigned int i = m_message_stack->Depth(); i > 0; --i) {
    result.append(m_message_stack->ItemAt(i - 1));
  }
  return result;
}

void GCL_Status::install_redirect_procs() {
  imsg_get_redirect_procs(IMSG_PROC_COUNT, m_saved_procs, &m_saved_proc_arg);
  static constexpr auto h = &GCL_Status::handle_imsg_out;
  static constexpr imsg_redirect_proc procs[] = {h, h, h, h, h, h, h, h, h, h, h};
  static_assert(std::size(procs) == IMSG_PROC_COUNT);
  imsg_set_redirect_procs(procs, IMSG_PROC_COUNT, this);
  redirect_context_begin({this, m_saved_procs, &m_saved_proc_arg, nullptr});
}

void GCL_Status::restore_redirect_procs() noexcept {
  redirect_context_end(this, m_saved_procs, m_saved_proc_arg);
}

void GCL_Status::handle_imsg_out(void* context, char* text) {
  auto* const status = static_cast<GCL_Status*>(redirect_context_status(context));
  if (status != nullptr) status->add_message(GCL_String(text));
  if (copies_to_stdout()) {
    std::fputs(text, stdout);
    std::fflush(stdout);
  }
}
