#include <gtest/gtest.h>

#include <string>

#include "LoadedProject.h"
#include "WaveBytes.h"

namespace velmora::test {
namespace {

std::string Adl(const std::string& sources, const std::string& events) {
  return "<ADL>\n<EVENT_LIST>\n" + events + "\n</EVENT_LIST>\n<SOURCE_INDEX>\n" + sources +
         "\n</SOURCE_INDEX>\n</ADL>\n";
}

constexpr const char* kSources =
    "(Index) 1 (F) \"V/x.wav\" _ start1 length1\n(Index) 2 (F) \"V/missing.wav\" _ start2 length2\n"
    "(Index) -1 (F) \"V/x.wav\" _ start-1 length-1\n(Index) 3\n"
    "(Index) 0 (F) \"V/x.wav\" _ start0 length0\n";

/// A project of one event, loaded beside the file x.wav.
class Linked {
 public:
  explicit Linked(const std::string& events)
      : loading_((folder_.Write("x.wav", SmallWave()),
                  folder_.Write("project.adl", Adl(kSources, events)))) {
    EXPECT_TRUE(loading_.ok);
    EXPECT_EQ(loading_.standardError, "");
  }
  AES31Project& project() { return *loading_.project; }
  AES31Event& event(std::int32_t position = 0) { return *loading_->GetEvent(position); }

