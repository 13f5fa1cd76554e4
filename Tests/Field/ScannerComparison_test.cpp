// What the system sees of a clean project, the field reader sees too, with the same text.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "ADL/AES31Project.h"
#include "Field/FieldProject.h"
#include "Field/FieldTree.h"
#include "Support/TemporaryFolder.h"
#include "Timecode/AdlTime.h"

namespace velmora::field {
namespace {

using test::TemporaryFolder;

std::string Shown(const std::string& name, const AES31Entries& entries) {
  std::string text = name + "\n";
  for (const AES31Entry& entry : entries) {
    text += std::string(" (") + entry.label + ")";
    for (const char* value : entry.values) text += std::string(" [") + value + "]";
    text += "\n";
  }
  return text;
}

std::string Shown(const AES31Project& project) {
  std::string text;
  for (const AES31Section& section : project.sections) text += Shown(section.name, section.entries);
  for (const auto& list : project.refLists) {
    for (const AES31Section& section : list)
      text += Shown(std::string("ref ") + section.name, section.entries);
  }
  return text;
}

std::string Shown(const Tree& tree) {
  std::string text;
  for (const bool inReferenceList : {false, true}) {
    for (const Section& section : tree.sections) {
      if (section.inReferenceList != inReferenceList) continue;
      text += (inReferenceList ? "ref " : "") + std::string(section.name) + "\n";
      for (const Entry& entry : tree.EntriesOf(section)) {
        text += " (" + std::string(entry.label) + ")";
        for (const Value& value : tree.ValuesOf(entry)) {
          text += " [" + std::string(tree.RawText(value)) + "]";
        }
        text += "\n";
      }
    }
  }
  return text;
}

/// Makes clean projects: everything that the system reads, and nothing that it reads otherwise.
class CleanProjects {
 public:
  explicit CleanProjects(std::uint32_t seed) : random_(seed) {}

  std::string Next() {
    text_ = "<ADL>" + Break();
    if (Chance(2)) text_ += "/* made by (hand) <here> */" + Break();
    HeaderSection();
    if (Chance(3)) ReferenceList();
    SourceIndex();
    EventList();
    return text_ + "</ADL>" + Break();
  }
  std::size_t EventCount() const { return events_; }

 private:
  unsigned Below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
  bool Chance(unsigned of) { return Below(of) == 0; }
  std::string Pick(const std::vector<std::string>& texts) {
    return texts[Below(static_cast<unsigned>(texts.size()))];
  }
  std::string Break() { return Pick({"\n", "\r\n", "\n\t", " \n  "}); }
  std::string Blank() { return Pick({" ", " ", " ", "  ", "\t", "\n  ", "\r\n"}); }

  std::string Digits(unsigned below) {
    const unsigned number = Below(below);
    return std::string(number < 10 ? "0" : "") + std::to_string(number);
  }
  std::string Time(const std::string& separators) {
    return Digits(24) + frameMark_ + Digits(60) + Pick({":", ".", "|"}) + Digits(60) +
           separators[Below(static_cast<unsigned>(separators.size()))] + Digits(24) + rateMark_ +
           "00" + Digits(100);
  }
  std::string Quoted() {
    return Pick({"\"one\"", "\"two words\"", "\"\"", "\"a (b) <c> /* d */\"",
                 "\"\x83\x5C\x82\xA0\"", "\"a\x1B\"b\"", "\"</EVENT_LIST>\"", "\"line\nbreak\""});
  }
  std::string Bare() {
    return Pick({"1", "_", "word", "a(b)", "x/y.wav", "S48000", "01.00", "a\"b"});
  }

  void HeaderSection() {
    const std::string name =
        Pick({"VERSION", "PROJECT", "SYSTEM", "SEQUENCE", "OTHER", "TRACK_LIST"});
    text_ += "<" + name + ">" + Break();
    if (Chance(3)) text_ += "/* note */" + Break();
    for (unsigned lines = Below(5); lines > 0; --lines) {
      const std::string label = Pick({"PROJ_TITLE", "SEQ_SAMPLE_RATE", "X", "Track", "own_label"});
      if (Chance(6)) {
        text_ += "(" + label + ")" + Pick({"12", "13"}) + " (a) <b> ab \"" + Break();
        if (Chance(2)) text_ += "/* after a counted one */" + Break();
        continue;
      }
      text_ += "(" + label + ")";
      for (unsigned values = Below(4); values > 0; --values) {
        text_ += Blank() + (Chance(2) ? Quoted() : Bare());
      }
      text_ += Break();
    }
    text_ += "</" + name + ">" + Break();
  }

  void ReferenceList() {
    text_ += "<REF_LIST>" + Break();
    for (unsigned blocks = Below(3); blocks > 0; --blocks) {
      text_ += "<REF>" + Break();
      HeaderSection();
      text_ += "</REF>" + Break();
    }
    text_ += "</REF_LIST>" + Break();
  }

