/// @file
/// System identity: the operating system's users and groups, whatever its name service draws on.
///
/// A text that a function returns belongs to the service. It is valid until the same thread calls
/// that function again; the main thread's outlive every static object, another thread's its
/// thread-local objects. A look-up that fails prints an error naming what was asked for, through
/// the message service (IMSG_ERROR).
///
/// A name of more than 4096 bytes (or than the system's LOGIN_NAME_MAX, where that is more) is no
/// name: the system is not asked for it.
///
/// The trailing `int` parameters are fixed by the product: 0 for look-ups by name, 1 and 0 for
/// look-ups by identifier; nothing here depends on them.
/// @ingroup services
#ifndef MIROXPLAT_SYSUTL_H
#define MIROXPLAT_SYSUTL_H

#include "miroxplat/credutl.h"
#include "miroxplat/plat_config.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The name of the user, or the group, that the process acts as; null when it has none.
/// @ingroup services
/// @{
MIROXPLAT_API char const* sysutl_myloginname(void);
MIROXPLAT_API char const* sysutl_mygroupname(void);
/// @}

/// The name behind an identifier; null when the identifier is not one of ours or has no name.
/// @ingroup services
/// @{
MIROXPLAT_API char const* sysutl_usid_to_user(credutl_sid_s const* sid, int, int);
MIROXPLAT_API char const* sysutl_gsid_to_group(credutl_sid_s const* sid, int, int);
/// @}

/// What a look-up by name returns. Nothing but SYSUTL_FOUND is a success.
/// @ingroup services
enum { SYSUTL_FOUND = 0, SYSUTL_DATABASE_FAILURE = 1, SYSUTL_NO_SUCH_NAME = 2 };

/// Fill `*sid` with the identifier of a user, of a user's primary group, or of a group. Return
/// SYSUTL_FOUND, or another of the codes above; `*sid` is then left alone.
/// @ingroup services
/// @{
MIROXPLAT_API int sysutl_user_to_usid(char const* user, int, credutl_sid_s* sid);
MIROXPLAT_API int sysutl_user_to_gsid(char const* user, int, credutl_sid_s* sid);
MIROXPLAT_API int sysutl_group_to_gsid(char const* group, int, credutl_sid_s* sid);
/// @}

/// The user's full name, or null when there is no such user or it has no full name. Nothing is
/// printed for a name that does not exist: whoever asks for a full name has another name to show.
/// @ingroup services
MIROXPLAT_API char const* sysutl_user_to_fullname(char const* user);

/// Copies the user's home directory, terminating NUL included, to `buffer` of `size` bytes.
/// Non-zero on success; 0 when there is no such user or the text does not fit, and the buffer is
/// then empty.
/// @ingroup services
MIROXPLAT_API int sysutl_get_homedir(char const* user, int size, char* buffer);

#ifdef __cplusplus
}
#endif

#endif
