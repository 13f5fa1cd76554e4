#include "View/GatedHost.h"

#include "View/Checks.h"
#import "View/Driver.h"
#import "View/VelmoraHostConnection.h"

namespace velmora::view {

GatedHost& GatedHost::Install() {
  static GatedHost* gate = nullptr;
  OnMain([] {
    const Class connection = NSClassFromString(@"VelmoraHostConnection");
    gate = new GatedHost(*[connection regionHost]);
    [connection setRegionHost:gate];
  });
  return *gate;
}

std::int32_t GatedHost::Send(const RegionMessage& message) {
  {
    std::unique_lock lock(mutex_);
    ++arrived_;
    changed_.notify_all();
    changed_.wait(lock, [this] { return open_ || passes_ > 0; });
    if (!open_) --passes_;
  }
  return inner_.Send(message);
}

void GatedHost::LetThrough(int count) {
  const std::lock_guard lock(mutex_);
  passes_ += count;
  changed_.notify_all();
}

void GatedHost::Open() {
  const std::lock_guard lock(mutex_);
  open_ = true;
  changed_.notify_all();
}

int GatedHost::Arrived() const {
  const std::lock_guard lock(mutex_);
  return arrived_;
}

void GatedHost::WaitForArrival(int number) {
  WaitFor("region " + Shown(number) + " of the spot comes to the host",
          [&] { return Arrived() >= number; });
}

}  // namespace velmora::view
