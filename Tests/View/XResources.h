#pragma once

#include <map>
#include <string>

// What the X server keeps for this program: windows, pixmaps, cursors, pictures, counters. What is
// forgotten there is seen in no memory of this process.
namespace velmora::view {

/// Asked through libXRes where it is installed: neither the build nor the other scenarios need it.
/// Everything on the main thread, once a window stands.
class XResources {
 public:
  XResources();
  [[nodiscard]] bool AreKnown() const { return resources_ != nullptr; }

  /// How many there are of each kind, by the server's names ("PIXMAP"). None where they are not
  /// known.
  [[nodiscard]] std::map<std::string, long> Counts() const;
  /// What the pixmaps take; 0 where it is not known.
  [[nodiscard]] long PixmapKilobytes() const;

 private:
  struct Kind {
    unsigned long name;  // an atom
    unsigned int count;
  };

  int (*resources_)(void* display, unsigned long client, int* kinds, Kind** list) = nullptr;
  int (*pixmaps_)(void* display, unsigned long client, unsigned long* bytes) = nullptr;
  char* (*atomName_)(void* display, unsigned long atom) = nullptr;
  int (*free_)(void* data) = nullptr;
};

}  // namespace velmora::view
