#include "DawProject/DawProjectTarget.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <pugixml.hpp>
#include <vector>

#include "Base/FileAccess.h"
#include "DawProject/MediaNames.h"
#include "DawProject/ProjectXml.h"
#include "DawProject/UsableSession.h"
#include "DawProject/ZipFile.h"
#include "Session/RegionLabel.h"
#include "Session/StagedFile.h"
#include "Session/XmlDocument.h"
#include "Session/XmlText.h"

namespace velmora::dawproject {
namespace {

constexpr std::int64_t kNoMost = std::numeric_limits<std::int64_t>::max();
constexpr std::size_t kBlockBytes = std::size_t{1} << 20;
constexpr double kXmlShare = 0.1;  ///< of the work, where media go inside

/// Hands what pugixml writes to an entry, with references to characters that are not to be shown.
class EntryWriter : public pugi::xml_writer {
 public:
  explicit EntryWriter(ZipFile& zip) : zip_(zip) {}
  void write(const void* bytes, std::size_t count) override {
    const std::string_view text(static_cast<const char*>(bytes), count);
    const auto isPlain = [](char c) { return static_cast<unsigned char>(c) < 0x7F; };
    if (begun_.empty() && std::all_of(text.begin(), text.end(), isPlain)) {
      Put(text.data(), text.size());
      return;
    }
    // A block may end in the middle of a character, whose bytes after the first begin with 10.
    begun_ += text;
    std::size_t last = begun_.size();
    while (last > 0 && (begun_[last - 1] & 0xC0) == 0x80) --last;
    const bool isWhole = last == 0 || isPlain(begun_[last - 1]);
    const std::size_t end = isWhole ? begun_.size() : last - 1;
    const std::string whole = host::WithReferences(std::string_view(begun_).substr(0, end));
    Put(whole.data(), whole.size());
    begun_.erase(0, end);
  }
  /// To be called once after the last write.
  void Finish() {
    const std::string rest = host::WithReferences(begun_);
    Put(rest.data(), rest.size());
  }

 private:
  void Put(const char* bytes, std::size_t count) {
    // The file remembers a failure.
    if (count > 0) static_cast<void>(zip_.Write(bytes, count));
  }

  ZipFile& zip_;
  std::string begun_;
};

bool AddXml(ZipFile& zip, const char* name, const pugi::xml_document& xml) {
  if (!zip.Begin(name, ZipFile::Packing::Deflated, kNoMost)) return false;
  EntryWriter writer(zip);
  xml.save(writer, " ", pugi::format_indent, pugi::encoding_utf8);
  writer.Finish();
  return zip.End();
}

/// Copies audio files into a ZIP file, as they are.
class MediaCopier {
 public:
  MediaCopier(ZipFile& zip, const host::TargetProgress& progress)
      : zip_(zip), progress_(progress) {}

  /// False after a failure of the ZIP file, or with Trouble(), or with IsCancelled().
  bool Copy(const std::vector<MediaNames::Entry>& files) {
    std::vector<std::int64_t> sizes;
    for (const MediaNames::Entry& file : files) {
      const FileStream stream = OpenRegularFile(file.path.c_str());
      if (stream == nullptr) return Fail(file.path, errno);
      sizes.push_back(FileSize(stream.get()));
      if (sizes.back() < 0) return Fail(file.path, errno);
      total_ += static_cast<double>(sizes.back());
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
      if (!CopyFile(files[i], sizes[i])) return false;
    }
    return true;
  }

  [[nodiscard]] const std::string& Trouble() const { return trouble_; }
  [[nodiscard]] bool IsCancelled() const { return isCancelled_; }

 private:
  bool CopyFile(const MediaNames::Entry& file, std::int64_t size) {
    const FileStream stream = OpenRegularFile(file.path.c_str());
    if (stream == nullptr) return Fail(file.path, errno);
    if (!zip_.Begin(file.name, ZipFile::Packing::Stored, size)) return false;
    // Not beyond the size that was told: a file that grows meanwhile must not break the rest.
    for (std::int64_t left = size; left > 0;) {
      const auto part = static_cast<std::size_t>(
          std::min<std::int64_t>(left, static_cast<std::int64_t>(block_.size())));
      errno = 0;
      const std::size_t count = std::fread(block_.data(), 1, part, stream.get());
      if (count == 0) return Fail(file.path, errno);
      if (!zip_.Write(block_.data(), count)) return false;
      left -= static_cast<std::int64_t>(count);
      copied_ += static_cast<double>(count);
      if (progress_ && !progress_(kXmlShare + (1 - kXmlShare) * copied_ / total_)) {
        isCancelled_ = true;
        return false;
      }
    }
    return zip_.End();
  }

