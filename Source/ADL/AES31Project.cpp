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
#include "Base/Text.h"
#include "Base/FileAccess.h"
#include "Base/FileNames.h"
#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

/// Short enough for a string to hold it without asking for memory.
constexpr const char* kNoMemory = "out of memory";

/// The line, from 1, on which a byte of a file stands; line ends are LF, CR LF or CR. The file is
/// read again because the scanner has cut the block's own line ends away.
std::int64_t LineAt(const std::string& path, std::int64_t offset) {
  const FileStream stream = OpenRegularFile(path.c_str());
  std::int64_t line = 1;
  int previous = 0;
  for (std::int64_t i = 0; stream != nullptr && i < offset; ++i) {
    const int byte = std::getc(stream.get());
    if (byte == EOF) break;
    if (byte == '\r' || (byte == '\n' && previous != '\r')) ++line;
    previous = byte;
  }
  return line;
}

const char* Printable(const char* text) {
  return text != nullptr ? text : "(null)";
}

}  // namespace

AES31Project::AES31Project(const char* path, const char* searchFolder, bool* ok)
    : folder(searchFolder != nullptr ? searchFolder : FolderOf(path)), path_(path) {
  *ok = false;
  try {
    if (!LoadBlock()) return;
    AdlScanner(buffer, bufferEnd, refLists, comments).Scan(sections);
    if (!AES31Project::CheckSections()) return;
    AES31Project::ResolveSources();
    AES31Project::LinkEvents();
    *ok = true;
  } catch (const std::bad_alloc&) {
    FailWhole(kNoMemory);
  }
}

AES31Project::~AES31Project() = default;

bool AES31Project::LoadBlock() {
  const FileStream stream = OpenRegularFile(path_.c_str());
  if (stream == nullptr) {
    return FailWhole(std::string("the file cannot be opened: ") +
                     (errno == ENODEV ? "not a regular file" : std::strerror(errno)));
  }
  const std::int64_t fileSize = FileSize(stream.get());
  if (fileSize < 0) return FailWhole("the size of the file cannot be told");
  constexpr std::int64_t kLargestBlock = std::numeric_limits<std::ptrdiff_t>::max();
  if (fileSize >= kLargestBlock) return FailWhole(kNoMemory);
  const auto size = static_cast<std::size_t>(fileSize);
  block_.reset(new (std::nothrow) char[size + 1]);
  if (block_ == nullptr) return FailWhole(kNoMemory);
  buffer = block_.get();
  bufferEnd = buffer + size;
  *bufferEnd = '\0';
  if (std::fread(buffer, 1, size, stream.get()) != size) {
    return FailWhole("the file cannot be read to its end");
  }
  return true;
}

bool AES31Project::FailAt(const AES31Section& section, const AES31Entry& entry,
                          std::string reason) {
  // Sections may come from a caller's own hands.
  const std::less_equal<const char*> notBehind;
  const bool fromFile = notBehind(buffer, entry.label) && notBehind(entry.label, bufferEnd);
  failure = LoadFailure{fromFile ? LineAt(path_, entry.label - buffer) : 0,
                        section.name != nullptr ? section.name : "",
                        entry.label != nullptr ? entry.label : "", std::move(reason)};
  return false;
}

bool AES31Project::FailWhole(std::string reason) {
  failure = LoadFailure{0, "", "", std::move(reason)};
  return false;
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
                 Printable(constants[id]));
  }
  for (const auto& [index, source] : sourceFiles) {
    std::fprintf(stderr, "Source %d: %s / %s\n", index, Printable(source.fValues[0]),
                 Printable(source.fValues[3]));
  }
  for (std::size_t i = 0; i < events.size(); ++i) {
    const AES31Event& event = events[i];
    AES31Cut
        cut;  // whatever the event is: the other kinds' fields end before the two that are shown
    std::memcpy(&cut, &event.cut, sizeof cut);
    std::fprintf(stderr, "Event: %d: %s (%i), channel: %d\n", static_cast<int>(i),
                 Printable(event.label), cut.sourceIndex, cut.destChannel);
  }
}

}  // namespace velmora
