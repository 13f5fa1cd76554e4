#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Spot/RegionMessage.h"

namespace velmora::host {

/// What a person should look at in a region that was placed all the same.
struct Remark {
  std::size_t region = 0;  ///< index into Session::Regions()
  std::string text;        ///< one line, without the region's name
};

/// A host that places the regions it receives in a Session, which is handed to it when it is made
/// and must outlive it.
class SessionHost : public RegionHost {
 public:
  /// In order of arrival. What is well formed and odd is placed and stands here.
  [[nodiscard]] virtual const std::vector<Remark>& Remarks() const = 0;
};

}  // namespace velmora::host
