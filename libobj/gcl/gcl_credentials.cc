#include "miroxgcl/gcl_credentials.h"

#include <cstddef>
#include <utility>

#include "miroxgcl/gcl_threads.h"

namespace {

constexpr int chunk_size = 8;

template <class Part>
std::unique_ptr<Part> copy_of(std::unique_ptr<Part> const& part) {
  Part const* const present = gcl_threads::read_made(part);
  return present != nullptr ? std::make_unique<Part>(*present) : nullptr;
}

// The secondary identifiers are where the record's declared array begins, as many as it counts.
credutl_sid_s const* secondary_sids(credutl_sid_credentials_t const& record) {
  auto const* const bytes = reinterpret_cast<unsigned char const*>(&record);
  return reinterpret_cast<credutl_sid_s const*>(bytes +
                                                offsetof(credutl_sid_credentials_t, groups));
}

}  // namespace

// Nothing is handed out unless every identifier has its name.
GCL_Credentials GCL_Credentials::translate(GCL_Status& status,
                                           credutl_sid_credentials_t const& record) {
  GCL_Credentials result;
  result.m_user = std::make_unique<GCL_OSUser>(status, record.user);
  if (!status.is_ok()) return {};
  result.m_primary_group = std::make_unique<GCL_OSGroup>(status, record.primary_group);
  if (!status.is_ok()) return {};
  GCL_OSGroupList& groups = gcl_threads::made_once(result.m_secondary_groups, chunk_size);
  unsigned int room = chunk_size;
  credutl_sid_s const* const sids = secondary_sids(record);
  for (int i = 0; i < record.group_count; ++i) {
    GCL_OSGroup const group(status, sids[i]);
    if (!status.is_ok()) return {};
    LX_DoubleWhenFull(groups, room);
    groups.Insert(group);
  }
  return result;
}

GCL_Credentials::GCL_Credentials(GCL_Status& status, credutl_sid_credentials_t const& record)
    : GCL_Credentials(translate(status, record)) {
  if (!status.is_ok()) status.must_check();
}

GCL_Credentials::GCL_Credentials(GCL_Credentials const& other)
    : m_user(copy_of(other.m_user)),
      m_primary_group(copy_of(other.m_primary_group)),
      m_secondary_groups(copy_of(other.m_secondary_groups)) {}

GCL_Credentials& GCL_Credentials::operator=(GCL_Credentials const& other) {
  if (&other != this) *this = GCL_Credentials(other);
  return *this;
}

void GCL_Credentials::clear() noexcept { *this = GCL_Credentials(); }

GCL_OSUser const& GCL_Credentials::user() const { return gcl_threads::made_once(m_user); }

GCL_OSGroup const& GCL_Credentials::primary_group() const {
  return gcl_threads::made_once(m_primary_group);
}

GCL_OSGroupList const& GCL_Credentials::secondary_groups() const {
  return gcl_threads::made_once(m_secondary_groups, chunk_size);
}

void GCL_Credentials::set_user(GCL_OSUser const& user) { gcl_threads::made_once(m_user) = user; }

void GCL_Credentials::set_primary_group(GCL_OSGroup const& group) {
  gcl_threads::made_once(m_primary_group) = group;
}

void GCL_Credentials::set_secondary_groups(GCL_OSGroupList const& groups) {
  gcl_threads::made_once(m_secondary_groups, chunk_size) = groups;
}
