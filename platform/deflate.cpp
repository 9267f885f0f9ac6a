#include "platform/deflate.h"

#include <zlib.h>

#include <algorithm>
#include <limits>

#include "platform/check.h"
#include "platform/memory.h"

namespace platform {
namespace {

constexpr std::size_t kMostAtOnce = std::numeric_limits<uInt>::max();
// What deflate can unfold of one byte, at the very best.
constexpr std::size_t kBestRatio = 1040;

// The library wants its input without const and does not write to it.
Bytef* bytesOf(std::string_view text) {
  return const_cast<Bytef*>(reinterpret_cast<const Bytef*>(text.data()));
}

// Feeds what the library's counters, of 32 bits, cannot take at once.
void feed(z_stream& stream, std::string_view bytes, std::size_t& given) {
  if (stream.avail_in != 0 || given == bytes.size()) return;
  const std::size_t part = std::min(bytes.size() - given, kMostAtOnce);
  stream.next_in = bytesOf(bytes.substr(given));
  stream.avail_in = static_cast<uInt>(part);
  given += part;
}

// Room for more output behind `used` bytes of `out`.
void offer(z_stream& stream, std::string& out, std::size_t used) {
  stream.next_out = reinterpret_cast<Bytef*>(out.data() + used);
  stream.avail_out = static_cast<uInt>(std::min(out.size() - used, kMostAtOnce));
}

void makeRoom(std::string& out, std::size_t size) {
  out.reserve(size);
  askForLargePages(out.data(), size);
  out.resize(size);
}

}  // namespace

std::string deflated(std::string_view bytes) {
  z_stream stream = {};
  // The second level takes a quarter of the usual one's time for a fifth more bytes.
  VESSORA_CHECK(deflateInit(&stream, 2) == Z_OK, "no memory to make a text smaller");
  std::string out;
  makeRoom(out, bytes.size() / 4 + 1024);
  std::size_t given = 0, used = 0;
  for (int state = Z_OK; state == Z_OK;) {
    feed(stream, bytes, given);
    if (used == out.size()) out.resize(used + used / 2);
    offer(stream, out, used);
    const uInt room = stream.avail_out;
    state = deflate(&stream, given == bytes.size() ? Z_FINISH : Z_NO_FLUSH);
    used += room - stream.avail_out;
  }
  deflateEnd(&stream);
  out.resize(used);
  return out;
}

std::optional<std::string> inflated(std::string_view bytes, std::size_t expectedSize) {
  if (expectedSize / kBestRatio > bytes.size()) return std::nullopt;
  z_stream stream = {};
  if (inflateInit(&stream) != Z_OK) return std::nullopt;
  // One byte more, so that data that hold more than they should are seen to.
  std::string out;
  makeRoom(out, expectedSize + 1);
  std::size_t given = 0, used = 0;
  int state = Z_OK;
  while (state == Z_OK && used < out.size()) {
    feed(stream, bytes, given);
    offer(stream, out, used);
    const uInt room = stream.avail_out;
    state = inflate(&stream, Z_NO_FLUSH);
    used += room - stream.avail_out;
  }
  const bool whole = state == Z_STREAM_END && used == expectedSize && given == bytes.size() &&
                     stream.avail_in == 0;
  inflateEnd(&stream);
  if (!whole) return std::nullopt;
  out.resize(used);
  return out;
}

std::uint32_t crc32(std::string_view bytes) {
  return static_cast<std::uint32_t>(
      crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

}  // namespace platform
