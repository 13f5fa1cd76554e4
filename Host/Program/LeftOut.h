#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Model/ViewModel.h"
#include "Spot/SpotWorker.h"

namespace velmora::program {

/// "event 12 (entry 13, track 2)".
[[nodiscard]] std::string EventName(const ViewModel& model, std::int32_t event);

/// What of the ticked cuts does not arrive as the project has it, each in a line of its own.
class LeftOut {
 public:
  explicit LeftOut(const ViewModel& model) : model_(model) {}

  void NotPcm(std::int32_t event);
  /// `path` is empty for a file that was not found.
  void Cut(std::int32_t event, const std::string& path);
  void File(FilePass pass, std::int32_t event, const std::string& path, std::int32_t status);
  void Region(std::int32_t event, RegionPiece piece, std::int32_t status);

  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }

 private:
  void Add(std::int32_t event, const std::string& what);

  const ViewModel& model_;
  std::vector<std::string> lines_;
};

}  // namespace velmora::program
