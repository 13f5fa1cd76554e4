#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ADL/SourceSearch.h"
#include "Check/Glance.h"
#include "Check/PlainText.h"
#include "Check/PlainTimes.h"
#include "Check/SourceMedia.h"
#include "Field/FileStarts.h"

namespace velmora::check {

/// A number of one to nine digits and nothing else.
[[nodiscard]] std::optional<std::int32_t> ReadPlainNumber(const field::Value& value);

/// The sources of a plain project, and what becomes of the cuts that play them.
class GlanceSources {
 public:
  /// @param folder the ADL's, absolute
  explicit GlanceSources(std::string folder) : folder_(std::move(folder)) {}

  /// Takes a line of the SOURCE_INDEX. False for what is not plain.
  [[nodiscard]] bool Take(const PlainLine& line);
  /// After the last line. False for what is not plain.
  [[nodiscard]] bool Close();

  /// A cut that is on. Times are samples at `projectRate`.
  struct Use {
    std::int32_t source = 0;
    std::int32_t channel = 1;  ///< of the file
    std::int64_t sourceIn = 0;
    std::int64_t length = 0;
    double projectRate = 0;
  };
  /// False if the source is not plain. What the cut alone tells goes to `found`.
  [[nodiscard]] bool Play(const Use& use, Glance& found);
  /// What all cuts of each source tell together; after the last cut.
  void Judge(Glance& found) const;

 private:
  struct Source {
    std::int32_t index = 0;
    bool hasFile = false;        ///< an (F)
    bool isOpen = false;         ///< its file was looked for
    std::size_t locationAt = 0;  ///< in `locations_`
    std::size_t locationSize = 0;
    std::optional<PlainTime> start;
    std::optional<field::FileSpan> file;
    std::int32_t channels = 0;     ///< of its file, 0 if that is not known
    field::StartTally cuts;        ///< of all that are on
    field::StartTally placedCuts;  ///< of those among them that have a length
  };
  [[nodiscard]] bool TakeFile(const PlainLine& line);
  [[nodiscard]] Source* Find(std::int32_t index);
  [[nodiscard]] bool Open(Source& source, double projectRate, Glance& found);
  [[nodiscard]] const SourceMedia& MediaOf(FoundSource found);

  const std::string folder_;
  std::vector<Source> sources_;                         ///< once closed, by rising number
  std::string locations_;                               ///< one after another
  std::unordered_map<std::string, SourceMedia> media_;  ///< by path: each file is read once
};

}  // namespace velmora::check