 private:
  TemporaryFolder folder_;
  Loading loading_;
};

TEST(LinkEvents, cutTakesWhatItsSourceHas) {
  for (const char* const label : {"Cut", "CUT", "cut"}) {
    Linked linked("(Entry) 1 (" + std::string(label) + ") I 1 1 1 a b c d");
    EXPECT_NE(linked.event().sourceFile, nullptr);
    EXPECT_EQ(linked.event().sourceFile, linked.project().sourceFiles[1].file);
    EXPECT_EQ(linked.project().GetEventFile(0), linked.event().sourceFile);
    EXPECT_EQ(Shown(linked.event().sourceStart), "start1");
    EXPECT_EQ(Shown(linked.event().sourceLength), "length1");
  }
}

TEST(LinkEvents, twoEventsOnOneSourceShareItsFile) {
  Linked linked("(Entry) 1 (Cut) I 1 1 1 a b c d (Entry) 2 (Cut) I 0001 1 1 a b c d");
  ASSERT_NE(linked.event(0).sourceFile, nullptr);
  EXPECT_EQ(linked.event(0).sourceFile, linked.event(1).sourceFile);
}

TEST(LinkEvents, cutOnAMissingFileHasItsTexts) {
  Linked linked("(Entry) 1 (Cut) I 2 1 1 a b c d");
  EXPECT_EQ(linked.event().sourceFile, nullptr);
  EXPECT_EQ(Shown(linked.event().sourceStart), "start2");
  EXPECT_EQ(Shown(linked.event().sourceLength), "length2");
}

TEST(LinkEvents, cutOnASourceWithoutALocationHasNulls) {
  Linked linked("(Entry) 1 (Cut) I 3 1 1 a b c d");
  EXPECT_EQ(linked.event().sourceFile, nullptr);
  EXPECT_EQ(linked.event().sourceStart, nullptr);
  EXPECT_EQ(linked.event().sourceLength, nullptr);
}

void ExpectUnlinked(const AES31Event& event, const std::string& what) {
  EXPECT_EQ(event.sourceFile, nullptr) << what;
  EXPECT_EQ(event.sourceStart, nullptr) << what;
  EXPECT_EQ(event.sourceLength, nullptr) << what;
}

TEST(LinkEvents, cutOnAnAbsentNumberStaysWithNulls) {
  Linked linked("(Entry) 1 (Cut) I 77 1 1 a b c d");
  EXPECT_EQ(linked.project().GetEventCount(), 1);
  ExpectUnlinked(linked.event(), "absent");
}

TEST(LinkEvents, findsNumbersOverTheWholeRange) {
  for (const char* const between : {"5", "1000000"}) {
    const LoadedProject project(Adl(
        "(Index) 4 (F) l _ s4 _ (Index) " + std::string(between) + " (F) l _ s _\n",
        "(Entry) 1 (Cut) I 4 1 1 a b c d (Entry) 2 (Cut) I " + std::string(between) +
            " 1 1 a b c d\n(Entry) 3 (Cut) I 3 1 1 a b c d (Entry) 4 (Cut) I 1000001 1 1 a b c d"
            " (Entry) 5 (Cut) I -2147483648 1 1 a b c d (Entry) 6 (Cut) I 2147483647 1 1 a b c d"));
    ASSERT_EQ(project->GetEventCount(), 6);
    EXPECT_EQ(Shown(project->events[0].sourceStart), "s4") << between;
    EXPECT_EQ(Shown(project->events[1].sourceStart), "s") << between;
    for (std::size_t i = 2; i < 6; ++i) EXPECT_EQ(project->events[i].sourceStart, nullptr) << i;
  }
  const LoadedProject ends(
      Adl("(Index) -2147483648 (F) l _ low _ (Index) 2147483647 (F) l _ high _\n",
          "(Entry) 1 (Cut) I 2147483647 1 1 a b c d (Entry) 2 (Cut) I -2147483648 1 1 a b c d"));
  ASSERT_EQ(ends->GetEventCount(), 2);
  EXPECT_EQ(Shown(ends->events[0].sourceStart), "high");
  EXPECT_EQ(Shown(ends->events[1].sourceStart), "low");
}

TEST(LinkEvents, cutOnMinusOneCountsAsHavingNoSource) {
  Linked linked("(Entry) 1 (Cut) I -1 1 1 a b c d");
  ASSERT_NE(linked.project().sourceFiles[-1].file, nullptr);
  ExpectUnlinked(linked.event(), "minus one");
}

TEST(LinkEvents, otherKindsNameNoSource) {
  for (const char* const edit : {"(Silence) 1 a b c", "(Aux) 1 a b c", "(Vid) 1 a b c",
                                 "(Alt) I 1 1 a", "(Rem) x", "(Gain) 1 1"}) {
    Linked linked("(Entry) 1 " + std::string(edit));
    ExpectUnlinked(linked.event(), edit);
  }
}

TEST(LinkEvents, sourceNumber0IsANumber) {
  Linked linked("(Entry) 1 (Cut) I x 1 1 a b c d");
  EXPECT_EQ(Shown(linked.event().sourceStart), "start0");
}

TEST(LinkEvents, altAsALabelLinksByItsOwnIndex) {
  for (const char* const label : {"Alt", "ALT", "alt"}) {
    Linked linked("(Entry) 1 (Alt) I 1 1 a");
    linked.event().label = label;
    linked.project().LinkEvents();
    EXPECT_NE(linked.event().sourceFile, nullptr);
    EXPECT_EQ(Shown(linked.event().sourceStart), "start1");
    EXPECT_EQ(Shown(linked.event().sourceLength), "length1");
  }
}

TEST(LinkEvents, labelIsComparedAsAWhole) {
  Linked linked("(Entry) 1 (Cut) I 1 1 1 a b c d");
  linked.event().sourceFile = nullptr;
  for (const char* const label : {"Cuts", "Cu", "", "Silence"}) {
    linked.event().label = label;
    linked.project().LinkEvents();
    EXPECT_EQ(linked.event().sourceFile, nullptr) << label;
  }
}

TEST(LinkEvents, fieldsOfTheOthersStayAsTheyAre) {
  Linked linked("(Entry) 1 (Cut) I 1 1 1 a b c d");
  linked.event().eventOn = 3;
  linked.event().trackOn = 4;
  linked.project().LinkEvents();
  EXPECT_EQ(linked.event().eventOn, 3);
  EXPECT_EQ(linked.event().trackOn, 4);
  EXPECT_EQ(Shown(linked.event().cut.destOut), "c");
}

}  // namespace
}  // namespace velmora::test