  void SourceIndex() {
    text_ += "<SOURCE_INDEX>" + Break();
    for (unsigned i = 1; i <= 3; ++i) {
      text_ += "(Index)" + Blank() + std::to_string(i) + Blank() + "(F)" + Blank() +
               "\"URL:file://h/a " + std::to_string(i) + ".wav\" " + Pick({"_", "USID"}) + Blank() +
               Time(":.;") + Blank() + Time(":.;") +
               Pick({"", " \"name\"", " \"name\" N", " _ _"}) + Break();
    }
    text_ += "</SOURCE_INDEX>" + Break();
  }

  void EventList() {
    text_ += "<EVENT_LIST>" + Break();
    events_ = 1 + Below(6);
    for (unsigned i = 1; i <= events_; ++i) {
      text_ += "(Entry)" + Blank() + std::to_string(i * 3) + Blank() + "(Cut) I" + Blank() +
               std::to_string(1 + Below(3)) + Blank() + "1 " + std::to_string(1 + Below(8)) +
               Blank() + Time(":.;") + Blank() + Time(":.;") + " " + Time(":.;") + Blank() +
               Pick({"_", "R", "X"}) + Break();
      if (Chance(2)) text_ += "(Infade) " + Time(";,") + " LIN _ _ _" + Break();
      if (Chance(2)) text_ += "(Outfade) " + Time(";,") + " CURVE -9 -4.5 -1" + Break();
      if (Chance(3)) text_ += "(Gain) _" + Blank() + "-3.5" + Break();
      if (Chance(3)) text_ += "(Rem) NAME " + Quoted() + Break();
    }
    text_ += "</EVENT_LIST>" + Break();
  }

  std::mt19937 random_;
  std::string text_;
  std::string frameMark_ = ".";
  std::string rateMark_ = "/";
  unsigned events_ = 0;
};

void ExpectTheSameEvents(AES31Project& system, const Project& project) {
  ASSERT_EQ(static_cast<std::size_t>(system.GetEventCount()), project.events.size());
  for (std::int32_t i = 0; i < system.GetEventCount(); ++i) {
    const AES31Event& theirs = *system.GetEvent(i);
    const Event& ours = project.events[static_cast<std::size_t>(i)];
    ASSERT_EQ(ours.number, theirs.entryNumber);
    ASSERT_EQ(ours.kind, EventKind::Cut);
    ASSERT_TRUE(ours.complete);
    ASSERT_EQ(ours.sourceIn, AdlToSamples(theirs.cut.sourceIn));
    ASSERT_EQ(ours.position, AdlToSamples(theirs.cut.destIn));
    ASSERT_EQ(ours.end, AdlToSamples(theirs.cut.destOut));
    ASSERT_EQ(ours.sourceIndex, theirs.cut.sourceIndex);
    ASSERT_EQ(ours.sourceChannels.first, theirs.cut.sourceChannel);
    ASSERT_EQ(ours.tracks.first, theirs.cut.destChannel);
    const std::int64_t in = theirs.infade.present ? AdlToSamples(theirs.infade.length) : 0;
    const std::int64_t out = theirs.outfade.present ? AdlToSamples(theirs.outfade.length) : 0;
    ASSERT_EQ(ours.fadeIn ? ours.fadeIn->length : 0, in);
    ASSERT_EQ(ours.fadeOut ? ours.fadeOut->length : 0, out);
    const std::optional<double> gain = ours.GainOf(ours.tracks.first);
    ASSERT_EQ(gain.has_value(), theirs.gain.present);
    if (gain) {
      ASSERT_EQ(*gain, theirs.gain.gainDb);
    }
  }
}

TEST(ScannerComparison, cleanProjectsReadAsTheSystemReadsThem) {
  const TemporaryFolder folder;
  for (std::uint32_t seed = 1; seed <= 600; ++seed) {
    CleanProjects projects(seed);
    const std::string adl = projects.Next();
    const std::string path = folder.Write("p.adl", adl);
    testing::internal::CaptureStderr();  // labels that the system does not know
    bool ok = false;
    AES31Project system(path.c_str(), nullptr, &ok);
    testing::internal::GetCapturedStderr();
    ASSERT_TRUE(ok) << adl;
    ASSERT_EQ(static_cast<std::size_t>(system.GetEventCount()), projects.EventCount()) << adl;
    const auto project = ReadProject(adl, path, {});
    ASSERT_EQ(Shown(project->tree), Shown(system)) << "seed " << seed << "\n" << adl;
    ASSERT_TRUE(project->tree.strays.empty())
        << "seed " << seed << ": " << project->tree.strays[0].text << "\n"
        << adl;
    ASSERT_FALSE(project->tree.cutOff) << "seed " << seed << "\n" << adl;
    ASSERT_NO_FATAL_FAILURE(ExpectTheSameEvents(system, *project)) << "seed " << seed << "\n"
                                                                   << adl;
  }
}

}  // namespace
}  // namespace velmora::field
