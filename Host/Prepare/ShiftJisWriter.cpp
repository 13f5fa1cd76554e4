#include "Prepare/ShiftJisWriter.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <mutex>
#include <new>
#include <unordered_map>

#include "ADL/ShiftJis.h"
#include "Base/Utf8.h"

namespace velmora::prepare {
namespace {

/// The C library's converter, which a machine may lack.
class Encoder {
 public:
  Encoder() : descriptor_(iconv_open("SHIFT_JISX0213", "UTF-8")) {
    if (!IsOpen() && errno == ENOMEM) throw std::bad_alloc();  // the next call may have more luck
  }
  ~Encoder() {
    if (IsOpen()) iconv_close(descriptor_);
  }
  Encoder(const Encoder&) = delete;
  Encoder& operator=(const Encoder&) = delete;

  /// The bytes of one character, empty if there are none that are read back as it.
  const std::string& Encode(char32_t character) {
    const auto known = known_.find(character);
    if (known != known_.end()) return known->second;
    return known_.emplace(character, Convert(character)).first->second;
  }

 private:
  std::string Convert(char32_t character) {
    if (!IsOpen()) return {};
    std::string utf8;
    AppendUtf8(utf8, character);
    std::array<char, 32> room{};
    char* in = utf8.data();
    char* out = room.data();
    std::size_t inLeft = utf8.size();
    std::size_t outLeft = room.size();
    iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
    const bool converted = iconv(descriptor_, &in, &inLeft, &out, &outLeft) == 0 &&
                           iconv(descriptor_, nullptr, nullptr, &out, &outLeft) == 0;
    if (!converted) return {};
    std::string bytes(room.data(), room.size() - outLeft);
    return ShiftJisToUtf8(bytes.c_str()) == utf8 ? bytes : std::string();
  }

  bool IsOpen() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }
  iconv_t descriptor_;
  std::unordered_map<char32_t, std::string> known_;  ///< opening and reading back take their time
};

constexpr char32_t kVoicedMark = 0x3099;
constexpr char32_t kHalfVoicedMark = 0x309A;

bool IsCombining(char32_t character) {
  return (character >= 0x300 && character <= 0x36F) || character == kVoicedMark ||
         character == kHalfVoicedMark;
}

/// The kana that a kana and a mark after it make, 0 if none: some file systems take them apart.
/// Voiced kana stand one after the plain one in Unicode, half-voiced ones two after it.
char32_t Joined(char32_t kana, char32_t mark) {
  const char32_t hiragana = kana >= 0x30A0 ? kana - 0x60 : kana;
  const bool hRow = hiragana >= 0x306F && hiragana <= 0x307D && (hiragana - 0x306F) % 3 == 0;
  if (mark == kHalfVoicedMark) return hRow ? kana + 2 : 0;
  if (mark != kVoicedMark) return 0;
  if (hiragana == 0x3046) return kana >= 0x30A0 ? 0x30F4 : 0x3094;  // u
  const bool beforeSmallTsu =
      hiragana >= 0x304B && hiragana <= 0x3061 && (hiragana - 0x304B) % 2 == 0;
  const bool tRow = hiragana == 0x3064 || hiragana == 0x3066 || hiragana == 0x3068;
  return hRow || beforeSmallTsu || tRow ? kana + 1 : 0;
}

bool IsControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

}  // namespace

ShiftJisText ToShiftJis(std::string_view utf8, char standIn) {
  ShiftJisText text;
  // One for all threads: where memory lacks, the C library ends a program that wants one for each.
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  static Encoder encoder;
  for (std::size_t at = 0; at < utf8.size();) {
    char32_t character = NextCharacter(utf8, at);
    if (at < utf8.size() && character >= 0x3041 && character <= 0x30FF) {
      std::size_t next = at;
      if (const char32_t joined = Joined(character, NextCharacter(utf8, next)); joined != 0) {
        character = joined;
        at = next;
        text.whole = false;
      }
    }
    if (IsControl(character)) {
      text.bytes += ' ';
      text.whole = false;
    } else if (character < 0x80) {
      text.bytes += static_cast<char>(character);
    } else if (const std::string& bytes = encoder.Encode(character); !bytes.empty()) {
      text.bytes += bytes;
    } else {
      if (!IsCombining(character)) text.bytes += standIn;
      text.whole = false;
    }
  }
  return text;
}

}  // namespace velmora::prepare
