/// @file
/// The library's message-catalog tables. Each names its catalog and set and holds the default
/// texts, which are printf formats; an entry is addressed by its index.
/// @ingroup diagnostics
#ifndef MIROXGCL_GCL_MSG_TABLES_H
#define MIROXGCL_GCL_MSG_TABLES_H

#include "miroxgcl/gcl_config.h"
#include "miroxplat/tbs.h"

extern "C" {

/// General messages: 0 not yet implemented, 1 unexpected error, 2 assertion failure, 3 misuse of a
/// status (file, line, reason).
extern MIROXGCL_API tbs_msg_table_t const _gcl_gcl_msg_table;

/// String messages: 0 position out of range (index, length). For clients; the library reads none.
extern MIROXGCL_API tbs_msg_table_t const _gcl_string_gcl_msg_table;
}

#endif
