#include "Model/EventRows.h"

#include <utility>

#include "Base/FileNames.h"
#include "Timecode/AdlTime.h"

namespace velmora {

EventRows::EventRows(const std::shared_ptr<const AES31Project>& project,
                     std::shared_ptr<const EventMarks> marks, EventSet listed)
    : owner_(project),
      project_(project.get()),
      marks_(std::move(marks)),
      listed_(std::move(listed)),
      cuts_(listed_.Listed() & marks_->cuts) {}

const std::shared_ptr<const EventRows>& EventRows::None() {
  static const auto none = std::make_shared<const EventRows>();
  return none;
}

EventRows EventRows::Kept() const {
  EventRows rows = *this;
  const auto texts = std::make_shared<KeptTexts>();
  for (std::int32_t row = 0; row < Size(); ++row) {
    texts->types.Add(Type(row));
    texts->names.Add(Name(row));
  }
  for (std::int32_t row = 0; row < Cuts(); ++row) {
    texts->tracks.push_back(TrackNumber(row));
    texts->ins.Add(In(row));
    texts->outs.Add(Out(row));
  }
  rows.kept_ = texts;
  rows.owner_.reset();
  rows.project_ = nullptr;
  return rows;
}

const AES31Event* EventRows::EventAt(std::int32_t index) const {
  return owner_.expired() ? nullptr : &project_->events[static_cast<std::size_t>(index)];
}

const AES31Cut* EventRows::CutAt(std::int32_t row) const {
  const AES31Event* const event = EventAt(cuts_.EventAt(row));
  return event != nullptr ? &event->cut : nullptr;
}

std::string_view EventRows::Type(std::int32_t row) const {
  if (kept_ != nullptr) return kept_->types[static_cast<std::size_t>(row)];
  const AES31Event* const event = EventAt(Index(row));
  return event != nullptr && event->label != nullptr ? event->label : std::string_view();
}

std::string_view EventRows::Name(std::int32_t row) const {
  if (kept_ != nullptr) return kept_->names[static_cast<std::size_t>(row)];
  const AES31Event* const event = EventAt(Index(row));
  if (event == nullptr || event->sourceFile == nullptr) return {};
  return FileNameIn(event->sourceFile->GetPath());
}

std::int32_t EventRows::TrackNumber(std::int32_t row) const {
  if (kept_ != nullptr) return kept_->tracks[static_cast<std::size_t>(row)];
  const AES31Cut* const cut = CutAt(row);
  return cut != nullptr ? cut->destChannel : 0;
}

NumberText EventRows::Track(std::int32_t row) const {
  return NumberText(TrackNumber(row));
}

std::string_view EventRows::In(std::int32_t row) const {
  if (kept_ != nullptr) return kept_->ins[static_cast<std::size_t>(row)];
  const AES31Cut* const cut = CutAt(row);
  return cut != nullptr ? TimestampTimecodeView(cut->destIn) : std::string_view();
}

std::string_view EventRows::Out(std::int32_t row) const {
  if (kept_ != nullptr) return kept_->outs[static_cast<std::size_t>(row)];
  const AES31Cut* const cut = CutAt(row);
  return cut != nullptr ? TimestampTimecodeView(cut->destOut) : std::string_view();
}

}  // namespace velmora
