// Spots in which one call to the system fails, each time another. Whatever fails, what was in the
// folder before stays as it is, and no name is held by an empty file.

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "Spot/SpotFixture.h"
#include "Support/OwnNew.h"

namespace {

/// Lets one call of a kind fail: the `left`-th from now on.
struct Fault {
  int left = 0;   ///< 0: none
  int error = 0;  ///< the errno that it leaves
  int calls = 0;  ///< seen since it was armed

  bool Strikes() {
    ++calls;
    if (left == 0 || --left != 0) return false;
    errno = error;
    return true;
  }
};

Fault openFault, lookFault, streamFault, memoryFault;

/// Opens for writing that would take, or follow, what the name stands for.
int opensThatMayMeetAFile = 0;

template <class Function>
Function* Original(const char* name) {
  // A function of a library is found as a pointer to data: POSIX has it that way.
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// The program's own functions come before those of the C library.
extern "C" {
int open64(const char* path, int flags, ...) {
  if (openFault.Strikes()) return -1;
  if ((flags & O_ACCMODE) != O_RDONLY && (flags & O_EXCL) == 0) ++opensThatMayMeetAFile;
  static auto* const original = Original<int(const char*, int, ...)>("open64");
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return original(path, flags, mode);
}
int lstat64(const char* path, struct stat64* facts) noexcept {
  if (lookFault.Strikes()) return -1;
  static auto* const original = Original<int(const char*, struct stat64*)>("lstat64");
  return original(path, facts);
}
FILE* fdopen(int descriptor, const char* mode) noexcept {
  if (streamFault.Strikes()) return nullptr;
  static auto* const original = Original<FILE*(int, const char*)>("fdopen");
  return original(descriptor, mode);
}
}

bool velmora::test::RefusesMemory(std::size_t) noexcept {
  return memoryFault.Strikes();
}

namespace velmora {
namespace {

using test::ProjectBuilder;
using test::Stamp;
using test::TemporaryFolder;

struct FaultRow {
  const char* call;
  Fault& fault;
  int error;
};

const FaultRow kFaultRows[] = {{"openWithoutDescriptors", openFault, EMFILE},
                               {"openThatCannotRead", openFault, EIO},
                               {"look", lookFault, EIO},
                               {"stream", streamFault, ENOMEM},
                               {"memory", memoryFault, ENOMEM}};

class SpotFaultTest : public test::SpotTest {
 protected:
  using Contents = std::map<std::string, std::string>;

  /// A folder that holds the first names of all that the spot makes.
  void Prepare() {
    std::filesystem::remove_all(folder.Path("take"));
    std::filesystem::create_directories(folder.Path("take"));
    WriteWave("take/take.wav", 16, test::Ramp(100));
    for (const char* const suffix : {"_24bit", "_Gain", "_FadeIn", "_FadeOut", "_XFade"}) {
      folder.Write(std::string("take/take") + suffix + ".wav", "in use");
      std::filesystem::create_symlink("nowhere",
                                      folder.Path(std::string("take/take") + suffix + ".1.wav"));
    }
    options.bitDepth = 24;
    options.depthSuffix = "_24bit";
    options.doGain = options.doFades = 1;
    const std::string fade = test::FadeLength(10);
    Load(ProjectBuilder()
             .Source(1, "take/take.wav")
             .Cut({.destIn = Stamp(1000), .destOut = Stamp(1060), .outfade = fade, .gainDb = "-6"})
             .Cut({.destIn = Stamp(1050), .destOut = Stamp(1100), .infade = fade}));
  }
  /// Every name in the folder with what it holds; a link with where it leads.
  Contents InFolder() const {
    Contents contents;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path("take"))) {
      contents[entry.path().filename().string()] =
          entry.is_symlink() ? "link to " + std::filesystem::read_symlink(entry.path()).string()
                             : TemporaryFolder::Read(entry.path().string());
    }
    return contents;
  }
  /// Paths of the files that the run says it made, without those that it says it could not.
  std::vector<std::string> ToldAsMade() const {
    std::vector<std::string> names;
    for (const std::string& line : observer.files) {
      const std::size_t slash = line.rfind('/');
      const std::size_t blank = line.rfind(' ');
      if (line.substr(blank) == " 0") names.push_back(line.substr(slash + 1, blank - slash - 1));
    }
    return names;
  }
  void ExpectNothingLost(const Contents& before) {
    const Contents after = InFolder();
    for (const auto& [name, content] : before) {
      const auto found = after.find(name);
      ASSERT_NE(found, after.end()) << name;
      EXPECT_TRUE(found->second == content) << name;
    }
    for (const auto& [name, content] : after) EXPECT_NE(content, "") << name;
    for (const std::string& name : ToldAsMade()) {
      EXPECT_EQ(before.count(name), 0U) << name;
      EXPECT_EQ(after.count(name), 1U) << name;
    }
  }
};

TEST_F(SpotFaultTest, namesHeldInAnyFormArePassedOver) {
  Prepare();
  const Contents before = InFolder();
  EXPECT_TRUE(Run());
  ExpectNothingLost(before);
  EXPECT_EQ(ToldAsMade(),
            (std::vector<std::string>{"take_24bit.2.wav", "take_24bit.3.wav", "take_Gain.2.wav",
                                      "take_FadeOut.2.wav", "take_XFade.2.wav"}));
}

TEST_F(SpotFaultTest, noFailedCallLosesAFileOrLeavesAnEmptyOne) {
  for (const FaultRow& row : kFaultRows) {
    int struck = 0;
    for (int nth = 1;; ++nth) {
      SCOPED_TRACE(testing::Message() << row.call << ' ' << nth);
      Prepare();
      const Contents before = InFolder();
      row.fault = {.left = nth, .error = row.error};
      Run();
      const bool over = row.fault.left > 0;
      row.fault = {};
      ExpectNothingLost(before);
      if (over || HasFailure()) break;
      ++struck;
    }
    EXPECT_GE(struck, 5) << row.call;
  }
}

// What has been created must not be opened by its name again: another file may have the name by
// then.
TEST_F(SpotFaultTest, filesAreWrittenThroughTheOpenThatCreatedThem) {
  for (const char* const copyFolder : {"", "copies"}) {
    for (const std::int32_t bitDepth : {16, 24}) {
      Prepare();
      options.bitDepth = bitDepth;
      if (*copyFolder != '\0') {
        options.copyFolder = folder.Path(copyFolder);
        options.copySource = 1;
        std::filesystem::create_directories(options.copyFolder);
      }
      opensThatMayMeetAFile = 0;
      EXPECT_TRUE(Run());
      EXPECT_EQ(opensThatMayMeetAFile, 0) << copyFolder << ' ' << bitDepth;
    }
  }
}

TEST_F(SpotFaultTest, nameThatAnErrorHidesIsPassedOver) {
  Prepare();
  lookFault = {.left = 3, .error = EIO};  // the first two names are held
  EXPECT_TRUE(Run());
  EXPECT_EQ(ToldAsMade().at(0), "take_24bit.3.wav");
}

TEST_F(SpotFaultTest, fileThatFailsToBeCreatedOnceIsMadeUnderTheNextName) {
  Prepare();
  streamFault = {.left = 2, .error = ENOMEM};  // the first is that of the source
  EXPECT_TRUE(Run());
  EXPECT_EQ(ToldAsMade().at(0), "take_24bit.3.wav");
  EXPECT_FALSE(Exists("take/take_24bit.2.wav"));
}

}  // namespace
}  // namespace velmora
