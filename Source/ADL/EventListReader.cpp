// The EVENT_LIST section: (Entry) opens an event, and all up to the next (Entry) belongs to it.

#include <array>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "ADL/AES31Project.h"
#include "Base/Text.h"
#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

/// The values of one entry; those that it lacks are null or 0.
class Values {
 public:
  explicit Values(const AES31Entry& entry) : values_(entry.values) {}
  const char* Text(std::size_t i) const { return i < values_.size() ? values_[i] : nullptr; }
  std::int32_t Int(std::size_t i) const { return ToInt32(Text(i)); }
  double Double(std::size_t i) const { return ToDouble(Text(i)); }
  std::size_t Count() const { return values_.size(); }

 private:
  const std::vector<const char*>& values_;
};

void FillCut(AES31Event& event, const Values& values) {
  event.cut = {.sourceType = values.Text(0),
               .sourceIn = values.Text(4),
               .destIn = values.Text(5),
               .destOut = values.Text(6),
               .cutTail = values.Text(7),
               .sourceIndex = values.Int(1),
               .sourceChannel = values.Int(2),
               .destChannel = values.Int(3),
               .cutMark1 = 1,
               .cutMark2 = 1};
}

void FillSilence(AES31Event& event, const Values& values) {
  event.silence = {.silenceText1 = values.Text(1),
                   .silenceText2 = values.Text(2),
                   .silenceText3 = values.Text(3),
                   .silenceNumber = values.Int(0),
                   .silenceMark = 1};
}

void FillVid(AES31Event& event, const Values& values) {
  event.vid = {values.Text(0), values.Text(1), values.Text(2), values.Text(3)};
}

void FillAlt(AES31Event& event, const Values& values) {
  event.alt = {.altType = values.Text(0),
               .altTime = values.Text(3),
               .altIndex = values.Int(1),
               .altChannel = values.Int(2),
               .altMark = 1};
}

/// A later line wins field by field, so values 5 to 7 of an earlier one can stay.
void FillFade(AES31Fade& fade, const Values& values, bool withTail) {
  fade.present = true;
  fade.length = values.Text(0);
  fade.fadeText1 = values.Text(1);
  fade.fadeParam2 = values.Double(2);
  fade.fadeParam3 = values.Double(3);
  fade.fadeParam4 = values.Double(4);
  if (!withTail) return;
  fade.fadeText5 = values.Text(5);
  fade.fadeNumber6 = values.Int(6);
  fade.fadeText7 = values.Text(7);
}

void FillCrossfade(AES31Event& event, const Values& values) {
  event.xfade = {.present = true,
                 .xfadeText1 = values.Text(1),
                 .xfadeText2 = values.Text(2),
                 .xfadeText3 = values.Text(3),
                 .xfadeText5 = values.Text(5),
                 .xfadeNumber0 = values.Int(0),
                 .xfadeNumber4 = values.Int(4)};
}

void FillGain(AES31Event& event, const Values& values) {
  event.gain = {.present = true, .gainNumber = values.Int(0), .gainDb = values.Double(1)};
}

enum class LineKind { Cut, Silence, Vid, Alt, Infade, Outfade, Xfade, Gain, Rem, Unknown };

struct LineForm {
  const char* label;
  LineKind kind;
  std::size_t needs;  ///< least number of values
  bool isEdit;        ///< refused once the event has its edit
};

constexpr auto kLineForms = std::to_array<LineForm>({
    {"Cut", LineKind::Cut, 8, true},
    {"Silence", LineKind::Silence, 4, true},
    {"Aux", LineKind::Silence, 4, true},
    {"Vid", LineKind::Vid, 4, true},
    {"Alt", LineKind::Alt, 4, true},
    {"Infade", LineKind::Infade, 5, false},
    {"Outfade", LineKind::Outfade, 5, false},
    {"Xfade", LineKind::Xfade, 6, false},
    {"Gain", LineKind::Gain, 2, false},
    {"Rem", LineKind::Rem, 0, false},
});
constexpr LineForm kUnknownLine = {"", LineKind::Unknown, 0, false};

const LineForm& FormOf(const AES31Entry& entry, bool editSeen) {
  for (const LineForm& form : kLineForms) {
    if (!(form.isEdit && editSeen) && EqualsIgnoringCase(entry.label, form.label)) return form;
  }
  return kUnknownLine;
}

constexpr std::size_t kWholeFade = 8;

