#include "Report/Checksum.h"

#include <nettle/base64.h>
#include <nettle/sha2.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

#include "Base/FileAccess.h"

namespace velmora::report {
namespace {

using Digest = std::array<std::uint8_t, SHA256_DIGEST_SIZE>;

std::string Hexadecimal(const Digest& digest) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : digest) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

}  // namespace

Checksum ChecksumOf(const std::string& path, const std::function<bool(std::int64_t bytes)>& goOn) {
  constexpr std::size_t kBlockBytes = std::size_t{1} << 18;
  Checksum sum;
  const FileStream stream = OpenRegularFile(path.c_str());
  if (stream == nullptr) {
    sum.trouble = std::strerror(errno);
    return sum;
  }
  sha256_ctx state;
  sha256_init(&state);
  std::vector<std::uint8_t> block(kBlockBytes);
  while (true) {
    errno = 0;
    const std::size_t count = ReadAt(stream.get(), sum.bytes, block.data(), block.size());
    if (count == 0) break;
    sha256_update(&state, count, block.data());
    sum.bytes += static_cast<std::int64_t>(count);
    if (goOn && !goOn(sum.bytes)) return sum;
  }
  if (errno != 0 && errno != EINTR) {
    sum.trouble = std::strerror(errno);
    return sum;
  }
  Digest digest;
  sha256_digest(&state, digest.size(), digest.data());
  sum.sha256 = Hexadecimal(digest);
  return sum;
}

std::string PolicyHash(std::string_view text) {
  sha256_ctx state;
  sha256_init(&state);
  sha256_update(&state, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()));
  Digest digest;
  sha256_digest(&state, digest.size(), digest.data());
  std::string base64(BASE64_ENCODE_RAW_LENGTH(SHA256_DIGEST_SIZE), '\0');
  base64_encode_raw(base64.data(), digest.size(), digest.data());
  return "sha256-" + base64;
}

}  // namespace velmora::report
