// Marks what libmiroxgcl exports. Every public header includes this one.
#ifndef MIROXGCL_GCL_CONFIG_H
#define MIROXGCL_GCL_CONFIG_H

#define MIROXGCL_API __attribute__((visibility("default")))

#endif
