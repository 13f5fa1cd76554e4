#include "Model/EventRows.h"

#include <utility>

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

}  // namespace velmora
