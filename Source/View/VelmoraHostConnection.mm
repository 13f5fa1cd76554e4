#import "View/VelmoraHostConnection.h"

#include <cstdint>
#include <vector>

#include "Spot/RegionMessage.h"

#ifdef __APPLE__
#include "View/AppleEventHost.h"
#else
#include "Base/FileAccess.h"
#endif

namespace {

#ifdef __APPLE__

using DefaultHost = velmora::AppleEventHost;

#else

// Stands in for a host application that is not running.
class DefaultHost : public velmora::RegionHost {
 public:
  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override {
    constexpr std::int32_t kFileNotFound = -43;
    alias.clear();
    return velmora::OpensForReading(path) ? 0 : kFileNotFound;
  }
  std::int32_t Send(const velmora::RegionMessage&) override {
    constexpr std::int32_t kNoSuchProcess = -600;
    return kNoSuchProcess;
  }
};

#endif

velmora::RegionHost* chosenHost = nullptr;
velmora::SpotFollower* chosenFollower = nullptr;

}  // namespace

@implementation VelmoraHostConnection

+ (void)setRegionHost:(velmora::RegionHost*)host {
  chosenHost = host;
}

+ (velmora::RegionHost*)regionHost {
  static DefaultHost defaultHost;
  return chosenHost != nullptr ? chosenHost : &defaultHost;
}

+ (void)setSpotFollower:(velmora::SpotFollower*)follower {
  chosenFollower = follower;
}

+ (velmora::SpotFollower*)spotFollower {
  return chosenFollower;
}

@end
