#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ADL/AES31Project.h"
#include "Base/FileNames.h"
#include "Model/EventSet.h"
#include "Model/NumberText.h"
#include "Model/RowMap.h"
#include "Timecode/AdlTime.h"

namespace velmora {

/// What the rows need to know of all events of a list. None of it changes with a box.
struct EventMarks {
  explicit EventMarks(std::int32_t events = 0) : cuts(events), found(events) {}
  EventSet cuts;
  EventSet found;  ///< those with a file
};

/// Texts one after the other in one stretch of memory.
class TextList {
 public:
  void Add(std::string_view text) {
    bytes_ += text;
    ends_.push_back(bytes_.size());
  }
  [[nodiscard]] std::string_view operator[](std::size_t at) const {
    const std::size_t begin = at > 0 ? ends_[at - 1] : 0;
    return std::string_view(bytes_).substr(begin, ends_[at] - begin);
  }

 private:
  std::string bytes_;
  std::vector<std::size_t> ends_;
};

/// The rows of the event table as they were listed at one moment. Which events they are is kept;
/// the cells are worked out when asked for, as views of the project's own texts, and cost next to
/// no memory. Constant from its making on: any number of threads may read it.
///
/// Rows run to Size(); those columns that only cuts have run to Cuts(), without gaps for other
/// events, so that such a row shows the next cut's values. A row past these is the caller's fault.
class EventRows {
 public:
  EventRows() = default;
  /// No rows, shared by all who have none: asking for them cannot fail.
  [[nodiscard]] static const std::shared_ptr<const EventRows>& None();
  /// Rows for those events of the project that are `listed`.
  EventRows(const std::shared_ptr<const AES31Project>& project,
            std::shared_ptr<const EventMarks> marks, EventSet listed);

  /// True for rows of this very project.
  [[nodiscard]] bool AreOf(const std::shared_ptr<const AES31Project>& project) const {
    return !owner_.owner_before(project) && !project.owner_before(owner_);
  }
  /// The same rows with copies of all texts, for when the project goes: some 70 bytes a cut.
  [[nodiscard]] EventRows Kept() const;
  /// True for rows that need no project.
  [[nodiscard]] bool AreKept() const { return kept_ != nullptr || Size() == 0; }

  [[nodiscard]] std::int32_t Size() const { return listed_.Rows(); }
  [[nodiscard]] std::int32_t Cuts() const { return cuts_.Rows(); }
  [[nodiscard]] const EventSet& Listed() const { return listed_.Listed(); }
  [[nodiscard]] bool LacksFiles() const { return !IsWithin(Listed(), marks_->found); }

  /// The event of a row, in the project's list.
  [[nodiscard]] std::int32_t Index(std::int32_t row) const { return listed_.EventAt(row); }
  [[nodiscard]] NumberText Number(std::int32_t row) const {
    return NumberText::OfEvent(Index(row));
  }
  [[nodiscard]] bool Found(std::int32_t row) const { return marks_->found.Has(Index(row)); }
  // A text is valid as long as the rows and the project; once the project has gone, the rows are
  // empty texts, unless they were Kept.
  [[nodiscard]] std::string_view Type(std::int32_t row) const;  ///< as the file spells it
  [[nodiscard]] std::string_view Ch(std::int32_t) const { return "Mono"; }
  [[nodiscard]] std::string_view Name(std::int32_t row) const;

  // By row of listed cuts.
  [[nodiscard]] NumberText Track(std::int32_t row) const;
  [[nodiscard]] std::string_view In(std::int32_t row) const;   ///< as the file spells it
  [[nodiscard]] std::string_view Out(std::int32_t row) const;  ///< as the file spells it

 private:
  struct KeptTexts {
    TextList types, names, ins, outs;
    std::vector<std::int32_t> tracks;
  };
  [[nodiscard]] const AES31Event* EventAt(std::int32_t index) const;
  [[nodiscard]] const AES31Cut* CutAt(std::int32_t row) const;
  [[nodiscard]] std::int32_t TrackNumber(std::int32_t row) const;

  std::weak_ptr<const AES31Project> owner_;  ///< tells whether the project still stands
  const AES31Project* project_ = nullptr;
  std::shared_ptr<const EventMarks> marks_ = std::make_shared<EventMarks>();
  RowMap listed_;
  RowMap cuts_;
  std::shared_ptr<const KeptTexts> kept_;
};

// The cells, here so that whoever asks for many in a row has no call for each of them: ten million
// calls where a project of a million events is printed.

inline const AES31Event* EventRows::EventAt(std::int32_t index) const {
  return owner_.expired() ? nullptr : &project_->events[static_cast<std::size_t>(index)];
}

inline const AES31Cut* EventRows::CutAt(std::int32_t row) const {
  const AES31Event* const event = EventAt(cuts_.EventAt(row));
  return event != nullptr ? &event->cut : nullptr;
}

inline std::string_view EventRows::Type(std::int32_t row) const {
  if (kept_ != nullptr) return kept_->types[static_cast<std::size_t>(row)];
  const AES31Event* const event = EventAt(Index(row));
  return event != nullptr && event->label != nullptr ? event->label : std::string_view();
}

inline std::string_view EventRows::Name(std::int32_t row) const {
  if (kept_ != nullptr) return kept_->names[static_cast<std::size_t>(row)];
  const AES31Event* const event = EventAt(Index(row));
  if (event == nullptr || event->sourceFile == nullptr) return {};
  return FileNameIn(event->sourceFile->GetPath());
}

inline std::int32_t EventRows::TrackNumber(std::int32_t row) const {
  if (kept_ != nullptr) return kept_->tracks[static_cast<std::size_t>(row)];
  const AES31Cut* const cut = CutAt(row);
  return cut != nullptr ? cut->destChannel : 0;
}

inline NumberText EventRows::Track(std::int32_t row) const {
  return NumberText(TrackNumber(row));
}

inline std::string_view EventRows::In(std::int32_t row) const {
  if (kept_ != nullptr) return kept_->ins[static_cast<std::size_t>(row)];
  const AES31Cut* const cut = CutAt(row);
  return cut != nullptr ? TimestampTimecodeView(cut->destIn) : std::string_view();
}

inline std::string_view EventRows::Out(std::int32_t row) const {
  if (kept_ != nullptr) return kept_->outs[static_cast<std::size_t>(row)];
  const AES31Cut* const cut = CutAt(row);
  return cut != nullptr ? TimestampTimecodeView(cut->destOut) : std::string_view();
}

}  // namespace velmora
