// Where the audio files are, and whether the system finds them there.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "Check/Judges.h"

namespace velmora::check {
namespace {

/// "a/x.wav, b/x.wav", shortened if there are many.
std::string Files(const Case& c, const std::vector<std::string>& paths) {
  constexpr std::size_t kMost = 4;
  std::string text;
  for (std::size_t i = 0; i < std::min(paths.size(), kMost); ++i) {
    text += (i > 0 ? ", " : "") + c.ShowPath(paths[i]);
  }
  return paths.size() > kMost ? text + ", ..." : text;
}

struct Judgement {
  Code code;
  const char* effect;
  const char* remedy;
};

/// What keeps the system from a file that was found. `value` is what stands there.
Judgement Hindrance(const media::Located& located, const field::Value& value) {
  const bool isAscii = std::none_of(value.text.begin(), value.text.end(),
                                    [](char c) { return static_cast<signed char>(c) < 0; });
  if (located.hiddenByEncoding && !isAscii) {
    return {Code::TextEncoding,
            "The cuts have no audio: the system reads Shift-JIS, and sees another name.",
            "velmora prepare writes Shift-JIS, and safe names where that cannot hold them."};
  }
  if ((located.hiddenByForm || located.hiddenByEncoding) && !value.quoted) {
    return {Code::LocationForm,
            "The cuts have no audio: the system takes the first and the last letter for quotation "
            "marks, and looks for a name after a slash.",
            "Write URL:file://localhost/ before the name, and quotation marks around it; velmora "
            "prepare does it."};
  }
  if (located.hiddenByForm || located.hiddenByEncoding) {
    return {Code::LocationForm,
            "The cuts have no audio: the system does not decode locations, and sees another name.",
            "Write the name plainly; velmora prepare does it."};
  }
  return {Code::MediaElsewhere,
          "The cuts have no audio: the system looks below the project's folder, under the very "
          "name that stands there.",
          "Put the file beside the ADL under this name; velmora prepare links it."};
}

/// "media/B (Permission denied)", the first of them.
std::string Folders(const Case& c, const std::vector<media::UnreadFolder>& folders) {
  constexpr std::size_t kMost = 4;
  std::string text;
  for (std::size_t i = 0; i < std::min(folders.size(), kMost); ++i) {
    text += (i > 0 ? ", " : "") + c.ShowPath(folders[i].path) + " (" + folders[i].reason + ")";
  }
  return folders.size() > kMost ? text + ", ..." : text;
}

/// The same for a source without a file, or with several.
Judgement Lack(const media::Located& located) {
  constexpr const char* kReadable =
      "Make what cannot be read readable, or put the file beside the ADL under this name.";
  if (!located.unread.empty() && located.result == media::SearchResult::Ambiguous) {
    return {Code::MediaAmbiguous,
            "The cuts have no audio: another file of this name may stand where nothing can be "
            "read, and none is guessed.",
            kReadable};
  }
  if (!located.unread.empty()) {
    return {Code::MediaMissing,
            "The cuts have no audio: there is no such file where it can be looked for.", kReadable};
  }
  if (located.result == media::SearchResult::Ambiguous) {
    return {Code::MediaAmbiguous, "The cuts have no audio: several different files could be meant.",
            "Leave one of them in the folders that are searched, or put it beside the ADL under "
            "this name."};
  }
  return {Code::MediaMissing, "The cuts have no audio: there is no such file.",
          "Name the folder that has it with --media, or copy the file beside the ADL."};
}

}  // namespace

void JudgeLocations(const Case& c, Findings& findings) {
  for (std::size_t i = 0; i < c.project.sources.size(); ++i) {
    const media::Located& located = c.media[i].located;
    const bool isFound = located.result == media::SearchResult::Found;
    if (isFound && located.found == media::Found::Location) continue;
    const field::Source& source = c.project.sources[i];
    const field::EntryPlace line = source.fPlace.value_or(source.place);
    const Judgement judgement =
        isFound ? Hindrance(located,
                            c.ValueAt(line, 0) != nullptr ? *c.ValueAt(line, 0) : field::Value())
                : Lack(located);
    std::string text = c.Show(line, 0);
    if (isFound) text += " is " + c.ShowPath(located.path);
    if (!located.candidates.empty()) text += " may be " + Files(c, located.candidates);
    if (!located.unread.empty()) text += "; not read: " + Folders(c, located.unread);
    findings.Add(judgement.code, c.OfSource(i, Severity::Lost),
                 {.offset = c.ValueOffset(line, 0), .source = i},
                 {std::move(text), judgement.effect, judgement.remedy});
  }
}

}  // namespace velmora::check
