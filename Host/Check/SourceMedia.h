#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Base/FileAccess.h"
#include "Field/FileStarts.h"
#include "Media/AudioFacts.h"
#include "Media/MediaSearch.h"

namespace velmora::check {

/// A source's file, as far as it was found and can be read.
struct SourceMedia {
  media::Located located;
  std::optional<media::AudioFacts> facts;  ///< none if missing, ambiguous or broken
  media::Obstacle obstacle = media::Obstacle::None;
  std::string trouble;  ///< of a broken file: why
};

/// One for each source of a project, in its order. A source of which nothing is known but that it
/// has no file takes eight bytes, where a full record takes 240.
class SourceMediaList {
 public:
  void Reserve(std::size_t count) { known_.reserve(count); }
  void Add(SourceMedia media);

  [[nodiscard]] std::size_t size() const { return known_.size(); }
  [[nodiscard]] const SourceMedia& operator[](std::size_t i) const {
    return known_[i] != nullptr ? *known_[i] : Missing();
  }
  /// @throws std::out_of_range
  [[nodiscard]] const SourceMedia& at(std::size_t i) const {
    return known_.at(i) != nullptr ? *known_[i] : Missing();
  }

 private:
  /// What stands for each that is null.
  static const SourceMedia& Missing();

  std::vector<std::unique_ptr<const SourceMedia>> known_;
};

/// Looks for a source's file only where the system does.
/// @param folder      the ADL's, absolute
/// @param rawLocation the location's bytes, quotation marks included
[[nodiscard]] media::Located LocateAsSystem(const std::string& folder,
                                            const std::string& rawLocation);

/// What there is to know of a file that was found. `located` of the answer stays empty.
/// @param stream the file, if it is open already, or null
[[nodiscard]] SourceMedia ReadSourceFile(const std::string& path, FileStream stream = nullptr);

/// The same as deciding a file's start needs it; none without facts.
[[nodiscard]] std::optional<field::SourceAudio> AudioOf(const SourceMedia& media);

}  // namespace velmora::check
