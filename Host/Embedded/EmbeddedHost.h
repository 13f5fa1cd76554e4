#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "Session/Session.h"
#include "Spot/RegionMessage.h"

namespace velmora::host {

/// What a person should look at in a region that was placed all the same.
struct Remark {
  std::size_t region = 0;  ///< index into Session::regions()
  std::string text;        ///< one line, without the region's name
};

/// A host inside the program: it receives regions as an application would, from the bytes of the
/// messages alone, and keeps a session of them. Not synchronised: read the session when the sender
/// has ended.
class EmbeddedHost : public velmora::RegionHost {
 public:
  /// Makes a Mac OS alias record of the file or folder at `path`; a relative path counts from the
  /// current folder. noErr; fnfErr if nothing is there; notAFileErr for the root; bdNamErr for a
  /// path over 4096 bytes; permErr, paramErr (null), memFullErr or ioErr for what else may be in
  /// the way. `alias` is left empty unless the answer is noErr.
  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override;

  /// Places the region that the message tells. noErr; a status of ReadRegionMessage; paramErr for a
  /// damaged alias; fnfErr if the file that it names is not there, or as MakeAlias answers;
  /// notAFileErr if it is no regular file. Nothing is placed unless the answer is noErr.
  std::int32_t Send(const RegionMessage& message) override;

  const Session& session() const { return session_; }
  /// In order of arrival. What is well formed and odd is placed and stands here.
  const std::vector<Remark>& remarks() const { return remarks_; }

 private:
  struct WaveFacts {
    bool valid = false;
    std::uint64_t frames = 0;
  };
  WaveFacts Probe(const std::string& path);
  void RemarkOn(std::size_t index);

  Session session_;
  std::vector<Remark> remarks_;
  std::unordered_map<std::string, WaveFacts> waves_;  ///< by path; a file is opened once
};

}  // namespace velmora::host
