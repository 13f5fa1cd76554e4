#pragma once

#include <cstdint>
#include <cstdio>

namespace velmora::media {

/// True for a file that at `place` begins like MPEG audio (ISO/IEC 11172-3) and is none: noise does
/// so every now and then, and the decoder would complain about it on standard error.
[[nodiscard]] bool LooksLikeMpegByChance(std::FILE* stream, std::int64_t place);

}  // namespace velmora::media
