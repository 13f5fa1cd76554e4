#include "Otio/FileUrl.h"

namespace velmora::otio {
namespace {

bool IsPlain(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') ||
         std::string_view("-._~/").find(byte) != std::string_view::npos;
}

}  // namespace

std::string FileUrl(std::string_view path) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string url = "file://";
  for (const char byte : path) {
    if (IsPlain(byte)) {
      url += byte;
      continue;
    }
    const auto value = static_cast<unsigned char>(byte);
    url += '%';
    url += kDigits[value >> 4];
    url += kDigits[value & 0xF];
  }
  return url;
}

}  // namespace velmora::otio
