// A file's copy, made by whatever means costs least.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "Base/FileAccess.h"
#include "Base/SystemCopy.h"
#include "Media/Conversion.h"
#include "Media/WaveWriter.h"

namespace velmora::media {
namespace {

constexpr std::int64_t kBlockBytes = 1 << 20;
constexpr std::int64_t kBlockInKernelBytes = 16 << 20;  // between two questions whether to go on

class FileCopy {
 public:
  FileCopy(const std::string& from, const std::string& to, const ConversionProgress& progress)
      : from_(from), progress_(progress), source_(OpenRegularFile(from.c_str())) {
    if (source_ == nullptr) {
      NoteSourceError(errno);
      return;
    }
    struct stat facts {};
    if (fstat(fileno(source_.get()), &facts) != 0) {
      NoteSourceError(errno);
      return;
    }
    size_ = facts.st_size;
    changed_[0] = facts.st_atim;
    changed_[1] = facts.st_mtim;
    target_ = std::make_unique<NewFile>(to);
    if (!target_->IsOpen()) result_.trouble = target_->Trouble();
  }

  ConversionResult Run() {
    if (!result_.trouble.empty()) return result_;
    if (!(Clone() || (CopyInKernel() && CopyByHand()))) return result_;
    futimens(target_->Descriptor(), changed_);  // a hint: failure passes
    if (!target_->Close()) {
      result_.trouble = target_->Trouble();
      return result_;
    }
    target_->Keep();
    result_.done = true;
    return result_;
  }

 private:
  void NoteSourceError(int error) { result_.trouble = from_ + ": " + std::strerror(error); }

  bool GoesOn() {
    result_.cancelled = progress_ && !progress_(done_);
    return !result_.cancelled;
  }

  bool Clone() {
    if (!ShareBlocks(fileno(source_.get()), target_->Descriptor())) return false;
    done_ = size_;
    return GoesOn();
  }

  /// False if it was cancelled. Where the system cannot do it, the rest is copied by hand.
  bool CopyInKernel() {
    while (!result_.cancelled && done_ < size_) {
      const std::int64_t copied =
          CopyInsideSystem(fileno(source_.get()), target_->Descriptor(), done_,
                           std::min(kBlockInKernelBytes, size_ - done_));
      if (copied == 0) break;
      done_ += copied;
      if (!GoesOn()) return false;
    }
    return !result_.cancelled;
  }

  bool CopyByHand() {
    std::vector<std::uint8_t> block(static_cast<std::size_t>(std::min(kBlockBytes, size_ - done_)));
    while (done_ < size_) {
      const auto count = static_cast<std::size_t>(std::min(kBlockBytes, size_ - done_));
      errno = 0;
      const std::size_t got = ReadAt(source_.get(), done_, block.data(), count);
      if (got != count) {
        NoteSourceError(errno != 0 ? errno : EIO);
        return false;
      }
      if (!target_->Write(std::span(block).first(got))) {
        result_.trouble = target_->Trouble();
        return false;
      }
      done_ += static_cast<std::int64_t>(got);
      if (!GoesOn()) return false;
    }
    return true;
  }

  const std::string& from_;
  const ConversionProgress& progress_;
  FileStream source_;
  std::unique_ptr<NewFile> target_;
  std::int64_t size_ = 0;
  std::int64_t done_ = 0;
  timespec changed_[2]{};
  ConversionResult result_;
};

}  // namespace

ConversionResult CopyWhole(const std::string& from, const std::string& to,
                           const ConversionProgress& progress) {
  return FileCopy(from, to, progress).Run();
}

}  // namespace velmora::media
