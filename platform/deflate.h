// Bytes made small and whole again (the deflate method, in zlib's frame), and a checksum of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// The bytes made smaller, quickly rather than as small as can be. Never fails.
std::string deflated(std::string_view bytes);

// The bytes that `deflated` was given. Nothing when the data are damaged, do not end where their
// frame ends, or hold another number of bytes than `expectedSize`. Data that unfold without end
// stop there, and a size that no data of this length can have is refused before memory is taken.
std::optional<std::string> inflated(std::string_view bytes, std::size_t expectedSize);

// The CRC-32 that archives and networks use.
std::uint32_t crc32(std::string_view bytes);

}  // namespace platform
