// The view's model and its tables against lists of texts that are made anew after every change. The
// input is the project; its last byte chooses what is ticked.

#include <cstddef>
#include <cstdint>
#include <string>

#include "Differential/RandomAdl.h"
#include "Differential/TwinModels.h"
#include "Support/Holds.h"
#include "Support/Input.h"
#include "Support/TemporaryFolder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace velmora::test;
  using velmora::fuzz::Hold;
  constexpr int kEdits = 5;
  static const TemporaryFolder folder;
  [[maybe_unused]] static const bool isReady = [] {
    for (const char* const name : {"one.wav", "s/late.wav"}) folder.Write(name, "RIFF");
    return true;
  }();
  const velmora::fuzz::ProjectInput input(bytes, size);
  differential::TwinModels models(folder);
  differential::RandomAdl random(input.choice);
  models.Load(std::string(input.text));
  for (int edits = 0; edits <= kEdits; ++edits) {
    if (edits > 0) models.EditSomething(random);
    const std::string& difference = models.Difference();
    if (difference.empty()) continue;
    Hold(false, "the tables show what they should", difference + "\nafter\n" + models.Notes());
  }
  return 0;
}
