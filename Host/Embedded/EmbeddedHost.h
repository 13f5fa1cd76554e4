#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Base/FileStamp.h"
#include "Embedded/MacStatus.h"
#include "Embedded/RegionMessageReader.h"
#include "Session/Session.h"
#include "Session/SessionHost.h"
#include "Spot/RegionMessage.h"

namespace velmora::host {

/// A host inside the program: it receives regions as an application would, from the bytes of the
/// messages alone, and places them in a session. Not synchronised: read the session when the sender
/// has ended.
class EmbeddedHost : public SessionHost {
 public:
  /// How long a look at a file may be taken for the file itself, in nanoseconds; see Place. More
  /// time than that passes between any message and the use of the file that it names.
  static constexpr std::int64_t kLookHolds = 1'000'000;

  /// Nanoseconds from any beginning, which never run back.
  using Clock = std::function<std::int64_t()>;

  /// `session` must outlive the host.
  explicit EmbeddedHost(Session& session) : EmbeddedHost(session, SteadyNanoseconds) {}
  /// With a clock of one's own, for tests that need looks at files at certain times.
  EmbeddedHost(Session& session, Clock clock) : session_(&session), clock_(std::move(clock)) {}

  /// Makes a Mac OS alias record of the file or folder at `path`; a relative path counts from the
  /// current folder. noErr; fnfErr if nothing is there; notAFileErr for the root; bdNamErr for a
  /// path over 4096 bytes; permErr, paramErr (null), memFullErr or ioErr for what else may be in
  /// the way. `alias` is left empty unless the answer is noErr.
  std::int32_t MakeAlias(const char* path, std::vector<std::uint8_t>& alias) override;

  /// Places the region that the message tells. noErr; a status of ReadRegionMessage; paramErr for a
  /// damaged alias; fnfErr if the file that it names is not there, or as MakeAlias answers;
  /// notAFileErr if it is no regular file. Nothing is placed unless the answer is noErr.
  std::int32_t Send(const RegionMessage& message) override;

  /// Both in one, in memory that is used again, and with a look at the file only where the last one
  /// does not hold any more: one look takes twice as long as all the rest. A look holds for
  /// kLookHolds, and only if it found a file that nobody had changed for some time before and that
  /// has no other name; so the first two regions of a file always have looks of their own, and so
  /// has each region of a file just made.
  std::int32_t Place(const char* path, const RegionPlacement& placement,
                     std::string_view name) override;

  [[nodiscard]] const std::vector<Remark>& Remarks() const override { return remarks_; }

 private:
  /// What is known of a file whose regions have come.
  struct KnownFile {
    bool isProbed = false;  ///< a region of it has landed, so that the next two are known
    bool isWave = false;
    std::uint64_t frames = 0;
    /// Its alias, once it was asked for again, and the stamp of the file that it is true for.
    std::vector<std::uint8_t> alias;
    FileStamp aliasStamp;
    /// When the last look found that stamp.
    std::optional<std::int64_t> seen;
  };
  struct PathHash {
    using is_transparent = void;  // paths are looked for without being copied
    std::size_t operator()(std::string_view path) const {
      return std::hash<std::string_view>{}(path);
    }
  };
  using KnownFiles = std::unordered_map<std::string, KnownFile, PathHash, std::equal_to<>>;

  static std::int64_t SteadyNanoseconds();
  MacStatus AliasOf(std::string_view path, const struct stat& facts, KnownFiles::iterator known,
                    std::vector<std::uint8_t>& alias);
  static void NoteLook(KnownFile& file, const struct stat& facts, std::int64_t now);
  void Land(const ReceivedRegion& received, std::string_view path, KnownFiles::iterator known);
  static void Probe(const std::string& path, KnownFile& file);
  void RemarkOn(std::size_t index, const KnownFile& file);

  Session* session_;
  std::vector<Remark> remarks_;
  KnownFiles files_;         ///< by path; a file is opened once
  RegionMessage message_{};  ///< the one that Place made last, for its memory
  Clock clock_;
};

}  // namespace velmora::host
