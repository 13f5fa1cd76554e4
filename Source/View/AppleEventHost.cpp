#include "View/AppleEventHost.h"

#include <CoreServices/CoreServices.h>

// The host takes files as alias records alone, and these calls are the only ones that make them.
#if defined(__clang__)
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
#endif

namespace velmora {

namespace {

/// The descriptors of one message. They begin empty, so that disposing of them is safe whichever
/// step was the last.
struct Descriptors {
  Descriptors() = default;
  Descriptors(const Descriptors&) = delete;
  Descriptors& operator=(const Descriptors&) = delete;
  ~Descriptors() {
    AEDisposeDesc(&target);
    AEDisposeDesc(&event);
    AEDisposeDesc(&reply);
    AEDisposeDesc(&region);
  }

  AEAddressDesc target{typeNull, nullptr};
  AppleEvent event{typeNull, nullptr};
  AEDesc reply{typeNull, nullptr};  ///< stands for a reply that nobody asks for; never sent
  AERecord region{typeNull, nullptr};
};

OSErr PutParameter(AERecord& record, const RegionParameter& parameter) {
  return AEPutParamPtr(&record, parameter.key, parameter.type, parameter.data.data(),
                       static_cast<Size>(parameter.data.size()));
}

OSErr PutParameters(AERecord& record, const std::vector<RegionParameter>& parameters) {
  OSErr status = noErr;
  for (auto next = parameters.begin(); status == noErr && next != parameters.end(); ++next) {
    status = PutParameter(record, *next);
  }
  return status;
}

OSErr MakeEvent(const RegionMessage& message, Descriptors& made) {
  const OSErr status =
      AECreateDesc(typeApplSignature, &message.target, sizeof message.target, &made.target);
  if (status != noErr) return status;
  return AECreateAppleEvent(message.eventClass, message.eventId, &made.target, message.returnId,
                            message.transactionId, &made.event);
}

OSErr PutRegion(const RegionMessage& message, Descriptors& made) {
  OSErr status = AECreateList(nullptr, 0, true, &made.region);
  if (status == noErr) status = PutParameters(made.region, message.region);
  if (status == noErr) status = AEPutParamDesc(&made.event, FourCharCode("Rgn "), &made.region);
  return status;
}

/// The send answers in 32 bits, of which the lower half is the status.
OSErr SendEvent(const RegionMessage& message, Descriptors& made) {
  const OSErr status = AECreateDesc(typeNull, nullptr, 0, &made.reply);
  if (status != noErr) return status;
  return static_cast<OSErr>(
      AESendMessage(&made.event, nullptr, message.sendMode, message.timeoutTicks));
}

}  // namespace

// The bytes of the handle are copied and the handle is given back at once. They could be put into
// the event straight from the handle, but a message is a value: it holds its bytes before there is
// any event. The Apple Event Manager sees the same calls in the same order either way.
std::int32_t AppleEventHost::MakeAlias(const char* path, std::vector<std::uint8_t>& alias) {
  alias.clear();
  FSRef file{};
  // The answer is not looked at: if no file is found, the next step fails.
  FSPathMakeRef(reinterpret_cast<const UInt8*>(path), &file, nullptr);
  AliasHandle handle = nullptr;
  const OSErr status = FSNewAlias(nullptr, &file, &handle);
  // Success without a handle is the memory manager's failure: there is nothing to send.
  if (handle == nullptr) return status != noErr ? status : OSErr{memFullErr};

  const auto bytes = reinterpret_cast<Handle>(handle);
  if (status == noErr) {
    HLock(bytes);
    const Size size = GetHandleSize(bytes);
    alias.assign(*bytes, *bytes + size);
    HUnlock(bytes);
  } else {
    const Descriptors none;  // a failure disposes of all descriptors here too, as at later steps
  }
  DisposeHandle(bytes);
  return status;
}

std::int32_t AppleEventHost::Send(const RegionMessage& message) {
  Descriptors made;
  OSErr status = MakeEvent(message, made);
  if (status == noErr) status = PutParameters(made.event, message.parameters);
  if (status == noErr) status = PutRegion(message, made);
  if (status == noErr) status = SendEvent(message, made);
  return status;
}

}  // namespace velmora
