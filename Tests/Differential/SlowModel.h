#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "SlowProject.h"

namespace velmora::test::differential {

/// What the four tables show, kept as so many lists of texts, all of which are made anew after
/// every change.
class SlowModel {
 public:
  enum class Box { Off, On, Placeholder };

  /// False for a project that does not load.
  bool Load(const std::string& text, const std::string& folder);
  void SetTrackBox(std::int32_t row, bool on);
  void SetEventBox(std::int32_t row, bool on);
  /// Sets the boxes of all tracks that a cut uses, those too for which the table has no row.
  void SetTrackBoxes(const std::function<bool(std::int32_t track)>& on);

  [[nodiscard]] std::int32_t RowsOf(const std::string& table) const;
  /// A cell as "none", a number, or a text in quotes.
  [[nodiscard]] std::string Cell(const std::string& table, const std::string& column,
                                 std::int32_t row) const;
  /// Background, alignment and size of a cell that is there.
  [[nodiscard]] std::string StyleOf(const std::string& table, const std::string& column,
                                    std::int32_t row) const;

  std::unique_ptr<SlowProject> project;
  std::array<std::string, 13> information;
  std::int32_t numEvents = 0;
  std::int32_t minTrack = 0;
  std::int32_t maxTrack = 0;
  std::int32_t trackCount = 0;
  std::int32_t listedEvents = 0;
  const char* firstEvent = nullptr;  ///< of the project; null with no project
  const char* lastEvent = nullptr;
  std::string totalStart;
  std::string totalEnd;
  std::string message;
  bool spotRuns = false;

  std::vector<Box> eventEnable;
  std::vector<std::string> eventTypes;
  std::vector<std::string> eventNumbers;
  std::vector<std::string> eventCh;
  std::vector<std::string> eventName;
  std::vector<bool> eventFound;
  std::vector<std::string> eventTrack;
  std::vector<std::string> eventIn;
  std::vector<std::string> eventOut;

 private:
  /// A column of the track table. Track numbers may be 4,000,000,000 apart, so that rows of tracks
  /// that no cut uses are not kept.
  struct TrackColumn {
    std::int32_t rows = 0;
    std::string common;
    std::map<std::int32_t, std::string> used;
    [[nodiscard]] bool Has(std::int32_t row) const { return row >= 0 && row < rows; }
    [[nodiscard]] std::string At(std::int32_t row) const;
  };

  void FindSpan();
  void FillTracks();
  void ListEvents();
  [[nodiscard]] std::int32_t TrackOf(std::int32_t row) const;
  [[nodiscard]] std::int32_t RowOf(std::int32_t track) const;
  [[nodiscard]] std::string InformationCell(const std::string& column, std::int32_t row) const;
  [[nodiscard]] std::string TrackCell(const std::string& column, std::int32_t row) const;
  [[nodiscard]] std::string EventCell(const std::string& column, std::int32_t row) const;
  [[nodiscard]] std::string NumberCell(const std::string& column, std::int32_t row) const;

  TrackColumn trackEnable_;
  TrackColumn trackStart_;
  TrackColumn trackEnd_;
};

}  // namespace velmora::test::differential
