// Who this process is: its user, its primary group and its secondary groups.
//
//   whoami [unknown]       With "unknown", the record names a group that is none.
//
// The identity is taken from a record of security identifiers, as services pass it. Exit code: 0
// when each of them has a name, 1 otherwise.
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <vector>

#include "miroxgcl/gcl_credentials.h"
#include "miroxgcl/gcl_imsg_redirect.h"

namespace {

// A record in a block of its own size: it is as long as its group count says.
class Record {
 public:
  Record(credutl_sid_s const& user, credutl_sid_s const& group,
         std::vector<credutl_sid_s> const& groups)
      : m_bytes(offsetof(credutl_sid_credentials_t, groups) + groups.size() * sizeof user) {
    int const count = static_cast<int>(groups.size());
    put(offsetof(credutl_sid_credentials_t, user), &user, sizeof user);
    put(offsetof(credutl_sid_credentials_t, primary_group), &group, sizeof group);
    put(offsetof(credutl_sid_credentials_t, group_count), &count, sizeof count);
    put(offsetof(credutl_sid_credentials_t, groups), groups.data(), groups.size() * sizeof user);
  }

  credutl_sid_credentials_t const& get() const {
    return *reinterpret_cast<credutl_sid_credentials_t const*>(m_bytes.data());
  }

 private:
  void put(std::size_t at, void const* from, std::size_t n) {
    if (n != 0) std::memcpy(&m_bytes[at], from, n);
  }

  std::vector<unsigned char> m_bytes;
};

// The identifiers of this process's user and groups; `status` says whether all were found.
Record own_record(GCL_Status& status, bool with_unknown) {
  GCL_OSUser const me(status);
  credutl_sid_s const user = me.sid(status);
  GCL_OSGroup const group = me.primary_group(status);
  std::vector<credutl_sid_s> groups = {GCL_OSGroup(status).sid(status)};
  if (with_unknown) groups.emplace_back();
  return {user, group.sid(status), groups};
}

}  // namespace

int main(int argc, char** argv) {
  GCL_Status status;
  Record const record = own_record(status, argc > 1 && std::strcmp(argv[1], "unknown") == 0);

  GCL_ImsgRedirect const redirect(status);  // why an identifier has no name
  GCL_Credentials const credentials(status, record.get());
  std::printf("user      %s\n", credentials.user().user_name().c_str());
  std::printf("group     %s\n", credentials.primary_group().group_name().c_str());
  for (unsigned int i = 0; i < credentials.secondary_groups().Length(); ++i) {
    std::printf("also      %s\n", credentials.secondary_groups()[i].group_name().c_str());
  }
  if (!status.is_ok()) {
    std::printf("failed with %d: %s", status.value(), status.error_message().c_str());
  }
  return status.is_ok() ? 0 : 1;
}
