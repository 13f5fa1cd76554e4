#include <cstdio>

#include "ADL/AES31Project.h"
#include "ADL/ShiftJis.h"
#include "BWF/AES31BWF.h"
#include "Timecode/AdlTime.h"

int main(int, char** argv) {
  bool ok = false;
  velmora::AES31Project project(argv[1], nullptr, &ok);
  std::printf("loaded %d, events %d\n", ok, project.GetEventCount());
  std::printf("source %s\n", velmora::AES31BWF(argv[2]).IsValid() ? "valid" : "not valid");
  std::printf("frame at %lld\n", static_cast<long long>(velmora::AdlToSamples("00|00:00:01/0000")));
  std::printf("name %s\n", velmora::ShiftJisToUtf8("\x83\x89\x83\x57\x83\x49").c_str());
}
