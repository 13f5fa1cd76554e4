#include "Ardour/ArdourProgram.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

#include "Ardour/ArdourKind.h"
#include "Support/TemporaryFolder.h"

namespace velmora::ardour {
namespace {

/// A PATH of two folders of its own, and no Ardour.
class ArdourProgram : public testing::Test {
 public:
  ArdourProgram() : path_(Value("PATH")), setting_(Value("ARDOUR_LUA")) {
    ::setenv("PATH", (folder_.Path("one") + ":" + folder_.Path("two")).c_str(), 1);
    ::unsetenv("ARDOUR_LUA");
  }
  ~ArdourProgram() override {
    ::setenv("PATH", path_.c_str(), 1);
    setting_.empty() ? ::unsetenv("ARDOUR_LUA") : ::setenv("ARDOUR_LUA", setting_.c_str(), 1);
  }

 protected:
  std::string MakeProgram(const std::string& name) const {
    std::string path = folder_.Write(name, "#!/bin/sh\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }
  test::TemporaryFolder folder_;

 private:
  static std::string Value(const char* name) {
    const char* const value = ::getenv(name);
    return value != nullptr ? value : "";
  }
  std::string path_, setting_;
};

TEST_F(ArdourProgram, theNewestIsTaken) {
  MakeProgram("one/ardour6-lua");
  MakeProgram("one/ardour-lua");
  MakeProgram("one/ardour77-luasession");
  MakeProgram("one/ardour99999999999999999999-lua");
  EXPECT_EQ(FindArdour().program, "");
  const std::string seven = MakeProgram("one/ardour7-lua");
  EXPECT_EQ(FindArdour().program, seven);
  MakeProgram("two/ardour7-lua");
  EXPECT_EQ(FindArdour().program, seven);
  const std::string eight = MakeProgram("two/ardour8-lua");
  EXPECT_EQ(FindArdour().program, eight);
  folder_.Write("one/ardour9-lua", "no program");
  std::filesystem::create_directory(folder_.Path("one/ardour12-lua"));
  EXPECT_EQ(FindArdour().program, eight);
  const std::string ten = MakeProgram("one/ardour10-lua");
  EXPECT_EQ(FindArdour().program, ten);
}

TEST_F(ArdourProgram, aSettingComesBeforePath) {
  MakeProgram("one/ardour9-lua");
  const std::string mine = MakeProgram("mine/my-ardour");
  ::setenv("ARDOUR_LUA", mine.c_str(), 1);
  EXPECT_EQ(FindArdour().program, mine);
  const std::string seven = MakeProgram("two/ardour7-lua");
  ::setenv("ARDOUR_LUA", "ardour7-lua", 1);
  EXPECT_EQ(FindArdour().program, seven);
}

TEST_F(ArdourProgram, aBadSettingIsNamedWhateverPathHas) {
  MakeProgram("one/ardour9-lua");
  const struct {
    const char* rule;
    std::string setting, cause;
  } rows[] = {
      {"not there", "/nowhere/ardour", "No such file"},
      {"not in PATH", "ardour8-lua", "PATH has no such program"},
      {"not executable", folder_.Write("text", "text"), "Permission denied"},
      {"a folder", folder_.Path("one"), "it is a folder"},
      {"a device", "/dev/null", "it is no file"},
  };
  for (const auto& row : rows) {
    ::setenv("ARDOUR_LUA", row.setting.c_str(), 1);
    const FoundArdour found = FindArdour();
    EXPECT_EQ(found.program, "") << row.rule;
    EXPECT_NE(found.trouble.find("ARDOUR_LUA names " + row.setting), std::string::npos)
        << found.trouble;
    EXPECT_NE(found.trouble.find(row.cause), std::string::npos) << found.trouble;
  }
}

TEST_F(ArdourProgram, aClaimWithoutArdourSaysWhatToInstall) {
  const host::ClaimedTarget claimed = kArdourSessionKind.claim(folder_.Path("new"), {});
  EXPECT_EQ(claimed.target, nullptr);
  EXPECT_NE(claimed.complaint.find("apt install ardour"), std::string::npos) << claimed.complaint;
}

TEST_F(ArdourProgram, aClaimRefusesWhatIsThere) {
  MakeProgram("one/ardour7-lua");
  const std::string there = folder_.Write("there", "");
  const host::ClaimedTarget claimed = kArdourSessionKind.claim(there, {});
  EXPECT_EQ(claimed.target, nullptr);
  EXPECT_NE(claimed.complaint.find(there), std::string::npos) << claimed.complaint;
}

}  // namespace
}  // namespace velmora::ardour
