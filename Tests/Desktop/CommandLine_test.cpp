#include "Desktop/Logic/CommandLine.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace velmora::desktop {
namespace {

struct Parsed {
  std::optional<int> status;
  ShellOptions options;
  std::string out;
  std::string err;
};

Parsed Parse(const std::vector<std::string>& arguments) {
  Parsed parsed;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  parsed.status = ParseCommandLine(arguments, parsed.options);
  parsed.out = testing::internal::GetCapturedStdout();
  parsed.err = testing::internal::GetCapturedStderr();
  return parsed;
}

TEST(CommandLine, nothingOpensAnEmptyWindow) {
  const Parsed parsed = Parse({});
  EXPECT_EQ(parsed.status, std::nullopt);
  EXPECT_TRUE(parsed.options.project.empty());
  EXPECT_TRUE(parsed.options.bundle.empty());
  EXPECT_TRUE(parsed.options.snapshot.empty());
}

TEST(CommandLine, pathsBecomeAbsolute) {
  const Parsed parsed =
      Parse({"a/../Demo.adl", "--snapshot", "x.png", "--bundle", "/opt/./Velmora.bundle"});
  const std::string here = std::filesystem::current_path().string();
  EXPECT_EQ(parsed.status, std::nullopt);
  EXPECT_EQ(parsed.options.project, here + "/Demo.adl");
  EXPECT_EQ(parsed.options.snapshot, here + "/x.png");
  EXPECT_EQ(parsed.options.bundle, "/opt/Velmora.bundle");
}

TEST(CommandLine, bundleMayHaveOneDash) {
  EXPECT_EQ(Parse({"-bundle", "/b"}).options.bundle, "/b");
}

TEST(CommandLine, versionNamesTheProgramAndEnds) {
  const Parsed parsed = Parse({"--version"});
  EXPECT_EQ(parsed.status, 0);
  EXPECT_EQ(parsed.out.find("velmora-desktop 0."), 0U) << parsed.out;
}

TEST(CommandLine, helpEndsWithSuccessAndExamples) {
  const Parsed parsed = Parse({"--help"});
  EXPECT_EQ(parsed.status, 0);
  EXPECT_NE(parsed.out.find("--snapshot"), std::string::npos);
  EXPECT_NE(parsed.out.find("Examples:"), std::string::npos);
}

struct BadUsage {
  std::vector<std::string> arguments;
  const char* reason;
};

TEST(CommandLine, badUsageEndsWithOneAndNamesWhatIsWrong) {
  const BadUsage cases[] = {
      {{"--nonsense"}, "there is no option '--nonsense'"},
      {{"frob", "--x"}, "there is no option '--x'"},
      {{"a.adl", "b.adl"}, "one project at a time: 'b.adl' is one too many"},
      {{"a.adl", "b.adl", "-x"}, "there is no option '-x'"},
      {{"--snapshot"}, "--snapshot: a value must follow: FILE.png"},
      {{"--bundle", "a", "--bundle", "b"}, "--bundle: given more than once"},
      {{"--spot"}, "--spot needs a project to place"},
  };
  for (const BadUsage& usage : cases) {
    const Parsed parsed = Parse(usage.arguments);
    EXPECT_EQ(parsed.status, 1) << usage.reason;
    EXPECT_EQ(parsed.err, std::string("velmora-desktop: ") + usage.reason +
                              "\nTry 'velmora-desktop --help'.\n");
    EXPECT_EQ(parsed.out, "") << usage.reason;
  }
}

}  // namespace
}  // namespace velmora::desktop
