#include "Field/Encoding.h"

#include <iconv.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "ADL/ShiftJis.h"
#include "Base/FileNames.h"
#include "Base/Utf8.h"
#include "Field/Keyword.h"
#include "Media/Locations.h"

namespace velmora::field {
namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD";  // U+FFFD
constexpr auto kCandidates = std::to_array<const char*>({"Shift-JIS", "Windows-1252", "GBK"});
/// Files asked for by one detection: it bounds the time that a hostile project takes.
constexpr int kMostFiles = 20000;

bool IsAsciiByte(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

enum class Kind { Ascii, Utf8, ShiftJis, Iconv };

Kind KindOf(std::string_view encoding) {
  const auto is = [encoding](std::string_view name) { return IsKeyword(encoding, name); };
  if (is("ASCII") || is("US-ASCII")) return Kind::Ascii;
  if (is("UTF-8") || is("UTF8")) return Kind::Utf8;
  if (is("Shift-JIS") || is("Shift_JIS") || is("SJIS")) return Kind::ShiftJis;
  return Kind::Iconv;
}

/// The system's own reading, which ends at a NUL.
std::string FromShiftJis(std::string_view bytes) {
  std::string utf8;
  for (std::size_t at = 0;;) {
    const std::size_t end = std::min(bytes.find('\0', at), bytes.size());
    utf8 += ShiftJisToUtf8(std::string(bytes.substr(at, end - at)).c_str());
    if (end == bytes.size()) return utf8;
    utf8 += '\0';
    at = end + 1;
  }
}

std::string FromAscii(std::string_view bytes) {
  std::string utf8;
  for (const char c : bytes) {
    if (IsAsciiByte(c)) {
      utf8 += c;
    } else {
      utf8 += kReplacement;
    }
  }
  return utf8;
}

}  // namespace

struct TextDecoder::Impl {
  explicit Impl(const std::string& encoding) : kind(KindOf(encoding)) {
    if (kind == Kind::Iconv) descriptor = iconv_open("UTF-8", encoding.c_str());
  }
  ~Impl() {
    if (IsOpen()) iconv_close(descriptor);
  }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
  [[nodiscard]] bool IsOpen() const { return descriptor != reinterpret_cast<iconv_t>(-1); }

  /// Converts what iconv takes; what it does not take is one U+FFFD for each byte.
  std::string Convert(std::string_view bytes, bool& whole) {
    whole = IsOpen();
    if (!whole) return FromAscii(bytes);
    iconv(descriptor, nullptr, nullptr, nullptr, nullptr);
    std::string utf8;
    std::array<char, 4096> room{};
    char* in = const_cast<char*>(bytes.data());  // iconv's interface is older than const
    std::size_t inLeft = bytes.size();
    while (inLeft > 0) {
      char* out = room.data();
      std::size_t outLeft = room.size();
      const std::size_t result = iconv(descriptor, &in, &inLeft, &out, &outLeft);
      utf8.append(room.data(), room.size() - outLeft);
      if (result != static_cast<std::size_t>(-1) || outLeft < room.size() / 2) continue;
      if (inLeft == 0) break;
      whole = false;
      utf8 += kReplacement;
      ++in;
      --inLeft;
    }
    return utf8;
  }

