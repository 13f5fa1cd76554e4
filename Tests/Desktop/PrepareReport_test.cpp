#include "Desktop/Logic/PrepareReport.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "Support/TemporaryFolder.h"

namespace velmora::desktop {
namespace {

using prepare::Outcome;
using prepare::Prepared;

check::Finding Left(check::Severity severity, const std::string& text) {
  check::Finding finding;
  finding.code = check::Code::MediaMissing;
  finding.severity = severity;
  finding.line = 8;
  finding.source = 2;
  finding.text = text;
  finding.effect = "Silence.";
  finding.remedy = "Add the folder.";
  return finding;
}

Prepared WithOutcome(Outcome outcome, const std::string& trouble = {}) {
  Prepared prepared;
  prepared.outcome = outcome;
  prepared.trouble = trouble;
  return prepared;
}

TEST(FreeTarget, standsBesideTheProjectUnderAFreeName) {
  const test::TemporaryFolder folder;
  const std::string project = folder.Write("My Demo.v2.adl", "x");
  EXPECT_EQ(FreeTarget(project), folder.Path("My Demo.v2 prepared"));
  std::filesystem::create_directory(folder.Path("My Demo.v2 prepared"));
  EXPECT_EQ(FreeTarget(project), folder.Path("My Demo.v2 prepared 2"));
  folder.Write("My Demo.v2 prepared 2", "a file takes the name too");
  EXPECT_EQ(FreeTarget(project), folder.Path("My Demo.v2 prepared 3"));
  std::filesystem::create_symlink("nowhere", folder.Path("My Demo.v2 prepared 3"));
  EXPECT_EQ(FreeTarget(project), folder.Path("My Demo.v2 prepared 4"));
}

TEST(FreeTarget, aNameWithoutAStemOrExtensionGivesOneToo) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(FreeTarget(folder.Path(".adl")), folder.Path("Project prepared"));
  EXPECT_EQ(FreeTarget(folder.Path("Demo")), folder.Path("Demo prepared"));
}

TEST(FreeTarget, aFolderThatCannotBeSearchedEndsTheSearch) {
  const std::string longName(300, 'x');
  EXPECT_EQ(FreeTarget("/tmp/" + longName + ".adl"), "/tmp/" + longName + " prepared");
}

TEST(TargetIn, anEmptyFolderItselfElseAFreeNameInIt) {
  const test::TemporaryFolder folder;
  const std::string chosen = folder.Path("chosen");
  std::filesystem::create_directory(chosen);
  EXPECT_EQ(TargetIn(chosen, "/projects/Demo.adl"), chosen);
  folder.Write("chosen/file", "x");
  EXPECT_EQ(TargetIn(chosen, "/projects/Demo.adl"), chosen + "/Demo prepared");
  folder.Write("chosen/Demo prepared", "x");
  EXPECT_EQ(TargetIn(chosen, "/projects/Demo.adl"), chosen + "/Demo prepared 2");
}

TEST(OutcomeText, saysWhatCameOfIt) {
  Prepared done = WithOutcome(Outcome::Done);
  done.changes.resize(2);
  done.files.resize(1);
  EXPECT_EQ(OutcomeText(done), "Prepared: 2 changes, 1 audio file. Nothing is left to mend.");
  Prepared left = WithOutcome(Outcome::Left);
  left.left = {Left(check::Severity::Note, "n"), Left(check::Severity::Lost, "a")};
  EXPECT_EQ(OutcomeText(left), "Prepared: 0 changes, 0 audio files. 1 finding is left.");
  left.left.push_back(Left(check::Severity::Fails, "b"));
  EXPECT_EQ(OutcomeText(left), "Prepared: 0 changes, 0 audio files. 2 findings are left.");
  EXPECT_EQ(OutcomeText(WithOutcome(Outcome::Failed, "/x: disk full")),
            "Could not be prepared, and nothing was left on the disk: /x: disk full");
  EXPECT_EQ(OutcomeText(WithOutcome(Outcome::FolderTaken, "/x is not empty")),
            "Nothing was made: /x is not empty");
  EXPECT_EQ(OutcomeText(WithOutcome(Outcome::NotAnAdl, "/x.adl: no ADL")),
            "This cannot be prepared: /x.adl: no ADL");
  EXPECT_EQ(OutcomeText(WithOutcome(Outcome::Cancelled)),
            "Cancelled. Nothing was left on the disk.");
}

TEST(OutcomeText, onlyWhatIsPreparedIsLoaded) {
  for (const auto& [outcome, prepared] : {std::pair(Outcome::Done, true),
                                          {Outcome::Left, true},
                                          {Outcome::FolderTaken, false},
                                          {Outcome::NotAnAdl, false},
                                          {Outcome::Failed, false},
                                          {Outcome::Cancelled, false}}) {
    EXPECT_EQ(IsPrepared(WithOutcome(outcome)), prepared) << static_cast<int>(outcome);
  }
}

Prepared Full() {
  Prepared prepared = WithOutcome(Outcome::Left);
  prepared.left = {Left(check::Severity::Lost, "x.wav is nowhere."),
                   Left(check::Severity::Lost, "y.wav too."),
                   Left(check::Severity::Note, "Names go unused.")};
  prepared.changes = {{check::Code::Channels, 20, 3, {}, "Split."},
                      {check::Code::FadeSeparator, 12, 1, {}, "Mark written."},
                      {check::Code::FadeSeparator, 14, 2, {}, "Mark\nwritten."}};
  prepared.files = {{"/media/a.wav", "/p/Audio/a.wav", prepare::HowMade::Linked}};
  return prepared;
}

TEST(DescribePrepared, whatIsLeftFirstThenChangesByKindThenFiles) {
  EXPECT_EQ(DescribePrepared(Full(), 100),
            "Left in the new project: Audio files that are nowhere (2)\n"
            "  Line 8, source 2: x.wav is nowhere.\n"
            "    Silence. Add the folder.\n"
            "  Line 8, source 2: y.wav too.\n"
            "\n"
            "Changed: Fade lengths with another mark than ; or , before the frames (2)\n"
            "  Line 12, event 1: Mark written.\n"
            "  Line 14, event 2: Mark written.\n"
            "\n"
            "Changed: Cuts of several channels (1)\n"
            "  Line 20, event 3: Split.\n"
            "\n"
            "Audio files (1)\n"
            "  a.wav: linked from /media/a.wav\n"
            "\n"
            "Worth knowing\n"
            "  Audio files that are nowhere (1)\n");
}

TEST(DescribePrepared, longGroupsAreCutAndSayByHowMany) {
  const std::string text = DescribePrepared(Full(), 1);
  EXPECT_NE(text.find("  Line 12, event 1: Mark written.\n  and 1 more\n"), std::string::npos)
      << text;
  EXPECT_EQ(text.find("Line 14"), std::string::npos);
}

TEST(DescribePrepared, nothingToTellIsNoText) {
  EXPECT_EQ(DescribePrepared(WithOutcome(Outcome::Done), 10), "");
}

}  // namespace
}  // namespace velmora::desktop
