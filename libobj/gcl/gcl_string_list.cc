#include "miroxgcl/gcl_string_list.h"

GCL_StringList GCL_StringList::nil(32);
