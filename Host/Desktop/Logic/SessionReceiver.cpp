#include "Desktop/Logic/SessionReceiver.h"

#include <utility>

namespace velmora::desktop {

std::int32_t SessionReceiver::MakeAlias(const char* path, std::vector<std::uint8_t>& alias) {
  const std::lock_guard lock(mutex_);
  return host_.MakeAlias(path, alias);
}

std::int32_t SessionReceiver::Send(const RegionMessage& message) {
  bool announce = false;
  std::int32_t status = 0;
  {
    const std::lock_guard lock(mutex_);
    status = host_.Send(message);
    if (session_.Regions().size() > taken_ && !announced_) announce = announced_ = true;
  }
  // Outside the lock: whoever is told may want to take at once.
  if (announce && arrived_) arrived_();
  return status;
}

std::vector<host::SessionRegion> SessionReceiver::TakeNew() {
  const std::lock_guard lock(mutex_);
  const std::vector<host::SessionRegion>& all = session_.Regions();
  std::vector<host::SessionRegion> fresh(all.begin() + static_cast<std::ptrdiff_t>(taken_),
                                         all.end());
  taken_ = all.size();
  announced_ = false;
  return fresh;
}

host::SessionSummary SessionReceiver::Summary() const {
  const std::lock_guard lock(mutex_);
  return session_.Summary();
}

void SessionReceiver::Clear() {
  const std::lock_guard lock(mutex_);
  session_ = host::Session();
  host_ = host::EmbeddedHost(session_);
  taken_ = 0;
  announced_ = false;
}

}  // namespace velmora::desktop
