#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Model/ViewModel.h"
#include "RandomAdl.h"
#include "SlowModel.h"
#include "Support/TemporaryFolder.h"

namespace velmora::test::differential {

/// The view's model and the slow one, to which the same happens.
class TwinModels {
 public:
  /// The texts are loaded from a file in that folder.
  explicit TwinModels(const TemporaryFolder& folder)
      : folder_(folder), path_(folder.Path("project.adl")) {}

  void Load(const std::string& text);

  /// Does something that a user can do, or an edit that goes nowhere.
  void EditSomething(RandomAdl& random);
  void SetTrackBox(std::int32_t row, bool on);
  void SetEventBox(std::int32_t row, bool on);
  void SetSpotRunning(bool runs);

  /// What is different, now or when it was asked before; empty if nothing is.
  const std::string& Difference();
  /// All that has happened, a line each.
  [[nodiscard]] const std::string& Notes() const { return notes_; }

 private:
  void EditOtherCells(std::int32_t value);
  void SetTracksAtOnce(std::uint32_t divisor);
  template <class Fast>
  void Hold(const char* name, const std::vector<std::string>& slow, const Fast& fast);
  void Note(const std::string& line) { notes_ += line + "\n"; }

  const TemporaryFolder& folder_;
  std::string path_;
  SlowModel slow_;
  ViewModel fast_;
  std::string difference_;
  std::string notes_;
};

}  // namespace velmora::test::differential
