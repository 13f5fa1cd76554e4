#include <gtest/gtest.h>

#include <string>

#include "Field/FieldProject.h"

namespace velmora::field {
namespace {

TEST(ReadProject, aProjectAsItComes) {
  const auto project = ReadProject(R"(<ADL>
<SEQUENCE>
 (SEQ_SAMPLE_RATE) S48000
 (SEQ_FRAME_RATE) 25
</SEQUENCE>
<SOURCE_INDEX>
 (Index) 0001 (F) "URL:file://localhost/Vol/a b.wav" USID1 00.00.01.00/0000 00.00.10.00/0000 "a b" N
 (Index) (F) URL:file:///C:/my take.wav _ _ _ my take N
</SOURCE_INDEX>
<EVENT_LIST>
 (Entry) 0002 (Cut) I 1 1~2 3~4 00.00.02.00/0000 01.00.00.00/0000 01.00.01.00/0000 R /* note */
   (Infade) 00.00.00.05/0000 CURVE -9,5 -4.5 _ I 7 00.00.01.00/0000
   (Gain) _ +5.00 (Gain) 4 -6,02
   (Rem) NAME
     "Cut ")"
                                   "\x1b"
                                   R"(""
 (Entry) 0001 (Cut) I my take.wav 1 1 00.00.00.00 01.00.00.00 01.00.00.12 D
   (Outfade) _ LIN _ _ _ (Rem) NAME two words
</EVENT_LIST>
</ADL>
)",
                                   "/nowhere/x.adl", {});
  ASSERT_TRUE(project->isAdl);
  EXPECT_EQ(project->encoding, "ASCII");
  EXPECT_EQ(project->rates, (TimeRates{48000, 25, false, false}));
  EXPECT_FALSE(project->tree.cutOff);
  ASSERT_EQ(project->sources.size(), 2U);
  EXPECT_EQ(project->sources[0].location, "URL:file://localhost/Vol/a b.wav");
  EXPECT_EQ(project->sources[0].givenStart, 48000);
  EXPECT_EQ(project->sources[0].length, 480000);
  EXPECT_EQ(project->sources[1].index, 2);
  EXPECT_TRUE(project->sources[1].numberMissing);
  EXPECT_EQ(project->sources[1].location, "URL:file:///C:/my take.wav");
  EXPECT_EQ(project->sources[1].name, "my take");
  EXPECT_EQ(project->sources[1].givenStart, std::nullopt);

  ASSERT_EQ(project->events.size(), 2U);
  const Event& first = project->events[0];
  EXPECT_EQ(first.number, 1);
  EXPECT_EQ(first.source, 1U);
  EXPECT_TRUE(first.indexIsName);
  EXPECT_EQ(first.status, 'D');
  EXPECT_EQ(first.end - first.position, 12 * 1920);
  EXPECT_EQ(first.name, "two words");
  EXPECT_FALSE(first.fadeOut);
  EXPECT_TRUE(first.fadeOutPlace);
  const Event& second = project->events[1];
  EXPECT_EQ(second.source, 0U);
  EXPECT_EQ(second.sourceChannels, (ChannelRun{1, 2}));
  EXPECT_EQ(second.tracks, (ChannelRun{3, 4}));
  EXPECT_EQ(project->FileOffset(second), 48000);
  ASSERT_TRUE(second.fadeIn);
  EXPECT_EQ(second.fadeIn->length, 5 * 1920);
  EXPECT_EQ(second.fadeIn->shape, "CURVE");
  EXPECT_EQ(second.fadeIn->levelsDb[0], -9.5);
  EXPECT_EQ(second.fadeIn->levelsDb[2], std::nullopt);
  ASSERT_TRUE(second.fadeIn->rendered);
  EXPECT_EQ(second.fadeIn->rendered->source, "I 7");
  EXPECT_EQ(second.fadeIn->rendered->in, 48000);
  EXPECT_EQ(second.GainOf(3), 5.0);
  EXPECT_EQ(second.GainOf(4), -6.02);
  ASSERT_EQ(project->tree.strays.size(), 1U);
  EXPECT_EQ(project->tree.strays[0].text, "/* note */");
  EXPECT_EQ(project->tree.strays[0].valuesBefore, 8U);
}

}  // namespace
}  // namespace velmora::field
