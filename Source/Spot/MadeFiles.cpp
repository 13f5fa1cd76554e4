#include "Spot/MadeFiles.h"

#include <limits>
#include <typeinfo>
#include <utility>

#include "BWF/StreamCopy.h"
#include "Base/FileAccess.h"
#include "Base/SystemLog.h"

namespace velmora {
namespace {

/// Below this a file's audio is made anew in the time that the bookkeeping takes. Above the other a
/// wave file may be one that its writer can use and a reader cannot.
constexpr std::int64_t kSmallestBytes = 4 << 20;
constexpr std::int64_t kLargestBytes = std::numeric_limits<std::int32_t>::max() - (1 << 20);

}  // namespace

std::optional<std::int32_t> MadeFiles::CopyOf(const Recipe& recipe, OutputFile& file) {
  const auto known = made_.find(recipe);
  if (known == made_.end()) return std::nullopt;
  const Made& made = known->second;
  const FileStream first = OpenRegularFile(made.path.c_str());
  if (first == nullptr || CurrentStamp(made.path) != made.stamp ||
      CurrentStamp(recipe.source->path) != made.source) {
    made_.erase(known);
    return std::nullopt;
  }
  FileStream target = file.Create();
  if (target == nullptr) return CopyTargetNotCreated;
  const auto bytes = static_cast<std::uint64_t>(made.stamp.size);
  const bool copied = CopyStream(first.get(), made.path.c_str(), std::move(target), bytes, file);
  if (!copied) return CopyFailed;
  // Somebody may have written to the first one meanwhile. Others look at it, link it or change its
  // rights, and harm nothing.
  const std::optional<FileStamp> now = CurrentStamp(made.path);
  if (now && HasContentsOf(*now, made.stamp)) return CopyDone;
  SystemLog(made.path + ": was changed while it was copied");
  return CopyFailed;
}

bool MadeFiles::IsWorthNoting(const Recipe& recipe) {
  const AES31BWF& source = *recipe.source;
  // An unchanged copy is made by the system from the source itself.
  if (std::cmp_equal(recipe.bitDepth, source.format.bitsPerSample) && !recipe.gainDb) return false;
  // As a header has it, where a frame of none or of too many bytes makes a file that its writer can
  // use and no reader takes.
  const std::uint64_t frameBytes =
      std::uint64_t{source.format.channels} * (static_cast<std::uint16_t>(recipe.bitDepth) / 8U);
  // What a class derived from AES31BWF makes is its own affair.
  return typeid(source) == typeid(AES31BWF) && frameBytes > 0 &&
         frameBytes <= std::numeric_limits<std::uint16_t>::max() &&
         source.frames >= std::uint64_t{kSmallestBytes} / frameBytes &&
         source.frames <= std::uint64_t{kLargestBytes} / frameBytes;
}

std::optional<FileStamp> MadeFiles::Begin(const Recipe& recipe) {
  return SettledStamp(recipe.source->path);
}

void MadeFiles::Note(const Recipe& recipe, const std::optional<FileStamp>& source,
                     const std::string& path) {
  if (!source) return;
  const std::optional<FileStamp> settled = SettledStamp(path);
  if (settled) made_.insert_or_assign(recipe, Made{path, *settled, *source});
}

}  // namespace velmora
