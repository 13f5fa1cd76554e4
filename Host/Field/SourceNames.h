#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "Field/FieldProject.h"

namespace velmora::field {

/// Finds the source that a cut means by a file name. The tables are made when first asked.
class SourceNames {
 public:
  explicit SourceNames(const std::vector<Source>& sources) : sources_(sources) {}

  /// Position of the source in the list: the first whose file has that name, else whose location it
  /// is, else whose own name it is; then the same without regard to case, then without extension.
  [[nodiscard]] std::optional<std::size_t> Find(const std::string& utf8Name);

 private:
  using Table = std::unordered_map<std::string, std::size_t>;
  void FillTables();
  [[nodiscard]] std::optional<std::size_t> FindText(const std::string& text) const;

  const std::vector<Source>& sources_;
  std::vector<Table> tables_;  ///< one for each rule, in their order
};

}  // namespace velmora::field
