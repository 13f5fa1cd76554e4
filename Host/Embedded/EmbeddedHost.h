#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "Session/Session.h"
#include "Session/SessionHost.h"
#include "Spot/RegionMessage.h"

namespace velmora::host {

/// A host inside the program: it receives regions as an application would, from the bytes of the
/// messages alone, and places them in a session. Not synchronised: read the session when the sender
/// has ended.
class EmbeddedHost : public SessionHost {
 public:
  /// `session` must outlive the host.
  explicit EmbeddedHost(Session& session) : session_(&session) {}

  /// Makes a Mac OS alias record of the file or folder at `path`; a relative path counts from the
  /// current folder. noErr; fnfErr if nothing is there; notAFileErr for the root; bdNamErr for a
  /// path over 4096 bytes; permErr, paramErr (null), memFullErr or ioErr for what else may be in
  /// the way. `alias` is left empty unless the answer is noErr.
  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override;

  /// Places the region that the message tells. noErr; a status of ReadRegionMessage; paramErr for a
  /// damaged alias; fnfErr if the file that it names is not there, or as MakeAlias answers;
  /// notAFileErr if it is no regular file. Nothing is placed unless the answer is noErr.
  std::int32_t Send(const RegionMessage& message) override;

  [[nodiscard]] const std::vector<Remark>& Remarks() const override { return remarks_; }

 private:
  struct WaveFacts {
    bool valid = false;
    std::uint64_t frames = 0;
  };
  WaveFacts Probe(const std::string& path);
  void RemarkOn(std::size_t index);

  Session* session_;
  std::vector<Remark> remarks_;
  std::unordered_map<std::string, WaveFacts> waves_;  ///< by path; a file is opened once
};

}  // namespace velmora::host
