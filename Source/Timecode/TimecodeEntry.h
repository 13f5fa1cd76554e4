#pragma once

#include <cstdint>
#include <string>

namespace velmora {

/// The value of a timecode field.
struct TimecodeValue {
  std::int32_t hours = 0;
  std::int32_t mins = 0;
  std::int32_t secs = 0;
  std::int32_t frames = 0;
  std::int32_t sgn = 1;          ///< +1 or -1, beside the fields so that zero can have a minus too
  bool sign = false;             ///< the field is signed
  std::int32_t max_frames = 30;  ///< frames stay below this

  /// Twelve characters: sign or blank, then HH:MM:SS:FF.
  [[nodiscard]] std::string ComposeString() const;

  /// Takes over a text, each number limited by itself without carrying: 90 seconds become 59. A
  /// signed value ends at 12:00:00:00. Numbers that the text does not have are 0.
  void DigestString(const char* text);
};

/// What a key does to a timecode field.
struct EntryResult {
  std::string text;  ///< the field's new text
  bool leave;        ///< the field gives the focus away
};

/// One key on a field that shows `text`: digits enter at the right and push the others to the left,
/// as on a pocket calculator. `key` is the first byte of the key's UTF-8 text. `committed` is the
/// value of the last commit, which Escape brings back.
[[nodiscard]] EntryResult TimeDataOperation(const std::string& text, char key,
                                            const TimecodeValue& committed);

}  // namespace velmora
