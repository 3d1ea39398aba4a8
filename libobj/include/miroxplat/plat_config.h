// Marks what libmiroxplat exports. Every service header includes this one.
#ifndef MIROXPLAT_PLAT_CONFIG_H
#define MIROXPLAT_PLAT_CONFIG_H

#if defined(__cplusplus) && __cplusplus < 201703L
#error "miroxgcl needs C++17: compile with -std=c++17 or a later standard"
#endif

#define MIROXPLAT_API __attribute__((visibility("default")))

#endif
