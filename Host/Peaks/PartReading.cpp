#include <sys/stat.h>

#include <new>

#include "Peaks/PeakParts.h"
#include "Peaks/PeakSource.h"

namespace velmora::peaks {
namespace {

FileStamp StampFrom(const struct stat& facts) {
  if (!S_ISREG(facts.st_mode)) return {};
  FileStamp stamp;
  stamp.exists = true;
  stamp.device = static_cast<std::uint64_t>(facts.st_dev);
  stamp.number = static_cast<std::uint64_t>(facts.st_ino);
  stamp.bytes = static_cast<std::int64_t>(facts.st_size);
#ifdef __APPLE__
  const timespec changed = facts.st_mtimespec;
#else
  const timespec changed = facts.st_mtim;
#endif
  stamp.seconds = static_cast<std::int64_t>(changed.tv_sec);
  stamp.nanoseconds = static_cast<std::int64_t>(changed.tv_nsec);
  return stamp;
}

void ReadPage(const PartName& name, PeakSource& source, const Stopped& stopped,
              std::vector<Peak>& page) {
  const std::int64_t frames = PeakParts::kPagePeaks * name.stretch;
  const std::int64_t first = name.page * frames;
  page.resize(static_cast<std::size_t>(PeakParts::kPagePeaks));
  const std::int64_t read = source.Read(first, first + frames, name.stretch, page.data(), stopped);
  page.resize(static_cast<std::size_t>(read));
  page.shrink_to_fit();
}

}  // namespace

ReadPart ReadPartOf(const PartName& name, const FileStamp* known, const Stopped& stopped) {
  ReadPart part;
  struct stat facts {};
  if (::stat(name.path.c_str(), &facts) == 0) part.stamp = StampFrom(facts);
  part.isUnchanged = known != nullptr && *known == part.stamp;
  if (part.isUnchanged || !part.stamp.exists) return part;
  try {
    const std::unique_ptr<PeakSource> source = PeakSource::Open(name.path);
    if (source == nullptr) return part;
    // What is read belongs to the file that was opened: if the name has come to mean another one
    // meanwhile, the next look finds that.
    if (::fstat(fileno(source->Stream()), &facts) == 0) part.stamp = StampFrom(facts);
    if (name.stretch == 0) {
      part.pyramid = Pyramid::Read(*source, stopped);
    } else {
      ReadPage(name, *source, stopped, part.page);
    }
  } catch (const std::bad_alloc&) {
    part.pyramid.reset();
    part.page.clear();
  }
  return part;
}

}  // namespace velmora::peaks
