#include "Base/SystemLog.h"

#include <mutex>
#include <utility>

#include "Base/StandardError.h"

namespace velmora {
namespace {

struct Receiver {
  std::mutex mutex;
  std::function<void(const std::string&)> function;
};

Receiver& TheReceiver() {
  static Receiver& receiver = *new Receiver;  // outlives workers that log while the program ends
  return receiver;
}

}  // namespace

void SystemLog(const std::string& line) {
  Receiver& receiver = TheReceiver();
  std::function<void(const std::string&)> function;
  {
    const std::lock_guard lock(receiver.mutex);
    function = receiver.function;
  }
  if (function) {
    function(line);
  } else {
    WriteStandardError(line);
  }
}

void SetSystemLog(std::function<void(const std::string&)> function) {
  Receiver& receiver = TheReceiver();
  const std::lock_guard lock(receiver.mutex);
  receiver.function = std::move(function);
}

}  // namespace velmora
