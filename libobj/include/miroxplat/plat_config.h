// Marks what libmiroxplat exports. Every service header includes this one.
#ifndef MIROXPLAT_PLAT_CONFIG_H
#define MIROXPLAT_PLAT_CONFIG_H

#define MIROXPLAT_API __attribute__((visibility("default")))

#endif
