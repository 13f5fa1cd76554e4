#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

#include "LoadedProject.h"
#include "ProjectSnapshot.h"
#include "ReferenceScanner.h"
#include "WaveBytes.h"

namespace velmora::test {
namespace {

using std::string_view_literals::operator""sv;

/// A sound project that uses all that there is.
std::string SoundProject() {
  return "<ADL>\r\n"
         "<VERSION>\n/* made for a test */\n(ADL_ID) \"1234\"\n(VER_ADL_VERSION) 01.00\n"
         "(OWN_FIELD) x\n</VERSION>\n"
         "<PROJECT>\n(PROJ_TITLE) \"\x83\x5C\x82\xA0\"\n(PROJ_NOTES)12 counted (n)\n</PROJECT>\n"
         "<SEQUENCE>\n(SEQ_SAMPLE_RATE) S48000\n(SEQ_DEST_START) 01:00:00:00/0000\n</SEQUENCE>\n"
         "<REF_LIST>\n<REF>\n<NOTE>\n(a) b\n</NOTE>\n/* in a block */\n</REF>\n</REF_LIST>\n"
         "<TRACK_LIST>\n(Track) 1 \"one\"\n</TRACK_LIST>\n"
         "<SOURCE_INDEX>\n"
         "(Index) 0001\n(F) \"URL:file://localhost/Vol/take one.wav\" 1234 "
         "00:00:00:00/0000 00:00:10:00/0000 \"_\" N\n"
         "(Index) 0002\n(F) \"/Vol/sub/two.wav\" _ 00:00:00:00/0000 00:00:10:00/0000\n"
         "(T) a b c d e\n</SOURCE_INDEX>\n"
         "<EVENT_LIST>\n"
         "(Entry) 0002 (Cut) I 1 1 1 00:00:00:00/0000 01:00:00:00/0000 01:00:02:00/0000 _\n"
         "(Infade) 00:00:00;10/0000 LIN _ _ _ CURVE 3 tail\n(Rem) a remark\n"
         "(Entry) 0001 (Cut) I 2 1~2 2 00:00:01:00/0000 01:00:01:00/0000 01:00:03:00/0000 _\n"
         "(Outfade) 00:00:00;10/0000 LIN 0.5 1 2\n(Gain) 1 -3.5\n(Xfade) 1 a b c 2 d\n"
         "(Entry) 0003 (Silence) 1 2 3 4\n"
         "(Entry) 0004 (Alt) I 2 1 00:00:00:00/0000\n"
         "(Entry) 0005 (Vid) a b c d\n"
         "</EVENT_LIST>\n</ADL>\n";
}

/// Loads variants of a project from one path in a folder that has its audio.
class Bench {
 public:
  Bench() {
    folder_.Write("take one.wav", SmallWave());
    folder_.Write("sub/two.wav", SmallWave());
  }

  std::string Load(std::string_view adl) const {
    const Loading loading(file_.Holding(adl));
    return Snapshot(loading);
  }

  /// The same bytes give the same project, and the scan is that of the reference.
  void Expect(const std::string& adl, const std::string& what) const {
    const Loading loading(file_.Holding(adl));
    const std::string snapshot = Snapshot(loading);
    ASSERT_EQ(Load(adl), snapshot) << what;
    ASSERT_EQ(loading.ok, !loading->failure.has_value()) << what;
    const ReferenceScanner reference(adl);
    ASSERT_EQ(Shown(loading->sections), reference.Sections()) << what;
    ASSERT_EQ(ShownTexts(loading->comments), reference.Comments()) << what;
    if (!reference.CutInsideAReferenceList()) {
      ASSERT_EQ(Shown(loading->refLists), reference.RefLists()) << what;
    }
    ExpectOnlyNulsWritten(*loading.project, adl, what);
  }

 private:
  static void ExpectOnlyNulsWritten(const AES31Project& project, const std::string& adl,
                                    const std::string& what) {
    ASSERT_EQ(project.bufferEnd - project.buffer, static_cast<std::ptrdiff_t>(adl.size())) << what;
    for (std::size_t i = 0; i < adl.size(); ++i) {
      const bool kept = project.buffer[i] == adl[i] || project.buffer[i] == '\0';
      ASSERT_TRUE(kept) << what << " at " << i;
    }
  }

