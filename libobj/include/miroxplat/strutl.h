/// @file
/// The string utility: characters and searches in NUL-terminated UTF-8 text, whatever the locale.
///
/// A byte that starts no valid character counts as a character of one byte. Searches match whole
/// characters, never a piece of one, and read the text forward from where they are told to start
/// (at most three bytes back, to see whether a character begins there).
/// @ingroup services
#ifndef MIROXPLAT_STRUTL_H
#define MIROXPLAT_STRUTL_H

#include "miroxplat/plat_config.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The length in bytes, 1 to 4, of the character that starts at `p`, looking at no more than `n`
/// bytes; 0 when `n` is 0.
/// @ingroup services
MIROXPLAT_API unsigned int strutl_mblen(char const* p, unsigned int n);

/// Non-zero when `pattern` occurs in `text` between byte `start` and the next NUL; `*index` is then
/// its byte position. An empty pattern is not found.
/// @ingroup services
MIROXPLAT_API int strutl_find_str(char const* text, unsigned int start, char const* pattern,
                                  unsigned int* index);

/// Non-zero when a character of `set` occurs in `text` between byte `start` and the next NUL;
/// `*index` is then its byte position in the text and `*second` that of the matching character in
/// the set.
/// @ingroup services
MIROXPLAT_API int strutl_find_char_from(char const* text, unsigned int start, char const* set,
                                        unsigned int* index, unsigned int* second);

/// Copies at most `size` bytes of `text`, terminating NUL included, to `dest`. Mode 1 turns ASCII
/// capitals into small letters and leaves every other byte; any other mode copies unchanged.
/// Nothing is written when `size` is 0.
/// @ingroup services
MIROXPLAT_API void strutl_cvt_case_string(char const* text, int mode, unsigned int size,
                                          char* dest);

/// 0 and the byte index at which the last character of `text` begins, looking at the bytes from
/// `first` up to but not including `last` (-1: the end of the text); non-zero when that is empty.
/// @ingroup services
MIROXPLAT_API int strutl_find_last_char(char const* text, int first, int last, int* index);

#ifdef __cplusplus
}
#endif

#endif
