#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace velmora::host {

/// Says of a file or folder that somebody is making it, for as long as this lives and the process
/// does: a lock (flock) that the system takes away with the process, however that ends.
///
/// So what a killed process has left can be told from what another one is busy with. Where a file
/// system knows no locks nothing is said, and nothing is ever tidied away.
class InTheMaking {
 public:
  InTheMaking() = default;
  ~InTheMaking() { End(); }
  InTheMaking(const InTheMaking&) = delete;
  InTheMaking& operator=(const InTheMaking&) = delete;

  /// Begins with what has just been made. False if somebody has taken it for a left-over in that
  /// moment, and it is gone or about to go: then another one has to be made.
  [[nodiscard]] bool Begin(const std::string& path);
  void End();

  /// Removes all that this process has in the making: for one that ends without leaving its scopes.
  /// Takes no memory.
  static void RemoveAll() noexcept;

 private:
  [[nodiscard]] bool Hold(const std::string& path);
  void Enlist(const std::string& path);
  void Delist();

  int descriptor_ = -1;
  std::string path_;                ///< empty when nothing is in the making
  InTheMaking* next_ = nullptr;     ///< in the list of all
  InTheMaking** holder_ = nullptr;  ///< what points to this one there
};

/// Removes from a folder what killed processes of this user have left there in the making: files
/// and folders whose names `isOurs` knows, and which nobody holds in the making. Links are not
/// followed. What cannot be removed stays.
void TidyLeftOvers(const std::string& folder,
                   const std::function<bool(std::string_view name)>& isOurs);

}  // namespace velmora::host
