#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace velmora::report {

/// A file's size and SHA-256 (FIPS 180-4), or why they cannot be told.
struct Checksum {
  std::int64_t bytes = 0;
  std::string sha256;   ///< 64 hexadecimal digits; empty with `trouble`
  std::string trouble;  ///< one line without the path
};

/// Reads a regular file from its start to its end. `goOn` is asked after each block, with the
/// bytes read so far; with an answer of false the checksum is cancelled and stays empty.
[[nodiscard]] Checksum ChecksumOf(const std::string& path,
                                  const std::function<bool(std::int64_t bytes)>& goOn);

/// The SHA-256 of a text as a content security policy names it: "sha256-" and Base64.
[[nodiscard]] std::string PolicyHash(std::string_view text);

}  // namespace velmora::report
