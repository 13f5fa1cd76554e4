#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora::media {

/// Tells files with the same contents, and remembers what it has read: a folder of copies is asked
/// about again for each project that uses it. Callable from many threads.
class ContentComparison {
 public:
  /// True if both are the same file, or hold the same bytes. A file that cannot be read equals
  /// nothing but itself. Reads in blocks, and only as far as the files agree.
  [[nodiscard]] bool Same(const std::string& a, const std::string& b);

  /// Of files with the same contents the first one each, as places in `paths`; at most `most`.
  [[nodiscard]] std::vector<std::size_t> Different(const std::vector<std::string>& paths,
                                                   std::size_t most);

 private:
  struct Identity {
    std::uint64_t device = 0;
    std::uint64_t node = 0;
    std::int64_t size = 0;
    std::int64_t changed = 0;  ///< nanoseconds
    auto operator<=>(const Identity&) const = default;
  };
  using Pair = std::pair<Identity, Identity>;

  [[nodiscard]] static std::optional<Identity> IdentityOf(const std::string& path);
  [[nodiscard]] bool Same(const std::string& a, const std::optional<Identity>& identityOfA,
                          const std::string& b, const std::optional<Identity>& identityOfB);

  std::mutex mutex_;
  std::map<Pair, bool> known_;  ///< of large files
};

}  // namespace velmora::media
