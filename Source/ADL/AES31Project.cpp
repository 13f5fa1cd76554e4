#include "ADL/AES31Project.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <new>
#include <utility>

#include "ADL/AdlScanner.h"
#include "Base/FileAccess.h"
#include "Base/FileNames.h"
#include "Base/LargePages.h"
#include "Base/StandardError.h"
#include "Base/Text.h"
#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

/// So short that a string holds it without asking for memory.
constexpr const char* kNoMemory = "out of memory";

/// Tells a file that is no regular one from one that does not open, by the errno of its opening.
bool IsNoRegularFile(int error) {
  return error == EISDIR || error == ENODEV || error == ENXIO;
}

}  // namespace

AES31Project::AES31Project(const char* path, const char* searchFolder, bool* ok)
    : folder(searchFolder != nullptr ? searchFolder : FolderOf(path)) {
  *ok = false;
  try {
    if (!LoadBlock(path)) return;
    lines_ = LineMap(buffer, static_cast<std::size_t>(bufferEnd - buffer));
    if (!AdlScanner(buffer, bufferEnd, refLists, comments).Scan(sections)) {
      diagnostics.push_back({LoadDiagnosticCode::NoAdl, 0, "The file does not begin with <ADL>"});
    }
    if (!AES31Project::CheckSections()) return;
    AES31Project::ResolveSources();
    AES31Project::LinkEvents();
    *ok = true;
  } catch (const std::bad_alloc&) {
    FailWhole(LoadFailureCode::OutOfMemory, kNoMemory);
  }
}

AES31Project::~AES31Project() {
  events.clear();
  DeleteFiles();
}

bool AES31Project::LoadBlock(const char* path) {
  const FileStream stream = OpenRegularFile(path);
  if (stream == nullptr) {
    const int error = errno;
    return FailWhole(
        IsNoRegularFile(error) ? LoadFailureCode::FileNotRegular : LoadFailureCode::FileNotOpened,
        std::string("the file cannot be opened: ") +
            (error == ENODEV ? "not a regular file" : std::strerror(error)));
  }
  const std::int64_t fileSize = FileSize(stream.get());
  if (fileSize < 0) {
    return FailWhole(LoadFailureCode::FileNotRead,
                     std::string("the size of the file cannot be told: ") + std::strerror(errno));
  }
  constexpr std::int64_t kLargestBlock = std::numeric_limits<std::ptrdiff_t>::max();
  if (fileSize >= kLargestBlock) return FailWhole(LoadFailureCode::OutOfMemory, kNoMemory);
  const auto size = static_cast<std::size_t>(fileSize);
  block_.reset(new (std::nothrow) char[size + 1]);
  if (block_ == nullptr) return FailWhole(LoadFailureCode::OutOfMemory, kNoMemory);
  AdviseLargePages(block_.get(), size + 1);
  buffer = block_.get();
  bufferEnd = buffer + size;
  *bufferEnd = '\0';
  if (std::fread(buffer, 1, size, stream.get()) != size) {
    std::string reason = "the file cannot be read to its end";
    if (std::ferror(stream.get()) != 0) (reason += ": ") += std::strerror(errno);
    return FailWhole(LoadFailureCode::FileNotRead, std::move(reason));
  }
  return true;
}

bool AES31Project::FailAt(LoadFailureCode code, const AES31Section& section, const char* label,
                          std::string reason) {
  failure = LoadFailure{code, LineOf(label), section.name != nullptr ? section.name : "",
                        label != nullptr ? label : "", std::move(reason)};
  return false;
}

bool AES31Project::FailWhole(LoadFailureCode code, std::string reason) {
  failure = LoadFailure{code, 0, "", "", std::move(reason)};
  return false;
}

void AES31Project::Tolerate(LoadDiagnosticCode code, const char* label, std::string text) {
  WriteStandardError(text);
  diagnostics.push_back({code, LineOf(label), std::move(text)});
}

/// The line of a label; 0 for one that is not of the file, since sections may come from a caller's
/// own hands.
std::int64_t AES31Project::LineOf(const char* label) const {
  const std::less_equal<const char*> notAfter;
  const bool isOfFile = notAfter(buffer, label) && notAfter(label, bufferEnd);
  return isOfFile ? lines_.LineAt(static_cast<std::size_t>(label - buffer)) : 0;
}

AES31BWF* AES31Project::GetEventFile(std::size_t position) {
  return position < events.size() ? events[position].sourceFile : nullptr;
}

const char* AES31Project::GetConstant(std::uint32_t id) {
  return id < constants.size() ? constants[id] : nullptr;
}

std::int32_t AES31Project::GetConstantInt(std::uint32_t id) {
  return ToInt32(GetConstant(id));
}

double AES31Project::GetConstantFloat(std::uint32_t id) {
  return ToDouble(GetConstant(id));
}

AES31Event* AES31Project::GetEvent(std::int32_t position) {
  if (position < 0 || std::cmp_greater_equal(position, events.size())) return nullptr;
  return &events[static_cast<std::size_t>(position)];
}

std::int32_t AES31Project::GetEventCount() {
  return static_cast<std::int32_t>(events.size());
}

bool AES31Project::IsTimestamp(const char* text) {
  return AdlIsTimestamp(text);
}

void AES31Project::DumpProject() {
  constexpr int kValueColumn = 30;
  for (std::size_t id = 0; id < constants.size(); ++id) {
    const char* const name = kProjectConstants[id].displayName;
    const int padding = std::max(kValueColumn - static_cast<int>(std::strlen(name)), 0);
    std::fprintf(stderr, "Const %d\t %s%*s = %s\n", static_cast<int>(id), name, padding, "",
                 TextOrNull(constants[id]));
  }
  for (const auto& [index, source] : sourceFiles) {
    std::fprintf(stderr, "Source %d: %s / %s\n", index, TextOrNull(source.fValues[0]),
                 TextOrNull(source.fValues[3]));
  }
  for (std::size_t i = 0; i < events.size(); ++i) {
    const AES31Event& event = events[i];
    // Read as a cut whatever the event is: the fields of other kinds end before the two shown.
    AES31Cut cut;
    std::memcpy(&cut, &event.cut, sizeof cut);
    std::fprintf(stderr, "Event: %d: %s (%i), channel: %d\n", static_cast<int>(i),
                 TextOrNull(event.label), cut.sourceIndex, cut.destChannel);
  }
}

}  // namespace velmora
