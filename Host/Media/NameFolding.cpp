#include "Media/NameFolding.h"

#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>

#include "Base/SystemLog.h"
#include "Base/Text.h"
#include "Base/Utf8.h"
#include "Media/LateLibrary.h"
#include "Media/Once.h"

namespace velmora::media {
namespace {

/// What we use of ICU.
struct IcuFunctions {
  decltype(&unorm2_getNFDInstance) getNfdInstance;
  decltype(&unorm2_normalize) normalize;
  decltype(&u_strFoldCase) foldCase;
};

void FindIcu(LateLibrary& library, IcuFunctions& functions) {
  library.Find(VELMORA_FUNCTION(unorm2_getNFDInstance), functions.getNfdInstance);
  library.Find(VELMORA_FUNCTION(unorm2_normalize), functions.normalize);
  library.Find(VELMORA_FUNCTION(u_strFoldCase), functions.foldCase);
}

LateFunctions<IcuFunctions> icu(VELMORA_ICU, FindIcu);

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string InLowerCase(std::string_view ascii) {
  std::string lower(ascii);
  std::transform(lower.begin(), lower.end(), lower.begin(), LowerCase);
  return lower;
}

// A name grows at most 18 times when it is taken apart (Unicode, stability of NFD in UTF-16 units
// is far below), and names are short: what does not fit is left as it is.
constexpr std::size_t kMostUnits = 4096;

template <class Work>
std::u16string Worked(std::u16string_view text, const Work& work) {
  std::array<char16_t, kMostUnits> buffer;
  UErrorCode error = U_ZERO_ERROR;
  const std::int32_t units = work(text.data(), static_cast<std::int32_t>(text.size()),
                                  buffer.data(), std::int32_t{kMostUnits}, &error);
  if (U_FAILURE(error) != 0) return std::u16string(text);
  return {buffer.data(), static_cast<std::size_t>(units)};
}

/// Taken apart into letters and accents (Unicode NFD).
std::u16string Decomposed(const IcuFunctions& library, std::u16string_view text) {
  UErrorCode error = U_ZERO_ERROR;
  const UNormalizer2* const form = library.getNfdInstance(&error);
  if (U_FAILURE(error) != 0) return std::u16string(text);
  return Worked(text, [&library, form](const char16_t* from, std::int32_t length, char16_t* to,
                                       std::int32_t room, UErrorCode* status) {
    return library.normalize(form, from, length, to, room, status);
  });
}

std::u16string CaseFolded(const IcuFunctions& library, std::u16string_view text) {
  return Worked(text, [&library](const char16_t* from, std::int32_t length, char16_t* to,
                                 std::int32_t room, UErrorCode* status) {
    return library.foldCase(to, room, from, length, U_FOLD_CASE_DEFAULT, status);
  });
}

/// Names are many, and what is wrong with all of them is worth one line.
void TellOnce(const std::string& line) {
  static Once told;
  told.Do([&line] { SystemLog(line); });
}

std::string_view ExtensionAfterDot(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
}

bool IsExtension(std::string_view text) {
  const auto isLetter = [](char c) { return LowerCase(c) >= 'a' && LowerCase(c) <= 'z'; };
  const auto fits = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); };
  constexpr std::size_t kLongest = 5;
  return !text.empty() && text.size() <= kLongest && std::all_of(text.begin(), text.end(), fits) &&
         std::any_of(text.begin(), text.end(), isLetter);
}

}  // namespace

std::string FoldedName(std::string_view name) {
  if (IsAscii(name) || ValidUtf8(name) != name) return InLowerCase(name);
  std::string trouble;
  const IcuFunctions* const library = icu.Get(trouble);
  if (library == nullptr) {
    TellOnce("names beyond ASCII are told apart by case: " + trouble);
    return InLowerCase(name);
  }
  // Folding an accented letter can leave one that must be taken apart again.
  return Utf8FromUtf16(
      Decomposed(*library, CaseFolded(*library, Decomposed(*library, Utf16FromUtf8(name)))));
}

std::string_view StemOf(std::string_view name) {
  const std::string_view extension = ExtensionAfterDot(name);
  if (!IsExtension(extension)) return name;
  const std::string_view stem = name.substr(0, name.size() - extension.size() - 1);
  return stem.empty() ? name : stem;
}

bool HasSoundExtension(std::string_view name) {
  constexpr std::array<std::string_view, 14> kExtensions = {"wav", "wave", "bwf",  "bw64", "rf64",
                                                            "w64", "aif",  "aiff", "aifc", "flac",
                                                            "sd2", "caf",  "mp3",  "ogg"};
  const std::string extension = InLowerCase(ExtensionAfterDot(name));
  return std::find(kExtensions.begin(), kExtensions.end(), extension) != kExtensions.end();
}

}  // namespace velmora::media
