#include "miroxgcl/gcl_imsg_collector.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "gcl_environment.h"
#include "miroxgcl/gcl_imsg_redirect.h"
#include "redirect_context.h"

namespace {

constexpr int list_chunk_size = 32;

template <int Severity>
void collect(void* collector, char* text) {
  static_cast<GCL_ImsgCollector*>(collector)->add_message(GCL_String(text), Severity);
}

void GCL_ImsgCollector_handle_info_msg(void* collector, char* text) {
  collect<IMSG_INFORMATION>(collector, text);
}

void GCL_ImsgCollector_handle_warning_msg(void* collector, char* text) {
  collect<IMSG_WARNING>(collector, text);
}

void GCL_ImsgCollector_handle_error_msg(void* collector, char* text) {
  collect<IMSG_ERROR>(collector, text);
}

// Decided once for the process, when the first collector ends.
bool shows_lost_output() {
  static bool const imsg_lost_output = gcl_environment_is_set("IMSG_LOST_OUTPUT");
  return imsg_lost_output;
}

// Reads the list where it is: nothing here can fail for lack of memory.
void show_lost_output(GCL_StringList const& messages) {
  std::puts("Notice: some imsg output may not have been displayed:");
  for (unsigned int i = 0; i < messages.Length(); ++i) std::puts(messages[i].c_str());
}

}  // namespace

// What can fail comes before anything is installed.
GCL_ImsgCollector::GCL_ImsgCollector() : m_messages(list_chunk_size) {
  GCL_ImsgCollector::clear_messages();
  imsg_get_redirect_procs(IMSG_PROC_COUNT, m_saved_procs, &m_saved_proc_arg);
  std::copy(std::begin(m_saved_procs), std::end(m_saved_procs), m_procs);
  m_procs[IMSG_INFORMATION] = m_procs[IMSG_INFORMATION + 1] = GCL_ImsgCollector_handle_info_msg;
  m_procs[IMSG_WARNING] = m_procs[IMSG_WARNING + 1] = GCL_ImsgCollector_handle_warning_msg;
  m_procs[IMSG_ERROR] = m_procs[IMSG_ERROR + 1] = GCL_ImsgCollector_handle_error_msg;
  imsg_set_redirect_procs(m_procs, IMSG_PROC_COUNT, this);

  redirect_context_begin({this, m_saved_procs, &m_saved_proc_arg, &m_redirect_was_enabled});

  m_redirect_was_enabled = !GCL_ImsgRedirect::m_no_redirect;
  GCL_ImsgRedirect::disable_redirection();
}

GCL_ImsgCollector::~GCL_ImsgCollector() {
  bool const passes_flag = redirect_context_passes_flag(this, m_redirect_was_enabled);
  redirect_context_end(this, m_saved_procs, m_saved_proc_arg);
  if (!passes_flag) GCL_ImsgRedirect::m_no_redirect = !m_redirect_was_enabled;
  if (shows_lost_output() && m_messages.Length() != 0) show_lost_output(m_messages);
}

bool GCL_ImsgCollector::has_messages() const { return m_messages.Length() != 0; }

void GCL_ImsgCollector::messages(GCL_StringList& list) const { list = m_messages; }

void GCL_ImsgCollector::clear_messages() {
  m_messages.Clear();
  std::fill(std::begin(m_has_severity), std::end(m_has_severity), false);
}

void GCL_ImsgCollector::add_message(GCL_String const& message, int severity) {
  m_messages.Insert(message);
  if (severity >= 0 && severity < severity_count) m_has_severity[severity] = true;
}

bool GCL_ImsgCollector::has_message(int severity) {
  return severity >= 0 && severity < severity_count && m_has_severity[severity];
}

void GCL_ImsgCollector::handle_message(GCL_String const& message, int severity) {
  add_message(message, severity);
}
