#pragma once

#include <cstdint>

// Stands in for the system's header of this name: the types, constants and functions that the Apple
// Event transport uses, and no others. AppleEventDouble.h tells what the functions do here.

using Boolean = unsigned char;
using UInt8 = std::uint8_t;
using SInt16 = std::int16_t;
using SInt32 = std::int32_t;
using UInt32 = std::uint32_t;
using Size = long;
using OSErr = SInt16;
using OSStatus = SInt32;
using Handle = char**;
using DescType = UInt32;
using AEKeyword = UInt32;
using AEEventClass = UInt32;
using AEEventID = UInt32;
using AEReturnID = SInt16;
using AETransactionID = SInt32;
using AESendMode = SInt32;

enum : OSErr { noErr = 0, memFullErr = -108 };
enum : DescType { typeNull = 0x6E756C6C, typeApplSignature = 0x7369676E };

struct FSRef {
  UInt8 hidden[80];
};
struct AliasRecord;
using AliasHandle = AliasRecord**;

struct AEDesc {
  DescType descriptorType;
  void* dataHandle;
};
using AEAddressDesc = AEDesc;
using AEDescList = AEDesc;
using AERecord = AEDesc;
using AppleEvent = AEDesc;

extern "C" {
OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory);
OSErr FSNewAlias(const FSRef* fromFile, const FSRef* target, AliasHandle* alias);
void HLock(Handle handle);
void HUnlock(Handle handle);
Size GetHandleSize(Handle handle);
void DisposeHandle(Handle handle);
OSErr AECreateDesc(DescType type, const void* data, Size size, AEDesc* result);
OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID eventId, const AEAddressDesc* target,
                         AEReturnID returnId, AETransactionID transactionId, AppleEvent* result);
OSErr AEPutParamPtr(AppleEvent* event, AEKeyword keyword, DescType type, const void* data,
                    Size size);
OSErr AECreateList(const void* factoring, Size factoredSize, Boolean isRecord, AEDescList* result);
OSErr AEPutParamDesc(AppleEvent* event, AEKeyword keyword, const AEDesc* desc);
OSStatus AESendMessage(const AppleEvent* event, AppleEvent* reply, AESendMode mode,
                       long timeoutTicks);
OSErr AEDisposeDesc(AEDesc* desc);
}
