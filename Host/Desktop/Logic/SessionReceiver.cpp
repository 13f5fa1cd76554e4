#include "Desktop/Logic/SessionReceiver.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "Desktop/Logic/SpotChronicle.h"
#include "Embedded/EmbeddedHost.h"

namespace velmora::desktop {
namespace {

struct LoadedProject {
  const AES31Project* project = nullptr;
  std::string path;
};

}  // namespace

struct SessionReceiver::State {
  explicit State(std::function<void()> whenArrived, const SessionSettings* someSettings)
      : arrived(std::move(whenArrived)), settings(someSettings) {}

  [[nodiscard]] std::string PathOf(const AES31Project* project) const {
    if (project == loaded.project) return loaded.path;
    return project == previous.project ? previous.path : "";
  }

  /// Regions that can be handed out: all, but while a spot runs none that it has not told of yet,
  /// for its fades and its origin come after it.
  [[nodiscard]] std::size_t Ready() const {
    return chronicle.IsRunning() ? described : session.Regions().size();
  }
  /// Whether a notice is to be given, which then is out.
  [[nodiscard]] bool Announce() {
    if (announced || Ready() <= taken) return false;
    announced = true;
    return true;
  }

  const std::function<void()> arrived;
  const SessionSettings* const settings;
  mutable std::mutex mutex;  ///< guards what follows
  host::Session session;
  host::EmbeddedHost host{session};
  SpotChronicle chronicle{session, host};
  LoadedProject loaded;    ///< last
  LoadedProject previous;  ///< a spot of it may still wait for its turn
  bool native = false;
  std::size_t taken = 0;      ///< regions handed out by TakeNew
  std::size_t described = 0;  ///< regions that the spot has told of, or that came before it
  bool announced = false;     ///< a notice is out that TakeNew has not answered
};

SessionReceiver::SessionReceiver(std::function<void()> arrived, const SessionSettings* settings)
    : state_(std::make_unique<State>(std::move(arrived), settings)) {}

SessionReceiver::~SessionReceiver() = default;

std::int32_t SessionReceiver::MakeAlias(const char* path, std::vector<std::uint8_t>& alias) {
  const std::lock_guard lock(state_->mutex);
  return state_->host.MakeAlias(path, alias);
}

std::int32_t SessionReceiver::Send(const RegionMessage& message) {
  bool announce = false;
  std::int32_t status = 0;
  {
    const std::lock_guard lock(state_->mutex);
    status = state_->host.Send(message);
    announce = state_->Announce();
  }
  // Outside the lock: whoever is told may want to take at once.
  if (announce && state_->arrived) state_->arrived();
  return status;
}

void SessionReceiver::Began(const SpotProject& project, const SpotOptions& options) {
  const host::SessionRates rates =
      state_->settings != nullptr ? state_->settings->Rates() : host::SessionRates();
  const std::lock_guard lock(state_->mutex);
  state_->chronicle.Begin(project, state_->PathOf(project.project), options, rates,
                          {state_->native, state_->native});
  state_->described = state_->session.Regions().size();
}

void SessionReceiver::Ended(const SpotOptions& options, bool finished) {
  const std::lock_guard lock(state_->mutex);
  state_->chronicle.End(options, finished);
}

void SessionReceiver::FileMade(FilePass pass, std::int32_t event, const std::string& path,
                               std::int32_t status) {
  const std::lock_guard lock(state_->mutex);
  if (!state_->chronicle.IsRunning()) return;
  state_->chronicle.Recording()->FileMade(pass, event, path, status == 0);
  if (status != 0) state_->chronicle.LeftOut()->File(pass, event, path, status);
}

void SessionReceiver::RegionTried(std::int32_t event, RegionPiece piece, std::int32_t /*attempt*/,
                                  std::int32_t status) {
  bool announce = false;
  {
    const std::lock_guard lock(state_->mutex);
    if (!state_->chronicle.IsRunning() || status != 0) return;
    state_->chronicle.Recording()->RegionLanded(event, piece);
    state_->described = state_->session.Regions().size();
    announce = state_->Announce();
  }
  if (announce && state_->arrived) state_->arrived();
}

void SessionReceiver::RegionGivenUp(std::int32_t event, RegionPiece piece, std::int32_t status) {
  const std::lock_guard lock(state_->mutex);
  if (state_->chronicle.IsRunning()) state_->chronicle.LeftOut()->Region(event, piece, status);
}

void SessionReceiver::CutLeftOut(std::int32_t event, const std::string& path) {
  const std::lock_guard lock(state_->mutex);
  if (state_->chronicle.IsRunning()) state_->chronicle.LeftOut()->Cut(event, path);
}

std::vector<host::SessionRegion> SessionReceiver::TakeNew() {
  const std::lock_guard lock(state_->mutex);
  const std::vector<host::SessionRegion>& all = state_->session.Regions();
  const auto at = [&](std::size_t index) {
    return all.begin() + static_cast<std::ptrdiff_t>(index);
  };
  const std::size_t end = std::max(state_->Ready(), state_->taken);
  std::vector<host::SessionRegion> fresh(at(state_->taken), at(end));
  state_->taken = end;
  state_->announced = false;
  return fresh;
}

host::SessionSummary SessionReceiver::Summary() const {
  const std::lock_guard lock(state_->mutex);
  return state_->session.Summary();
}

void SessionReceiver::Clear() {
  const std::lock_guard lock(state_->mutex);
  state_->session = host::Session();
  state_->host = host::EmbeddedHost(state_->session);
  state_->chronicle.Clear();
  state_->taken = 0;
  state_->described = 0;
  state_->announced = false;
}

void SessionReceiver::Loaded(const AES31Project* project, const std::string& path) {
  const std::lock_guard lock(state_->mutex);
  state_->previous = std::exchange(state_->loaded, {project, path});
}

void SessionReceiver::SetNative(bool native) {
  const std::lock_guard lock(state_->mutex);
  state_->native = native;
}

bool SessionReceiver::IsFilling() const {
  const std::lock_guard lock(state_->mutex);
  return state_->chronicle.IsRunning();
}

bool SessionReceiver::HasRegions() const {
  const std::lock_guard lock(state_->mutex);
  return !state_->session.Regions().empty();
}

bool SessionReceiver::HasRecord() const {
  const std::lock_guard lock(state_->mutex);
  return state_->chronicle.HasRecord();
}

std::shared_ptr<const SpottedSession> SessionReceiver::Copy() const {
  const std::lock_guard lock(state_->mutex);
  return state_->chronicle.Copy();
}

void SessionReceiver::TargetWritten(const host::RecordedTarget& target) {
  const std::lock_guard lock(state_->mutex);
  state_->chronicle.TargetWritten(target);
}

}  // namespace velmora::desktop
