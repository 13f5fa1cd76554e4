#include <gtest/gtest.h>

#include <string>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

std::string Dump(AES31Project& project) {
  CapturedStandardError captured;
  project.DumpProject();
  return captured.Text();
}

std::string NoConstants() {
  return "Const 0\t AES31_Version_ADL_ID           = (null)\n"
         "Const 1\t AES31_Version_ADL_UID          = (null)\n"
         "Const 2\t AES31_Version_Ver_ADL_Version  = (null)\n"
         "Const 3\t AES31_Version_Ver_Creator      = (null)\n"
         "Const 4\t AES31_Version_Ver_Crtr         = (null)\n"
         "Const 5\t AES31_Proj_Title               = (null)\n"
         "Const 6\t AES31_Proj_Originator          = (null)\n"
         "Const 7\t AES31_Proj_Create_Date         = (null)\n"
         "Const 8\t AES31_Proj_Notes               = (null)\n"
         "Const 9\t AES31_Proj_Client_Data         = (null)\n"
         "Const 10\t AES31_System_Src_Offset        = (null)\n"
         "Const 11\t AES31_System_Bit_Depth         = (null)\n"
         "Const 12\t AES31_System_Aud_Codec         = (null)\n"
         "Const 13\t AES31_System_XFade_Len         = (null)\n"
         "Const 14\t AES31_System_Gain              = (null)\n"
         "Const 15\t AES31_Sequence_Title           = (null)\n"
         "Const 16\t AES31_Sequence_Descript        = (null)\n"
         "Const 17\t AES31_Sequence_Sample_Rate     = (null)\n"
         "Const 18\t AES31_Sequence_Frame_Rate      = (null)\n"
         "Const 19\t AES31_Sequence_ADL_Level       = (null)\n"
         "Const 20\t AES31_Sequence_Clean           = (null)\n"
         "Const 21\t AES31_Sequence_Sort            = (null)\n"
         "Const 22\t AES31_Sequence_MultiChan       = (null)\n"
         "Const 23\t AES31_Sequence_Dest_Start      = (null)\n";
}

TEST(DumpProject, emptyProject) {
  const LoadedProject project("");
  EXPECT_EQ(Dump(*project.loading.project), NoConstants());
}

TEST(DumpProject, constantsInRawForm) {
  const LoadedProject project("<ADL> <PROJECT> (PROJ_TITLE) \"A\x83\x5C B\" </PROJECT> </ADL>");
  std::string expected = NoConstants();
  const std::string line = "AES31_Proj_Title               = (null)";
  expected.replace(expected.find(line), line.size(),
                   "AES31_Proj_Title               = \"A\x83\x5C B\"");
  EXPECT_EQ(Dump(*project.loading.project), expected);
}

TEST(DumpProject, sourcesByRisingNumber) {
  const LoadedProject project(
      WithSources("(Index) 7 (F) \"/a/b.wav\" u s l\n(Index) -3 (T) a b c d e\n"
                  "(Index) 5 (F) one two three four five six"));
  EXPECT_EQ(Dump(*project.loading.project), NoConstants() +
                                                "Source -3: (null) / (null)\n"
                                                "Source 5: one / four\n"
                                                "Source 7: \"/a/b.wav\" / l\n");
}

TEST(DumpProject, eventsByPositionWithTheCutFieldsOfAnyKind) {
  const LoadedProject project(
      WithEvents("(Entry) 30 (CUT) I 4 5 6 a b c d\n(Entry) 10 (Silence) 1 2 3 4\n"
                 "(Entry) 20 (Alt) I 9 8 t\n(Entry) 40 (Vid) a b c d\n(Entry) 50 (Rem)"));
  EXPECT_EQ(Dump(*project.loading.project), NoConstants() +
                                                "Event: 0: Silence (0), channel: 0\n"
                                                "Event: 1: (null) (0), channel: 0\n"
                                                "Event: 2: CUT (4), channel: 6\n"
                                                "Event: 3: Vid (0), channel: 0\n"
                                                "Event: 4: (null) (0), channel: 0\n");
}

TEST(DumpProject, cutFieldsAreReadUnderAnyLabel) {
  const LoadedProject project(WithEvents("(Entry) 1 (Cut) I 4 5 6 a b c d"));
  project->GetEvent(0)->label = "Silence";
  EXPECT_EQ(Dump(*project.loading.project), NoConstants() + "Event: 0: Silence (4), channel: 6\n");
}

TEST(DumpProject, failedProjectShowsWhatItHas) {
  const LoadedProject project(
      "<ADL> <SOURCE_INDEX> (Index) 1 (Index) 2 (F) 1 </SOURCE_INDEX> </ADL>");
  ASSERT_FALSE(project.ok());
  EXPECT_EQ(Dump(*project.loading.project), NoConstants() + "Source 1: (null) / (null)\n");
}

TEST(DumpProject, textsOfAnyLength) {
  const std::string title(100'000, 't');
  const LoadedProject project("<ADL> <PROJECT> (PROJ_TITLE) " + title + " </PROJECT> </ADL>");
  EXPECT_NE(Dump(*project.loading.project).find("= " + title + "\n"), std::string::npos);
}

}  // namespace
}  // namespace velmora::test
