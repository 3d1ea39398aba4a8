/// @file
/// Logging of internal errors, with texts in the user's language where a message catalog has them.
/// @ingroup services
#ifndef MIROXPLAT_TBS_H
#define MIROXPLAT_TBS_H

#include "miroxplat/plat_config.h"

#ifdef __cplusplus
#include <cstddef>
extern "C" {
#endif

/// The messages of one source file: where their translations are, and their default texts. An entry
/// is addressed by its index in the two arrays, which hold `count` elements each.
/// @ingroup services
typedef struct tbs_msg_table_t {
  char const* catalog;       ///< the message catalog's name, as catopen takes it
  char const* component;     ///< who issues the messages
  short set;                 ///< the source file's set within the catalog
  short count;               ///< entries
  char const* const* texts;  ///< default texts
  short const* numbers;      ///< message numbers within the set
} tbs_msg_table_t;

/// Prints an error through the message service (IMSG_ERROR), as one message: the entry's text
/// itself, never used as a format, then a line "<component>: <file>:<line>". A null `component`
/// means the table's own; what is null or outside the table is named as such. `reserved` is 0.
///
/// The text comes from the catalog that catopen finds (NLSPATH) in the language that the process
/// has set, or in LANG's if it has set none and neither LC_ALL nor LC_MESSAGES overrides LANG;
/// without a catalog, or without the entry there, it is the default text.
/// @ingroup services
MIROXPLAT_API void tbs_log_int_error(char const* component, tbs_msg_table_t const* table, int index,
                                     char const* file, int line, int reserved);

#ifdef __cplusplus
}  // extern "C"

static_assert(offsetof(tbs_msg_table_t, catalog) == 0);
static_assert(offsetof(tbs_msg_table_t, component) == sizeof(void*));
static_assert(offsetof(tbs_msg_table_t, set) == 2 * sizeof(void*));
static_assert(offsetof(tbs_msg_table_t, count) == 2 * sizeof(void*) + 2);
static_assert(sizeof(void*) != 4 || offsetof(tbs_msg_table_t, texts) == 12);
static_assert(sizeof(void*) != 4 || offsetof(tbs_msg_table_t, numbers) == 16);
static_assert(sizeof(void*) != 4 || sizeof(tbs_msg_table_t) == 20);
#endif

#endif
