#include "Program/StandardOutput.h"

#include <cstdio>
#include <iostream>

#include "Program/ExitStatus.h"

namespace velmora::program {

int TellLostOutput() {
  std::fputs("velmora: standard output takes no more\n", stderr);
  return kLeftOut;
}

int StatusOfOutput(int status) {
  if (std::cout.flush()) return status;
  const int lost = TellLostOutput();
  return status == kAllDone ? lost : status;
}

}  // namespace velmora::program
