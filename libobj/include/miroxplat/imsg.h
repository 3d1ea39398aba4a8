/// @file
/// The message service: prints what the product's services have to say.
///
/// Each message has a kind, its slot in the redirect table. While a table is installed, a message
/// is handed to the procedure in its slot instead of being displayed; a null entry displays it as
/// before. Each thread has a table of its own, which begins as the service's own; nothing here
/// takes a lock.
/// @ingroup services
#ifndef MIROXPLAT_IMSG_H
#define MIROXPLAT_IMSG_H

#include "miroxplat/plat_config.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Receives a message: the table's context pointer and the formatted text, NUL-terminated, in
/// memory that the procedure may write to and that lives until it returns. It may throw; the
/// exception passes through imsg_print to the caller.
/// @ingroup services
typedef void (*imsg_redirect_proc)(void* arg, char* text);

/// The slots that services use. Slot 1 is information too, 5 a warning, 7 an error; 2, 3, 8, 9 and
/// 10 are other kinds.
/// @ingroup services
enum { IMSG_INFORMATION = 0, IMSG_WARNING = 4, IMSG_ERROR = 6 };

/// The number of slots.
/// @ingroup services
enum { IMSG_PROC_COUNT = 11 };

/// Copies the first `count` entries of the installed table to `procs` and its context to `*arg`.
/// Before the first imsg_set_redirect_procs, the table holds the service's own display procedures.
/// @ingroup services
MIROXPLAT_API void imsg_get_redirect_procs(int count, imsg_redirect_proc* procs, void** arg);

/// Installs the first `count` entries of `procs` and the context `arg`; entries beyond keep their
/// procedure. Null entries are kept as given.
/// @ingroup services
MIROXPLAT_API void imsg_set_redirect_procs(imsg_redirect_proc const* procs, int count, void* arg);

/// Formats a message of any length as printf does and hands it to its slot, 0 to 10. A format that
/// the C library cannot fill (a wide character that the locale lacks, more than INT_MAX bytes) is
/// handed over unfilled. `reserved` is -1. Returns the length in bytes of what was handed over;
/// -1, and nothing is, for a slot outside the table.
/// @ingroup services
MIROXPLAT_API int imsg_print(int slot, char const* format, int reserved, ...)
    MIROXPLAT_PRINTF(2, 4);

/// Formats as sprintf does into `dest`, which must have room. `reserved` is -1. Returns the length;
/// -1, and the empty text in `dest`, for a format that the C library cannot fill.
/// @ingroup services
MIROXPLAT_API int imsg_sprintf(char* dest, char const* format, int reserved, ...)
    MIROXPLAT_PRINTF(2, 4);

/// Copies `src` to `dest` without its style sequences (the ECMA-48 terminal sequences that begin
/// with ESC) and ends it with a NUL. `dest` needs strlen(src) + 1 bytes. An unfinished sequence at
/// the end is dropped; the bytes of a UTF-8 character are never taken for a control.
/// @ingroup services
MIROXPLAT_API void imsg_strip_style_chars(char* dest, char const* src);

#ifdef __cplusplus
}
#endif

#endif
