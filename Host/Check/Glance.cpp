#include "Check/Glance.h"

#include <cstdint>

#include "Base/FileAccess.h"
#include "Base/FileNames.h"
#include "Check/GlanceEvents.h"
#include "Check/GlanceSources.h"
#include "Check/PlainText.h"
#include "Check/ProjectFile.h"
#include "Field/FieldHeader.h"
#include "Field/Keyword.h"

namespace velmora::check {
namespace {

/// The walk over a plain text, section by section.
class Walk {
 public:
  Walk(std::FILE* stream, const std::string& path, const std::function<bool()>& cancelled)
      : text_(stream, cancelled), sources_(FolderOf(path)), events_(sources_) {}

  /// True once the whole text has been taken; false for what is not plain.
  [[nodiscard]] bool Take();
  void Close(const CheckOptions& options, GlanceResult& result) {
    events_.Close(times_, options, result);
  }

 private:
  using Piece = PlainText::Piece;
  using TakeLine = bool (Walk::*)();
  [[nodiscard]] bool TakeSection();
  [[nodiscard]] bool TakeLines(TakeLine take);
  [[nodiscard]] bool TakeHeader();
  [[nodiscard]] bool TakeSource() { return sources_.Take(text_.Line()); }
  [[nodiscard]] bool TakeEvent() { return events_.Take(text_.Line()); }

  PlainText text_;
  GlanceSources sources_;
  GlanceEvents events_;
  field::TimeContext times_;
  std::string name_;  ///< of the section that is open
  bool sourcesSeen_ = false;
  bool eventsSeen_ = false;
};

bool Walk::Take() {
  if (text_.Next() != Piece::Opening || !field::IsKeyword(text_.Name(), "ADL")) return false;
  for (;;) {
    const Piece piece = text_.Next();
    if (piece == Piece::Closing) return field::IsKeyword(text_.Name(), "ADL");
    if (piece != Piece::Opening || !TakeSection()) return false;
  }
}

bool Walk::TakeSection() {
  name_ = text_.Name();
  if (field::IsKeyword(name_, "ADL") || field::IsKeyword(name_, "REF_LIST")) return false;
  if (field::IsEventList(name_)) {
    if (eventsSeen_) return false;
    eventsSeen_ = true;
    return TakeLines(&Walk::TakeEvent);
  }
  if (!field::IsSourceIndex(name_)) return TakeLines(&Walk::TakeHeader);
  // Sources come before the cuts that play them.
  if (sourcesSeen_ || eventsSeen_) return false;
  sourcesSeen_ = true;
  return TakeLines(&Walk::TakeSource) && sources_.Close();
}

bool Walk::TakeLines(TakeLine take) {
  for (;;) {
    const Piece piece = text_.Next();
    if (piece == Piece::Closing) return field::IsKeyword(text_.Name(), name_);
    if (piece != Piece::Label || !(this->*take)()) return false;
  }
}

/// Of two lines for one rate the later counts.
bool Walk::TakeHeader() {
  const PlainLine& line = text_.Line();
  const bool isSampleRate = field::IsKeyword(line.label, "SEQ_SAMPLE_RATE");
  const bool isFrameRate = field::IsKeyword(line.label, "SEQ_FRAME_RATE");
  if ((!isSampleRate && !isFrameRate) || line.valueCount == 0) return true;
  const field::Value& value = line.values[0];
  if (line.valueCount > 1 && !value.quoted) return false;  // several words may be one text
  if (isSampleRate) times_.headerSampleRate = field::ReadSampleRate(value.text);
  if (isFrameRate) times_.headerFrames = field::ReadFrameRate(value.text);
  return true;
}

}  // namespace

std::optional<Glance> GlanceResult::For(std::size_t events) const {
  const bool isSure = numbersRise || entries == events || found.loses;
  return isPlain && isSure ? std::optional(found) : std::nullopt;
}

GlanceResult GlanceAt(const std::string& path, const CheckOptions& options,
                      const std::function<bool()>& cancelled) {
  GlanceResult result;
  const bool asUsual =
      options.reading.encoding.empty() && options.reading.trust == field::Trust::Marks;
  const FileStream stream = OpenRegularFile(path.c_str());
  if (!asUsual || stream == nullptr || FileSize(stream.get()) > kLargestProject) return result;
  Walk walk(stream.get(), path, cancelled);
  if (!walk.Take()) return result;
  walk.Close(options, result);
  result.isPlain = true;
  return result;
}

}  // namespace velmora::check