  TemporaryFolder folder_;
  ReusedFile file_{folder_};
};

TEST(ProjectMutation, soundProjectLoadsInFull) {
  const Bench bench;
  const std::string snapshot = bench.Load(SoundProject());
  EXPECT_NE(snapshot.find("ok 1"), std::string::npos) << snapshot;
  EXPECT_NE(snapshot.find("event 1 Cut: cut I 2 1 2"), std::string::npos) << snapshot;
  EXPECT_NE(snapshot.find("event 4 ~: alt I 2 1"), std::string::npos) << snapshot;
  EXPECT_NE(snapshot.find("/take one.wav"), std::string::npos) << snapshot;
  EXPECT_NE(snapshot.find("/sub/two.wav"), std::string::npos) << snapshot;
}

TEST(ProjectMutation, truncatedAtEveryByte) {
  const Bench bench;
  const std::string sound = SoundProject();
  for (std::size_t length = 0; length <= sound.size(); ++length) {
    bench.Expect(sound.substr(0, length), "first " + std::to_string(length) + " bytes");
    if (HasFatalFailure()) return;
  }
}

TEST(ProjectMutation, everyByteChanged) {
  const Bench bench;
  const std::string sound = SoundProject();
  constexpr std::string_view kTelling = "\0\"()<>/*\x1B\x82 \n09-|A"sv;
  std::mt19937 random(1999);
  for (std::size_t at = 0; at < sound.size(); ++at) {
    for (int round = 0; round < 3; ++round) {
      std::string changed = sound;
      changed[at] = kTelling[random() % kTelling.size()];
      bench.Expect(changed, "byte " + std::to_string(at) + " is " +
                                std::to_string(static_cast<int>(changed[at])));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(ProjectMutation, everyByteLeftOutOrDoubled) {
  const Bench bench;
  const std::string sound = SoundProject();
  for (std::size_t at = 0; at < sound.size(); ++at) {
    bench.Expect(std::string(sound).erase(at, 1), "without byte " + std::to_string(at));
    bench.Expect(std::string(sound).insert(at, 1, sound[at]), "doubled byte " + std::to_string(at));
    if (HasFatalFailure()) return;
  }
}

TEST(ProjectMutation, manyChangesAtOnce) {
  const Bench bench;
  const std::string sound = SoundProject();
  std::mt19937 random(2008);
  for (int round = 0; round < 2'000; ++round) {
    std::string changed = sound;
    const auto changes = 1 + random() % 12;
    for (auto i = changes; i > 0 && !changed.empty(); --i) {
      const std::size_t at = random() % changed.size();
      const std::size_t span = random() % 30;
      switch (random() % 4) {
        case 0:
          changed[at] = static_cast<char>(random() % 256);
          break;
        case 1:
          changed.erase(at, span);
          break;
        case 2:
          changed.insert(at, changed.substr(random() % changed.size(), span));
          break;
        default:
          changed.replace(at, span, sound.substr(random() % sound.size(), span));
          break;
      }
    }
    bench.Expect(changed, "round " + std::to_string(round));
    if (HasFatalFailure()) return;
  }
}

TEST(ProjectMutation, dumpingAndUncheckedReadingSurviveToo) {
  const TemporaryFolder folder;
  const ReusedFile file(folder);
  const std::string sound = SoundProject();
  std::mt19937 random(42);
  for (std::size_t at = 0; at < sound.size(); at += 3) {
    std::string changed = sound;
    changed[at] = static_cast<char>(random() % 256);
    const Loading loading(file.Holding(changed));
    CapturedStandardError captured;
    loading->ReadSections();
    loading->ResolveSources();
    loading->LinkEvents();
    loading->DumpProject();
    EXPECT_NE(captured.Text().find("Const 23"), std::string::npos);
  }
}

}  // namespace
}  // namespace velmora::test
