#pragma once

#include <cstdio>
#include <streambuf>

namespace velmora::host {

/// Lets a C++ stream write to a C one, which can be opened in ways that a C++ one cannot. Does not
/// own it.
class FileBuffer : public std::streambuf {
 public:
  explicit FileBuffer(std::FILE* file) : file_(file) {}

 protected:
  int_type overflow(int_type character) override {
    if (traits_type::eq_int_type(character, traits_type::eof()))
      return traits_type::not_eof(character);
    return std::fputc(character, file_);
  }
  std::streamsize xsputn(const char* text, std::streamsize size) override {
    return static_cast<std::streamsize>(
        std::fwrite(text, 1, static_cast<std::size_t>(size), file_));
  }
  int sync() override { return std::fflush(file_) == 0 ? 0 : -1; }

 private:
  std::FILE* file_;
};

}  // namespace velmora::host
