#include "ProjectComparison.h"

#include <strings.h>

#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include "ADL/AES31Project.h"
#include "Description.h"
#include "SlowProject.h"
#include "Support/CapturedStandardError.h"

namespace velmora::test::differential {
namespace {

std::string OddityLine(const LoadDiagnostic& oddity) {
  // What is said of a text that is no ADL at all is worded for people.
  const std::string text = oddity.code == LoadDiagnosticCode::NoAdl ? "" : oddity.text;
  return std::string("oddity ") + NameOf(oddity.code) + " line " + std::to_string(oddity.line) +
         " " + Quoted(text);
}

template <class Failure>
std::string FailureLine(const Failure& failure) {
  if (!failure) return "loads";
  return std::string("fails: ") + NameOf(failure->code) + " line " + std::to_string(failure->line) +
         " section " + Quoted(failure->section) + " label " + Quoted(failure->label);
}

template <class Project>
std::string Described(Description description, const Project& project, const std::string& said) {
  description.AddLine(FailureLine(project.failure));
  description.AddTree(project);
  description.AddConstants(project.constants);
  description.AddSources(project.sourceFiles);
  for (const AES31Event& event : project.events) description.AddEvent(event);
  for (const LoadDiagnostic& oddity : project.diagnostics) description.AddLine(OddityLine(oddity));
  description.AddLine("said " + Quoted(said));
  return description.Lines();
}

Description BlockOf(const SlowTree& tree) {
  return {tree.block.data(), tree.block.size()};
}

std::string Records(const SlowTree& tree, const std::map<std::int32_t, AES31SourceFile>& sources,
                    const std::vector<AES31Event>& events) {
  Description description = BlockOf(tree);
  description.AddSources(sources);
  for (AES31Event event : events) {
    event.sourceStart = event.sourceLength = nullptr;  // these come of linking
    description.AddEvent(event);
  }
  return description.Lines();
}

AES31Section PutTogether(const SlowSection& slow) {
  AES31Section section;
  section.name = slow.name;
  for (const SlowEntry& slowEntry : slow.entries) {
    AES31Entry entry;
    entry.label = slowEntry.label;
    for (const char* const value : slowEntry.values) entry.values.push_back(value);
    section.entries.push_back(entry);
  }
  return section;
}

}  // namespace

ProjectComparison::ProjectComparison()
    : path_(folder_.Path("project.adl")), emptyPath_(folder_.Write("empty.adl", "<ADL> </ADL>")) {}

std::string ProjectComparison::Write(const std::string& text) {
  // A file that is cut to nothing and written anew would wait for the disk, on some file systems.
  std::remove(path_.c_str());
  std::FILE* const file = std::fopen(path_.c_str(), "wb");
  if (file == nullptr) return "the file cannot be made";
  const bool isWritten = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  const bool isClosed = std::fclose(file) == 0;
  return isWritten && isClosed ? "" : "the file cannot be written";
}

std::string ProjectComparison::OfLoad(const std::string& text) {
  if (const std::string trouble = Write(text); !trouble.empty()) return trouble;
  const SlowProject slow(text, folder_.Path());
  bool ok = !slow.IsLoaded();
  CapturedStandardError error;
  const AES31Project fast(path_.c_str(), nullptr, &ok);
  const std::string said = error.Text();
  if (ok != slow.IsLoaded()) return ok ? "loads, and should not" : "does not load, and should";
  if (static_cast<std::size_t>(fast.bufferEnd - fast.buffer) != text.size())
    return "a block of another size";
  const Description block(fast.buffer, text.size());
  const std::string expected = Described(BlockOf(slow), slow, slow.said);
  const std::string difference = FirstDifference(expected, Described(block, fast, said));
  if (!difference.empty()) return difference;
  // Copies of the tree are trees of their own with the same texts.
  std::vector<AES31Section> copied = fast.sections;
  const std::vector<AES31Section> moved = std::move(copied);
  Description original = block;
  original.AddSections("copied", fast.sections);
  Description copy = block;
  copy.AddSections("copied", moved);
  return FirstDifference(original.Lines(), copy.Lines());
}

std::string ProjectComparison::OfUncheckedReaders(const std::string& text) {
  SlowProject slow(text, folder_.Path());
  slow.sourceFiles.clear();
  slow.events.clear();
  slow.said.clear();
  slow.Read(SlowProject::Checks::Off);
  bool ok = false;
  AES31Project fast(emptyPath_.c_str(), nullptr, &ok);
  fast.sections.clear();
  for (const SlowSection& section : slow.sections) fast.sections.push_back(PutTogether(section));
  CapturedStandardError error;
  fast.ReadSections();
  const std::string said = error.Text();
  if (const std::string difference =
          FirstDifference("said " + Quoted(slow.said), "said " + Quoted(said));
      !difference.empty())
    return difference;
  return FirstDifference(Records(slow, slow.sourceFiles, slow.events),
                         Records(slow, fast.sourceFiles, fast.events));
}

std::string ProjectComparison::OfCheckedReaders(const std::string& text) {
  const SlowProject slow(text, folder_.Path());
  bool ok = false;
  AES31Project fast(emptyPath_.c_str(), nullptr, &ok);
  CapturedStandardError error;
  bool isRead = true;
  for (const SlowSection& section : slow.sections) {
    if (!isRead) break;
    if (strcasecmp(section.name, "SOURCE_INDEX") == 0)
      isRead = fast.CheckSourceIndex(PutTogether(section));
    else if (strcasecmp(section.name, "EVENT_LIST") == 0)
      isRead = fast.CheckEventList(PutTogether(section));
  }
  if (isRead != slow.IsLoaded()) return isRead ? "is read, and should not" : "is not read";
  return FirstDifference(Records(slow, slow.sourceFiles, slow.events),
                         Records(slow, fast.sourceFiles, fast.events));
}

}  // namespace velmora::test::differential