bool IsFade(LineKind kind) {
  return kind == LineKind::Infade || kind == LineKind::Outfade;
}

/// One event in the making.
struct WorkingEvent {
  AES31Event event{};
  bool editSeen = false;

  void Take(const AES31Entry& entry, const LineForm& form, bool checked) {
    const Values values(entry);
    const bool withFadeTail = !checked || values.Count() >= kWholeFade;
    switch (form.kind) {
      case LineKind::Cut:
        FillCut(event, values);
        break;
      case LineKind::Silence:
        FillSilence(event, values);
        break;
      case LineKind::Vid:
        FillVid(event, values);
        break;
      case LineKind::Alt:
        FillAlt(event, values);
        break;
      case LineKind::Infade:
        FillFade(event.infade, values, withFadeTail);
        break;
      case LineKind::Outfade:
        FillFade(event.outfade, values, withFadeTail);
        break;
      case LineKind::Xfade:
        FillCrossfade(event, values);
        break;
      case LineKind::Gain:
        FillGain(event, values);
        break;
      case LineKind::Rem:
      case LineKind::Unknown:
        break;
    }
    if (!form.isEdit) return;
    // An alternative is no edit in its own right: it gives no label, and an edit may replace it.
    editSeen = form.kind != LineKind::Alt;
    if (editSeen) event.label = entry.label;
  }
};

struct Complaint {
  LoadFailureCode code;
  std::string reason;
};

/// Tells a fade length that only has another separator before its frames from any other text.
LoadFailureCode FadeFault(const char* length) {
  constexpr std::size_t kSeparatorAt = 8;
  std::string text(length, strnlen(length, kTimestampLength));
  if (text.size() < kTimestampLength) return LoadFailureCode::FadeForm;
  text[kSeparatorAt] = ';';
  return AdlIsTimestamp(text.c_str()) ? LoadFailureCode::FadeSeparator : LoadFailureCode::FadeForm;
}

/// What is wrong with a line.
std::optional<Complaint> ComplaintAbout(const AES31Entry& entry, const LineForm& form) {
  if (entry.values.size() < form.needs) {
    return Complaint{LoadFailureCode::ValuesMissing, std::string(form.label) + " needs at least " +
                                                         std::to_string(form.needs) + " values"};
  }
  if (IsFade(form.kind) && !AdlIsTimestamp(entry.values[0])) {
    return Complaint{FadeFault(entry.values[0]),
                     std::string(form.label) +
                         " has a length that is no timestamp with \";\" or \",\" for its frames"};
  }
  return std::nullopt;
}

}  // namespace

bool AES31Project::CheckEventList(const AES31Section& section) {
  return WalkEventList(section, Checks::On);
}

void AES31Project::ReadEventList(const AES31Section& section) {
  WalkEventList(section, Checks::Off);
}

bool AES31Project::WalkEventList(const AES31Section& section, Checks checks) {
  const bool checked = checks == Checks::On;
  std::map<std::int32_t, AES31Event> byNumber;  // numbers may span the whole 32-bit range
  WorkingEvent working;
  bool entrySeen = false;
  const auto store = [&] {
    if (entrySeen) byNumber[working.event.entryNumber] = working.event;
  };

  for (const AES31Entry& entry : section.entries) {
    if (EqualsIgnoringCase(entry.label, "Entry")) {
      store();
      if (checked && entry.values.empty()) {
        return FailAt(LoadFailureCode::IndexMissing, section, entry, "Entry has no number");
      }
      working = {};
      working.event.entryNumber = Values(entry).Int(0);
      entrySeen = true;
    } else if (!entrySeen) {
      Tolerate(LoadDiagnosticCode::UnexpectedEntry, entry,
               std::string("Found unexpected entry: ") + TextOrNull(entry.label));
    } else {
      const LineForm& form = FormOf(entry, working.editSeen);
      if (checked) {
        std::optional<Complaint> complaint = ComplaintAbout(entry, form);
        if (complaint) {
          return FailAt(complaint->code, section, entry, std::move(complaint->reason));
        }
      }
      if (form.kind == LineKind::Unknown) {
        Tolerate(LoadDiagnosticCode::UnexpectedLabel, entry,
                 std::string("Encountered unexpected label: ") + TextOrNull(entry.label));
      }
      working.Take(entry, form, checked);
    }
  }
  store();

  // Without a reserve, which would move all events once for each section of a file that has many.
  for (const auto& [number, event] : byNumber) events.push_back(event);
  return true;
}

}  // namespace velmora
