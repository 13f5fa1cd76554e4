#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Spot/SpotWorker.h"

namespace velmora::recording {

/// "event 12 (entry 13, track 2)".
[[nodiscard]] std::string EventName(AES31Project& project, std::int32_t event);

/// What of the ticked cuts does not arrive as the project has it, each by itself.
class LeftOut {
 public:
  /// `project` must outlive this.
  explicit LeftOut(AES31Project& project) : project_(project) {}

  void NotPcm(std::int32_t event);
  /// `path` is empty for a file that was not found.
  void Cut(std::int32_t event, const std::string& path);
  void File(FilePass pass, std::int32_t event, const std::string& path, std::int32_t status);
  void Region(std::int32_t event, RegionPiece piece, std::int32_t status);

  /// What is missing of one event.
  struct Part {
    std::int32_t event;
    std::string text;    ///< one line, without the event's name
    std::string remedy;  ///< what helps
  };
  [[nodiscard]] const std::vector<Part>& Parts() const { return parts_; }
  /// "event 12 (entry 13, track 2): " and what is missing of it.
  [[nodiscard]] std::string LineOf(const Part& part) const;

 private:
  void Add(std::int32_t event, const std::string& what, const char* remedy);

  AES31Project& project_;
  std::vector<Part> parts_;
};

}  // namespace velmora::recording