  Kind kind;
  iconv_t descriptor = reinterpret_cast<iconv_t>(-1);
};

TextDecoder::TextDecoder(const std::string& encoding) : impl_(std::make_unique<Impl>(encoding)) {}
TextDecoder::~TextDecoder() = default;
TextDecoder::TextDecoder(TextDecoder&&) noexcept = default;
TextDecoder& TextDecoder::operator=(TextDecoder&&) noexcept = default;

std::string TextDecoder::ToUtf8(std::string_view bytes) {
  bool whole = false;
  switch (impl_->kind) {
    case Kind::Ascii:
      return FromAscii(bytes);
    case Kind::Utf8:
      return ValidUtf8(bytes);
    case Kind::ShiftJis:
      return IsAscii(bytes) ? std::string(bytes) : FromShiftJis(bytes);
    case Kind::Iconv:
      break;
  }
  return impl_->Convert(bytes, whole);
}

bool TextDecoder::DecodesWhole(std::string_view bytes) {
  bool whole = false;
  switch (impl_->kind) {
    case Kind::Ascii:
      return IsAscii(bytes);
    case Kind::Utf8:
      return IsUtf8(bytes);
    case Kind::ShiftJis:
      return FromShiftJis(bytes).find(kReplacement) == std::string::npos;
    case Kind::Iconv:
      break;
  }
  (void)impl_->Convert(bytes, whole);
  return whole;
}

bool IsKnownEncoding(const std::string& name) {
  if (KindOf(name) != Kind::Iconv) return true;
  if (name.empty() || name.find('\0') != std::string::npos) return false;
  iconv_t descriptor = iconv_open("UTF-8", name.c_str());
  if (descriptor == reinterpret_cast<iconv_t>(-1)) return false;
  iconv_close(descriptor);
  return true;
}

bool KeepsAscii(const std::string& encoding) {
  constexpr std::string_view kSample = "<ADL>(Entry) \"0\"";
  return TextDecoder(encoding).ToUtf8(kSample) == kSample;
}

bool IsAscii(std::string_view bytes) {
  // Eight bytes at a time: this is asked of every text of a project.
  std::uint64_t all = 0;
  std::size_t at = 0;
  for (; at + sizeof all <= bytes.size(); at += sizeof all) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data() + at, sizeof word);
    all |= word;
  }
  if ((all & 0x8080808080808080) != 0) return false;
  return std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.end(), IsAsciiByte);
}

bool IsUtf8(std::string_view bytes) {
  constexpr char32_t kReplacementCharacter = 0xFFFD;
  for (std::size_t at = 0; at < bytes.size();) {
    if (IsAsciiByte(bytes[at])) {
      ++at;
      continue;
    }
    const std::size_t begin = at;
    const bool replaced = NextCharacter(bytes, at) == kReplacementCharacter;
    if (replaced && bytes.substr(begin, at - begin) != kReplacement) return false;
  }
  return true;
}

namespace {

/// The stretches of a text that hold other bytes than ASCII, each up to the next blank: in none of
/// the candidates does a blank's code stand inside a character.
template <class Take>
bool ForEachStretch(std::string_view text, const Take& take) {
  const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  const auto* at = text.begin();
  for (;;) {
    at = std::find_if_not(at, text.end(), IsAsciiByte);
    if (at == text.end()) return true;
    const auto* const end = std::find_if(at, text.end(), isBlank);
    if (!take(std::string_view(at, static_cast<std::size_t>(end - at)))) return false;
    at = end;
  }
}

bool IsFile(const std::string& path, int& asked) {
  struct stat status {};
  return ++asked <= kMostFiles && path.find('\0') == std::string::npos &&
         stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

/// A location names a file below the folder by one of its ends, or anywhere by the whole.
bool NamesFile(const std::string& location, const std::string& folder, int& asked) {
  const media::Location spellings = media::DecodeLocation(location);
  for (const std::string& path : spellings.paths) {
    if (path.starts_with('/') && IsFile(path, asked)) return true;
  }
  const std::string below = folder + "/";
  for (const std::string& tail : spellings.tails) {
    for (std::size_t begin = tail.size(); begin > 0 && asked <= kMostFiles;) {
      const std::size_t slash = tail.rfind('/', begin - 1);
      begin = slash == std::string::npos ? 0 : slash;
      const std::string end = tail.substr(slash == std::string::npos ? 0 : slash + 1);
      if (!end.empty() && IsFile(below + end, asked)) return true;
    }
  }
  return false;
}

}  // namespace

std::string DetectEncoding(std::string_view text, const std::vector<std::string_view>& locations,
                           const std::string& adlPath) {
  if (IsAscii(text)) return "ASCII";
  if (IsUtf8(text)) return "UTF-8";
  const std::string folder = FolderOf(adlPath);
  std::string first;
  for (const char* const candidate : kCandidates) {
    TextDecoder decoder(candidate);
    if (!ForEachStretch(text,
                        [&](std::string_view bytes) { return decoder.DecodesWhole(bytes); })) {
      continue;
    }
    if (first.empty()) first = candidate;
    int asked = 0;
    for (const std::string_view location : locations) {
      if (IsAscii(location)) continue;
      if (NamesFile(decoder.ToUtf8(location), folder, asked)) return candidate;
    }
  }
  return first.empty() ? kCandidates.front() : first;
}

}  // namespace velmora::field
