#include "AppleEventDouble.h"

#include <CoreServices/CoreServices.h>

#include <cstring>
#include <memory>

namespace velmora::test {

AppleEventDouble& TheAppleEventDouble() {
  static AppleEventDouble theDouble;
  return theDouble;
}

std::string Hex(const void* data, std::size_t size) {
  std::string text;
  for (std::size_t i = 0; i < size; ++i) {
    const unsigned byte = static_cast<const unsigned char*>(data)[i];
    text += "0123456789ABCDEF"[byte >> 4];
    text += "0123456789ABCDEF"[byte & 15];
  }
  return text;
}

namespace {

std::string Code(std::uint32_t code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(code >> shift & 0xFF);
  return text;
}

void Record(const std::string& call) {
  TheAppleEventDouble().calls.push_back(call);
}

void Mistake(const std::string& text) {
  TheAppleEventDouble().mistakes.push_back(text);
}

std::int32_t Answer(const std::string& step) {
  const auto& answers = TheAppleEventDouble().answers;
  const auto found = answers.find(step);
  return found == answers.end() ? 0 : found->second;
}

/// The block that a handle leads to. Its first member is the master pointer, so that the address of
/// the block is the handle. The bytes are there only while the handle is locked: they move in
/// between, as the system may move them.
struct Block {
  char* master = nullptr;
  std::string bytes;
  std::unique_ptr<char[]> locked;
};

Block* BlockOf(Handle handle) {
  return reinterpret_cast<Block*>(handle);
}

/// What a descriptor holds.
struct Content {
  std::string name;
};

std::string NameOf(const AEDesc* desc) {
  if (desc->dataHandle == nullptr) return "empty";
  return static_cast<const Content*>(desc->dataHandle)->name;
}

void Make(AEDesc* result, DescType type, const char* name) {
  if (result->dataHandle != nullptr) Mistake(std::string("made twice: ") + name);
  *result = {type, new Content{name}};
  ++TheAppleEventDouble().descriptors;
}

}  // namespace

}  // namespace velmora::test

using namespace velmora::test;

OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory) {
  Record(std::string("FSPathMakeRef ") + reinterpret_cast<const char*>(path) +
         (isDirectory == nullptr ? "" : " and folder"));
  const OSStatus status = Answer("FSPathMakeRef");
  if (status == noErr) ref->hidden[0] = 1;
  return status;
}

OSErr FSNewAlias(const FSRef* fromFile, const FSRef* target, AliasHandle* alias) {
  Record(std::string("FSNewAlias ") + (fromFile == nullptr ? "absolute" : "relative") + " of " +
         (target->hidden[0] == 1 ? "file" : "nothing"));
  const AppleEventDouble& theDouble = TheAppleEventDouble();
  if (theDouble.aliasHandleIsNull) {
    *alias = nullptr;
  } else {
    auto* const block = new Block;
    block->bytes = theDouble.aliasBytes;
    *alias = reinterpret_cast<AliasHandle>(block);
    ++TheAppleEventDouble().handles;
  }
  return static_cast<OSErr>(Answer("FSNewAlias"));
}

void HLock(Handle handle) {
  Record("HLock");
  Block& block = *BlockOf(handle);
  block.locked = std::make_unique<char[]>(block.bytes.size());
  std::memcpy(block.locked.get(), block.bytes.data(), block.bytes.size());
  block.master = block.locked.get();
}

void HUnlock(Handle handle) {
  Record("HUnlock");
  if (BlockOf(handle)->master == nullptr) Mistake("unlocked without a lock");
  BlockOf(handle)->locked.reset();
  BlockOf(handle)->master = nullptr;
}

Size GetHandleSize(Handle handle) {
  Record("GetHandleSize");
  return static_cast<Size>(BlockOf(handle)->bytes.size());
}

void DisposeHandle(Handle handle) {
  Record("DisposeHandle");
  if (BlockOf(handle)->master != nullptr) Mistake("disposed of a locked handle");
  delete BlockOf(handle);
  --TheAppleEventDouble().handles;
}

OSErr AECreateDesc(DescType type, const void* data, Size size, AEDesc* result) {
  Record("AECreateDesc " + Code(type) + " " + Hex(data, static_cast<std::size_t>(size)));
  const OSErr status = static_cast<OSErr>(Answer("AECreateDesc " + Code(type)));
  if (status == noErr) Make(result, type, type == typeNull ? "reply" : "target");
  return status;
}

OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID eventId, const AEAddressDesc* target,
                         AEReturnID returnId, AETransactionID transactionId, AppleEvent* result) {
  Record("AECreateAppleEvent " + Code(eventClass) + " " + Code(eventId) + " to " + NameOf(target) +
         " return " + std::to_string(returnId) + " transaction " + std::to_string(transactionId));
  const OSErr status = static_cast<OSErr>(Answer("AECreateAppleEvent"));
  if (status == noErr) Make(result, 0x61657674 /* 'aevt' */, "event");
  return status;
}

OSErr AEPutParamPtr(AppleEvent* event, AEKeyword keyword, DescType type, const void* data,
                    Size size) {
  Record("AEPutParamPtr " + NameOf(event) + " " + Code(keyword) + " " + Code(type) + " " +
         Hex(data, static_cast<std::size_t>(size)));
  return static_cast<OSErr>(Answer("AEPutParamPtr " + Code(keyword)));
}

OSErr AECreateList(const void* factoring, Size factoredSize, Boolean isRecord, AEDescList* result) {
  Record(std::string("AECreateList ") + (factoring == nullptr ? "unfactored " : "factored ") +
         std::to_string(factoredSize) + (isRecord != 0 ? " record" : " list"));
  const OSErr status = static_cast<OSErr>(Answer("AECreateList"));
  if (status == noErr) Make(result, 0x7265636F /* 'reco' */, "region");
  return status;
}

OSErr AEPutParamDesc(AppleEvent* event, AEKeyword keyword, const AEDesc* desc) {
  Record("AEPutParamDesc " + NameOf(event) + " " + Code(keyword) + " " + NameOf(desc));
  return static_cast<OSErr>(Answer("AEPutParamDesc"));
}

OSStatus AESendMessage(const AppleEvent* event, AppleEvent* reply, AESendMode mode,
                       long timeoutTicks) {
  Record("AESendMessage " + NameOf(event) + (reply == nullptr ? " without reply" : " with reply") +
         " mode " + std::to_string(mode) + " timeout " + std::to_string(timeoutTicks));
  return Answer("AESendMessage");
}

OSErr AEDisposeDesc(AEDesc* desc) {
  Record("AEDisposeDesc " + NameOf(desc));
  if (desc->dataHandle != nullptr) {
    delete static_cast<Content*>(desc->dataHandle);
    --TheAppleEventDouble().descriptors;
  } else if (desc->descriptorType != typeNull) {
    Mistake("disposed of a descriptor that was never cleared");
  }
  *desc = {typeNull, nullptr};
  return noErr;
}
