// What the audio files are: formats, headers and sample rates.

#include <cmath>
#include <string>

#include "Check/Judges.h"
#include "Session/SessionPreset.h"

namespace velmora::check {
namespace {

void JudgeReaders(const Case& c, Findings& findings, const SourceMedia& media, Severity severity,
                  const Place& place) {
  const std::string path = c.ShowPath(media.located.path);
  const std::string format = media.facts ? media.facts->format : "";
  switch (media.obstacle) {
    case media::Obstacle::None:
      return;
    case media::Obstacle::Kind:
      findings.Add(Code::MediaKind, severity, place,
                   {path + (format.empty() ? "" : ": " + format),
                    "The system does not read this format: the cuts would be silent or noise.",
                    "Convert the file to plain PCM of 16 or 24 bits; velmora prepare does it."});
      return;
    case media::Obstacle::Chunks:
      findings.Add(Code::MediaChunks, severity, place,
                   {path + (format.empty() ? "" : ": " + format),
                    "The file's header leads the system astray: it reads other samples or another "
                    "length than there is.",
                    "Write the file anew in an audio editor; velmora prepare does it."});
      return;
    case media::Obstacle::Broken:
      findings.Add(Code::MediaBroken, severity, place,
                   {path,
                    "The cuts have no audio: " +
                        (media.trouble.empty() ? "the file cannot be read" : media.trouble) + ".",
                    "Make the file readable, or get it from its source again."});
      return;
  }
}

void JudgeRate(const Case& c, Findings& findings, const SourceMedia& media, Severity severity,
               const Place& place) {
  if (!media.facts) return;
  const double project = c.project.rates.sampleRate;
  if (std::llround(project) == media.facts->sampleRate) return;
  findings.Add(
      Code::MediaRate, severity, place,
      {c.ShowPath(media.located.path) + ": " + host::SampleRateName(media.facts->sampleRate),
       "The project is at " + host::SampleRateName(project) +
           ", and the system counts samples: the cuts play the wrong part at the wrong "
           "speed.",
       "Convert the file to the project's rate; velmora prepare --resample does it."});
}

}  // namespace

void JudgeMediaFormats(const Case& c, Findings& findings) {
  for (std::size_t i = 0; i < c.project.sources.size(); ++i) {
    const SourceMedia& media = c.media[i];
    if (media.located.result != media::SearchResult::Found) continue;
    const field::Source& source = c.project.sources[i];
    const Place place = {.offset = c.ValueOffset(source.fPlace.value_or(source.place), 0),
                         .source = i};
    JudgeReaders(c, findings, media, c.OfSource(i, Severity::Lost), place);
    JudgeRate(c, findings, media, c.OfSource(i, Severity::Misplaced), place);
  }
}

}  // namespace velmora::check
