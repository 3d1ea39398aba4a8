// Marks what libmiroxgcl exports. Every public header includes this one.
#ifndef MIROXGCL_GCL_CONFIG_H
#define MIROXGCL_GCL_CONFIG_H

#define MIROXGCL_API __attribute__((visibility("default")))

// A helper within an exported class that only the library's own sources call.
#define MIROXGCL_LOCAL __attribute__((visibility("hidden")))

#endif
