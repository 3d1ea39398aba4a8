/// @file
/// The credential utility's records: security identifiers and credentials built of them.
/// @ingroup services
#ifndef MIROXPLAT_CREDUTL_H
#define MIROXPLAT_CREDUTL_H

#ifdef __cplusplus
#include <cstddef>
extern "C" {
#endif

/// Names a user or a group. Opaque: made and read by the system-identity service only.
/// @ingroup services
typedef struct credutl_sid_s {
  unsigned char bytes[34];  ///< its form is the service's own
} credutl_sid_s;

/// The identity under which something runs. The record is as long as its group count says: with a
/// count of 0 only the first 72 bytes exist, so it is read where it lies and never copied as a
/// value.
/// @ingroup services
typedef struct credutl_sid_credentials_t {
  credutl_sid_s user;           ///< whose identity it is
  credutl_sid_s primary_group;  ///< the group that new files get
  int group_count;              ///< how many secondary groups follow
  credutl_sid_s groups[1];      ///< group_count of them, one after another
} credutl_sid_credentials_t;

#ifdef __cplusplus
}  // extern "C"

static_assert(offsetof(credutl_sid_credentials_t, user) == 0);
static_assert(offsetof(credutl_sid_credentials_t, primary_group) == 34);
static_assert(offsetof(credutl_sid_credentials_t, group_count) == 68);
static_assert(offsetof(credutl_sid_credentials_t, groups) == 72);
#endif

#endif
