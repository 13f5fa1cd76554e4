#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Check/CheckProject.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::check {

/// Two seconds of mono audio at 48 kHz.
inline constexpr std::size_t kFrames = 96000;

inline std::string Wave(const test::WaveFormat& format = {.bits = 24},
                        std::size_t frames = kFrames) {
  const std::size_t samples = frames * format.channels;
  return test::PlainWave(format, std::vector<std::int32_t>(samples, 4660));
}

/// A project of which a check has nothing to say: two sources, two cuts, fades and a gain. Rows of
/// tables replace a piece of it. Line numbers are told where rows use them.
inline constexpr const char* kClean =
    "<ADL>\n"                                                                                 // 1
    "<VERSION>\n"                                                                             // 2
    "(ADL_ID) \"1234\"\n"                                                                     // 3
    "</VERSION>\n"                                                                            // 4
    "<SYSTEM>\n"                                                                              // 5
    "(SYS_SRC_OFFSET) 00.00.00:00/0000\n"                                                     // 6
    "</SYSTEM>\n"                                                                             // 7
    "<SEQUENCE>\n"                                                                            // 8
    "(SEQ_SAMPLE_RATE) S48000\n"                                                              // 9
    "(SEQ_FRAME_RATE) 25\n"                                                                   // 10
    "</SEQUENCE>\n"                                                                           // 11
    "<SOURCE_INDEX>\n"                                                                        // 12
    "(Index) 1\n"                                                                             // 13
    "(F) \"URL:file://localhost/a/one.wav\" _ 00.00.10:00/0000 00.00.02:00/0000 \"one\" N\n"  // 14
    "(Index) 2\n"                                                                             // 15
    "(F) \"URL:file://localhost/a/two.wav\" _ 00.00.00:00/0000 00.00.02:00/0000 \"two\" N\n"  // 16
    "</SOURCE_INDEX>\n"                                                                       // 17
    "<EVENT_LIST>\n"                                                                          // 18
    "(Entry) 1\n"                                                                             // 19
    "(Cut) I 1 1 1 00.00.10:10/0000 01.00.00:00/0000 01.00.01:00/0000 R\n"                    // 20
    "(Infade) 00.00.00;05/0000 LIN _ _ _\n"                                                   // 21
    "(Outfade) 00.00.00;10/0000 LIN _ _ _\n"                                                  // 22
    "(Gain) _ -3.00\n"                                                                        // 23
    "(Entry) 2\n"                                                                             // 24
    "(Cut) I 2 1 2 00.00.00:00/0000 01.00.01:00/0000 01.00.02:00/0000 R\n"                    // 25
    "</EVENT_LIST>\n"                                                                         // 26
    "</ADL>\n";                                                                               // 27

/// A project in a folder of its own, with the files beside it.
class CheckTest : public testing::Test {
 protected:
  CheckTest() {
    Write("one.wav", Wave());
    Write("two.wav", Wave());
  }
  void Write(const std::string& name, std::string_view bytes) { folder_.Write(name, bytes); }
  void Remove(const std::string& name) { std::filesystem::remove(folder_.Path(name)); }

  CheckedProject Check(std::string_view text) {
    const std::string path = folder_.Write("p.adl", text);
    return CheckProject(path, options_, listings_);
  }

  test::TemporaryFolder folder_;
  CheckOptions options_;

 private:
  media::FolderListings listings_;
};

/// kClean with one piece replaced. The piece must stand in it.
inline std::string With(std::string_view from, std::string_view to) {
  std::string text = kClean;
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

/// "fade-form fails 21:10 entry 1", one line for each finding.
inline std::string Told(const std::vector<Finding>& findings) {
  std::string text;
  for (const Finding& finding : findings) {
    text += std::string(RowOf(finding.code).name) + " " + NameOf(finding.severity) + " " +
            std::to_string(finding.line) + ":" + std::to_string(finding.column);
    if (finding.entry) text += " entry " + std::to_string(*finding.entry);
    if (finding.source) text += " source " + std::to_string(*finding.source);
    text += "\n";
  }
  return text;
}

}  // namespace velmora::check
