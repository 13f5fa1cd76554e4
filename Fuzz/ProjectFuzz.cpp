// A whole project out of a file's bytes: the load, every table with edits of its boxes, what the
// program shows of it as text and as JSON, the dump, and the readers that check nothing.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "Base/Utf8.h"
#include "Model/ProjectSummary.h"
#include "Model/Tables.h"
#include "Model/ViewModel.h"
#include "Program/BlockOutput.h"
#include "Program/InfoCommand.h"
#include "Spot/SpotRequest.h"
#include "Support/Holds.h"
#include "Support/Input.h"
#include "Support/WorkFolder.h"

namespace velmora::fuzz {
namespace {

/// The first rows of a table, the last ones, and some that it does not have.
template <class Visit>
void ForRows(std::int32_t count, const Visit& visit) {
  constexpr std::int32_t kMost = 40;
  for (const std::int32_t row : {-1, INT32_MIN, INT32_MAX, count}) visit(row);
  for (std::int32_t row = 0; row < std::min(count, kMost); ++row) visit(row);
  for (std::int32_t row = std::max(kMost, count - 3); row < count; ++row) visit(row);
}

/// The same cells a block at a time.
void HoldBlock(const ViewModel& model, const Table& table, const TableColumn& column) {
  constexpr std::int32_t kFirst = -1;
  std::array<CellView, 24> cells;
  column.fill(model, kFirst, cells);
  std::int32_t row = kFirst;
  for (const CellView& view : cells) {
    const CellValue cell = ObjectValue(model, table.identifier, column.identifier, row++);
    const std::string expected =
        cell.kind == CellValue::Integer ? std::to_string(cell.integer) : cell.text;
    Hold(view.kind == cell.kind, "a cell of a block is of the same kind", column.identifier);
    Hold(view.text == expected, "a cell of a block has the same text", view.text);
  }
}

void DrawTables(const ViewModel& model) {
  for (const Table& table : Tables()) {
    const std::int32_t count = NumberOfRows(model, table.identifier);
    Hold(count >= 0, "a table has no row or some");
    ForRows(count, [&](std::int32_t row) {
      for (const TableColumn& column : table.columns) {
        (void)ObjectValue(model, table.identifier, column.identifier, row);
        (void)Style(model, table.identifier, column.identifier, row);
      }
    });
    for (const TableColumn& column : table.columns) HoldBlock(model, table, column);
  }
}

/// Ticks and unticks what the bytes of the input say.
void EditBoxes(ViewModel& model, std::string_view text) {
  constexpr std::size_t kEdits = 6;
  for (const char byte : text.substr(text.size() - std::min(text.size(), kEdits))) {
    const auto code = static_cast<unsigned char>(byte);
    const std::string_view table = (code & 1) != 0 ? "TrackTable" : "EventListTable";
    SetObjectValue(model, table, "Space", code >> 4, code >> 1 & 1);
    DrawTables(model);
  }
  model.SetTrackBoxes([](std::int32_t track) { return track % 2 == 0; });
  model.setupEventList();
  DrawTables(model);
}

/// What has been written into a file in memory since it was asked last.
class Printed {
 public:
  [[nodiscard]] int Descriptor() const { return descriptor_; }
  std::string Take() {
    std::string text(static_cast<std::size_t>(lseek(descriptor_, 0, SEEK_END)), '\0');
    const ssize_t got = pread(descriptor_, text.data(), text.size(), 0);
    Hold(got == static_cast<ssize_t>(text.size()), "what was printed can be read");
    Hold(ftruncate(descriptor_, 0) == 0, "what was printed can be dropped");
    lseek(descriptor_, 0, SEEK_SET);
    return text;
  }

 private:
  int descriptor_ = memfd_create("printed", MFD_CLOEXEC);
};

void HoldPlainLines(const std::string& text) {
  Hold(ValidUtf8(text) == text, "what is shown is UTF-8", text);
  const bool hasControl = std::any_of(text.begin(), text.end(), [](char c) {
    return (c >= 0 && c < ' ' && c != '\n') || c == 0x7F;
  });
  Hold(!hasControl, "what is shown has no control characters", text);
}

void Show(const ViewModel& model, const std::string& path, bool loaded) {
  constexpr std::int32_t kMostTracks = 500;  // a row each: a wild number would make it megabytes
  if (model.trackCount > kMostTracks) return;
  static Printed printed;
  {
    program::BlockOutput out(printed.Descriptor());
    program::PrintInfoJson({.project = path, .json = true}, model, out);
    Hold(out.Finish(), "what is shown can be written");
  }
  const std::string json = printed.Take();
  Hold(nlohmann::json::accept(json), "what is shown as JSON is JSON", json);
  if (!loaded) return;
  for (const bool summary : {false, true}) {
    program::BlockOutput out(printed.Descriptor());
    program::PrintInfoText({.project = path, .summary = summary}, model, out);
    Hold(out.Finish(), "what is shown can be written");
    HoldPlainLines(printed.Take());
  }
}

void Tell(const ViewModel& model) {
  (void)SpotWarnings(model.firstEvent, 44100, 2);
  (void)CompareRates(model.firstEvent, 48000, 3);
  if (model.loadFailure) Hold(!FailureText(*model.loadFailure).empty(), "a failure has words");
  if (model.project == nullptr) return;
  const ProjectSummary summary = Summarize(*model.project);
  Hold(summary.cuts + summary.otherEvents == model.project->events.size(), "every event counts");
  for (std::uint32_t id = 0; id <= kProjectConstants.size(); ++id) {
    (void)model.project->GetConstant(id);
    (void)model.project->GetConstantInt(id);
    (void)model.project->GetConstantFloat(id);
  }
  for (std::int32_t i = -1; i <= model.project->GetEventCount(); ++i) {
    (void)model.project->GetEventFile(static_cast<std::size_t>(i));
    (void)model.project->GetEvent(i);
  }
  model.project->DumpProject();
}

/// The readers that check nothing, on a project that is there already.
void ReadAgain(AES31Project& project) {
  project.ReadSections();
  project.ResolveSources();
  project.LinkEvents();
  project.DumpProject();
}

}  // namespace
}  // namespace velmora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace velmora;
  using namespace velmora::fuzz;
  static const WorkFolder folder;
  [[maybe_unused]] static const bool isReady = (WriteSounds(folder), true);
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const std::string path = folder.Write("project.adl", text);
  ViewModel model;
  const bool loaded = model.LoadFile(path);
  DrawTables(model);
  Show(model, path, loaded);
  Tell(model);
  EditBoxes(model, text);
  // The rows of a project that does not load are those of the one before, which is gone.
  if (loaded && !model.LoadFile(folder.Path("none.adl"))) DrawTables(model);
  bool ok = false;
  AES31Project project(path.c_str(), nullptr, &ok);
  Hold(ok == loaded, "a project loads whenever it loads once");
  ReadAgain(project);
  return 0;
}
