#include "Program/SpotReport.h"

#include "Program/StopRequests.h"

namespace velmora::program {

std::int32_t MessageTap::MakeAlias(const char* path, std::vector<std::uint8_t>& alias) {
  last_.reset();
  return host_.MakeAlias(path, alias);
}

std::int32_t MessageTap::Send(const RegionMessage& message) {
  last_ = message;
  return host_.Send(message);
}

void SpotReport::Start(const SpotOptions& /*options*/, std::int32_t steps) {
  totals_.steps = steps;
}

void SpotReport::End(bool aborted) {
  totals_.aborted = aborted;
}

bool SpotReport::Aborted() {
  return Interrupted();
}

void SpotReport::Report(std::int32_t progress) {
  if (progress >= 0) totals_.counted = progress;
}

void SpotReport::FileMade(FilePass pass, std::int32_t event, const std::string& path,
                          std::int32_t status) {
  recording_.FileMade(pass, event, path, status == 0);
  if (status == 0) {
    ++totals_.files;
  } else {
    leftOut_.File(pass, event, path, status);
  }
}

void SpotReport::RegionTried(std::int32_t event, RegionPiece piece, std::int32_t /*attempt*/,
                             std::int32_t status) {
  if (status != 0) return;
  ++totals_.regions;
  recording_.RegionLanded(event, piece);
}

void SpotReport::RegionGivenUp(std::int32_t event, RegionPiece piece, std::int32_t status) {
  leftOut_.Region(event, piece, status);
}

void SpotReport::CutLeftOut(std::int32_t event, const std::string& path) {
  leftOut_.Cut(event, path);
}

}  // namespace velmora::program
