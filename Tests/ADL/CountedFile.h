#pragma once

#include <vector>

#include "BWF/AES31BWF.h"

namespace velmora::test {

/// A file that tells when it is deleted.
class CountedFile : public AES31BWF {
 public:
  CountedFile(int number, std::vector<int>& deleted)
      : AES31BWF("/absent"), number_(number), deleted_(deleted) {}
  ~CountedFile() override { deleted_.push_back(number_); }
  CountedFile(const CountedFile&) = delete;
  CountedFile& operator=(const CountedFile&) = delete;

 private:
  int number_;
  std::vector<int>& deleted_;  ///< the numbers of the files that are gone, in order
};

}  // namespace velmora::test