  bool Fail(const std::string& path, int error) {
    trouble_ = path + " cannot be read: " +
               (error != 0 ? std::strerror(error) : "it is shorter than it was");
    return false;
  }

  ZipFile& zip_;
  const host::TargetProgress& progress_;
  std::vector<char> block_ = std::vector<char>(kBlockBytes);
  double total_ = 0;
  double copied_ = 0;
  std::string trouble_;
  bool isCancelled_ = false;
};

/// What the spot left out and what this target leaves out, in rising position.
std::vector<Absence> AbsencesOf(const host::TargetInput& input, const UsableSession& usable,
                                std::vector<std::string>& leftOut) {
  std::vector<Absence> absences;
  for (const host::LeftOutPart& part : input.record.leftOut) {
    absences.push_back({part.position, part.text});
  }
  for (const UnusableRegion& unusable : usable.Unusable()) {
    leftOut.push_back(host::RegionLabel(input, unusable.region) + ": " + unusable.cause);
    absences.push_back({input.session.Regions()[unusable.region].position, leftOut.back()});
  }
  // Some programs read markers in a row and expect rising times.
  std::stable_sort(absences.begin(), absences.end(), [](const Absence& one, const Absence& other) {
    return one.position < other.position;
  });
  return absences;
}

/// Names the regions that do not sound as their messages have them.
void NoteWhatIsOdd(const host::TargetInput& input, const UsableSession& usable,
                   media::FactsByPath& media, std::vector<std::string>& notes) {
  const std::vector<host::SessionRegion>& regions = usable.Regions().Regions();
  for (std::size_t i = 0; i < regions.size(); ++i) {
    const auto label = [&] { return host::RegionLabel(input, usable.Original(i)) + ": "; };
    if (regions[i].Length() <= 0) {
      notes.push_back(label() + host::kHasNoLength);
      continue;
    }
    const media::AudioFacts& facts = *media.Of(regions[i].path).facts;
    for (const std::string& odd : host::OddAbout(regions[i], facts.frames, facts.IsWaveOf8Bits())) {
      notes.push_back(label() + odd);
    }
  }
  for (const host::Remark& remark : usable.Heard().Remarks()) {
    notes.push_back(host::RegionLabel(input, usable.Original(remark.region)) + ": " + remark.text);
  }
}

}  // namespace

host::TargetOutcome DawProjectTarget::Write(const host::TargetInput& input,
                                            const host::TargetProgress& progress) {
  host::TargetOutcome outcome;
  const auto isCancelled = [&] {
    outcome = {};
    outcome.trouble = path_ + " is not written: it was cancelled";
    return outcome;
  };
  media::FactsByPath media;
  const UsableSession usable(input, embedMedia_ ? MediaPlace::Inside : MediaPlace::Outside, media);
  const std::vector<Absence> absences = AbsencesOf(input, usable, outcome.leftOut);
  NoteWhatIsOdd(input, usable, media, outcome.notes);
  if (input.session.Summary().first < 0) {
    outcome.notes.push_back(
        "The session begins before its time 0; some programs read no negative "
        "times.");
  }

  MediaNames inside;
  host::XmlDocument project, metadata;
  const ProjectParts parts = {input, usable, media, absences, embedMedia_ ? &inside : nullptr};
  const double share = embedMedia_ ? kXmlShare : 1;
  const host::TargetProgress xmlProgress =
      progress ? [&](double done) { return progress(done * share); } : host::TargetProgress();
  if (!MakeProjectXml(parts, project, outcome.notes, xmlProgress)) return isCancelled();
  MakeMetadataXml(input.record, metadata);

  host::StagedFile file(path_);
  const auto fails = [&](const std::string& trouble) {
    outcome = {};
    outcome.trouble = trouble;
    return outcome;
  };
  if (!file.Create()) return fails(file.Trouble(errno));
  int error = 0;
  {
    ZipFile zip(file.Stream());
    MediaCopier copier(zip, progress);
    const bool isWhole = AddXml(zip, "metadata.xml", metadata) &&
                         AddXml(zip, "project.xml", project) && copier.Copy(inside.Entries()) &&
                         zip.Finish();
    if (copier.IsCancelled()) return isCancelled();
    if (!copier.Trouble().empty()) {
      return fails(path_ + " is not written: " + copier.Trouble());
    }
    if (!isWhole) error = zip.Error();
  }
  const int closing = file.Close();
  if (error == 0) error = closing;
  if (error == 0) error = file.Publish();
  if (error != 0) return fails(file.Trouble(error));
  return outcome;
}

}  // namespace velmora::dawproject
