#pragma once

#include <cstdint>

namespace velmora::host {

/// Statuses of the Mac OS managers that a receiver of regions answers with, under their own names.
/// The sender takes their low 16 bits, which is what they fit in.
enum MacStatus : std::int32_t {
  noErr = 0,
  ioErr = -36,                   ///< the file system refuses for a reason of its own
  bdNamErr = -37,                ///< a path or a name that is too long
  fnfErr = -43,                  ///< no such file
  paramErr = -50,                ///< a value outside what it may be, a damaged alias among them
  permErr = -54,                 ///< a folder on the way may not be entered
  memFullErr = -108,             ///< no memory
  procNotFound = -600,           ///< addressed to another application
  notAFileErr = -1302,           ///< the alias names a folder or something else without audio
  errAECoercionFail = -1700,     ///< data of the wrong size for its type
  errAEDescNotFound = -1701,     ///< a keyword is not there, or not at its place
  errAEWrongDataType = -1703,    ///< a keyword with another type than its own
  errAEEventNotHandled = -1708,  ///< another event than the one that places a region
  errAEUnknownSendMode = -1710,  ///< another send mode than: wait for the reply, may interact
  errAEParamMissed = -1715,      ///< a keyword that the receiver knows nothing of
};

}  // namespace velmora::host
