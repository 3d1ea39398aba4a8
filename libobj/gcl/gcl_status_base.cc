#include "miroxgcl/gcl_status_base.h"

#include <utility>

GCL_StatusBase::GCL_StatusBase() : m_collector(std::make_unique<GCL_ImsgCollector>()) {}

GCL_StatusBase::GCL_StatusBase(GCL_StatusBase const& other)
    : GCL_Status(other), m_collector(std::make_unique<GCL_ImsgCollector>()) {}

// The old collector ends before the new one begins, so that each finds the table it should.
GCL_StatusBase& GCL_StatusBase::operator=(GCL_StatusBase const& other) {
  GCL_Status::operator=(other);
  m_collector.reset();
  m_collector = std::make_unique<GCL_ImsgCollector>();
  return *this;
}

GCL_StatusBase::~GCL_StatusBase() = default;

bool GCL_StatusBase::has_messages() const {
  return m_collector != nullptr && m_collector->has_messages();
}

void GCL_StatusBase::messages(GCL_StringList& list) const {
  if (m_collector != nullptr) {
    m_collector->messages(list);
  } else {
    list.Clear();
  }
}

void GCL_StatusBase::messages(GCL_String& text) const {
  GCL_StringList list(32);
  messages(list);
  GCL_String joined;
  for (unsigned int i = 0; i < list.Length(); ++i) joined.append(list[i]);
  text = std::move(joined);
}

void GCL_StatusBase::add_message(GCL_String const& message, int severity) {
  if (m_collector != nullptr) m_collector->add_message(message, severity);
}

void GCL_StatusBase::clear() {
  if (m_collector != nullptr) m_collector->clear_messages();
}

bool GCL_StatusBase::has_message(int severity) {
  return m_collector != nullptr && m_collector->has_message(severity);
}
