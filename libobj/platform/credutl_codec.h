// How an identifier is written into its 34 bytes. For the system-identity service only.
#ifndef MIROXPLAT_CREDUTL_CODEC_H
#define MIROXPLAT_CREDUTL_CODEC_H

#include <cstdint>

#include "miroxplat/credutl.h"

namespace credutl {

enum class sid_kind : unsigned char { user = 1, group = 2 };

// The identifier of the user or group that the operating system knows by `number`.
[[gnu::visibility("hidden")]] credutl_sid_s encode(sid_kind kind, std::uint32_t number);

// True, and the number, when `sid` is an identifier of this kind with no byte changed.
[[gnu::visibility("hidden")]] bool decode(credutl_sid_s const& sid, sid_kind kind,
                                          std::uint32_t* number);

}  // namespace credutl

#endif
