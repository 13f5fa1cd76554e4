#pragma once

#include <sstream>
#include <string>

#include "LoadedProject.h"

namespace velmora::test {

inline void Write(std::ostream& out, const AES31Fade& fade) {
  out << " [" << fade.present << ' ' << Shown(fade.length) << ' ' << Shown(fade.fadeText1) << ' '
      << Shown(fade.fadeText5) << ' ' << Shown(fade.fadeText7) << ' ' << fade.fadeNumber6 << ' '
      << fade.fadeParam2 << ' ' << fade.fadeParam3 << ' ' << fade.fadeParam4 << ']';
}

inline void WriteEdit(std::ostream& out, const AES31Event& event) {
  switch (KindOf(event)) {
    case EditKind::None:
      out << "none";
      break;
    case EditKind::Cut:
      out << "cut " << Shown(event.cut.sourceType) << ' ' << event.cut.sourceIndex << ' '
          << event.cut.sourceChannel << ' ' << event.cut.destChannel << ' '
          << Shown(event.cut.sourceIn) << ' ' << Shown(event.cut.destIn) << ' '
          << Shown(event.cut.destOut) << ' ' << Shown(event.cut.cutTail) << ' '
          << event.cut.cutMark1 << ' ' << event.cut.cutMark2;
      break;
    case EditKind::Silence:
      out << "silence " << event.silence.silenceNumber << ' ' << Shown(event.silence.silenceText1)
          << ' ' << Shown(event.silence.silenceText2) << ' ' << Shown(event.silence.silenceText3);
      break;
    case EditKind::Vid:
      out << "vid " << Shown(event.vid.vidText0) << ' ' << Shown(event.vid.vidText1) << ' '
          << Shown(event.vid.vidText2) << ' ' << Shown(event.vid.vidText3);
      break;
    case EditKind::Alt:
      out << "alt " << Shown(event.alt.altType) << ' ' << event.alt.altIndex << ' '
          << event.alt.altChannel << ' ' << Shown(event.alt.altTime);
      break;
  }
}

inline void Write(std::ostream& out, const AES31Event& event) {
  out << "event " << event.entryNumber << ' ' << Shown(event.label) << ": ";
  WriteEdit(out, event);
  Write(out, event.infade);
  Write(out, event.outfade);
  out << " [" << event.xfade.present << ' ' << event.xfade.xfadeNumber0 << ' '
      << Shown(event.xfade.xfadeText1) << ' ' << Shown(event.xfade.xfadeText2) << ' '
      << Shown(event.xfade.xfadeText3) << ' ' << event.xfade.xfadeNumber4 << ' '
      << Shown(event.xfade.xfadeText5) << "] [" << event.gain.present << ' '
      << event.gain.gainNumber << ' ' << event.gain.gainDb << "] "
      << (event.sourceFile == nullptr ? "~" : event.sourceFile->GetPath()) << ' '
      << Shown(event.sourceStart) << ' ' << Shown(event.sourceLength) << ' ' << event.eventOn << ' '
      << event.trackOn << ' ' << (event.renderedFile != nullptr) << '\n';
}

/// Everything that a load leaves in a project, as text without an address in it.
inline std::string Snapshot(const Loading& loading) {
  const AES31Project& project = *loading.project;
  std::ostringstream out;
  out << "ok " << loading.ok << '\n' << loading.standardError;
  if (project.failure) {
    out << "failure " << project.failure->line << ' ' << project.failure->section << ' '
        << project.failure->label << ' ' << project.failure->reason << '\n';
  }
  out << Shown(project.sections) << '\n' << Shown(project.refLists) << '\n';
  out << ShownTexts(project.comments) << '\n' << ShownTexts(project.constants) << '\n';
  for (const auto& [index, source] : project.sourceFiles) {
    out << "source " << index << ' ' << ShownTexts(source.fValues) << ' '
        << ShownTexts(source.tValues) << ' '
        << (source.file == nullptr ? "~" : source.file->GetPath()) << '\n';
  }
  for (const AES31Event& event : project.events) Write(out, event);
  return out.str();
}

}  // namespace velmora::test
