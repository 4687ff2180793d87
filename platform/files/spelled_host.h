#pragma once

#include <array>
#include <string>

#include "platform/text/bstring.h"

namespace forgeyard {

// The host path of a model path letter for letter, without a look at the disk. The common path (from the
// root, no drive, ASCII) is converted in place, without memory from the heap. False if the path can name no
// file.
class SpelledHost {
 public:
  explicit SpelledHost(const BString& path);
  SpelledHost(const SpelledHost&) = delete;
  SpelledHost& operator=(const SpelledHost&) = delete;

  explicit operator bool() const noexcept { return text_ != nullptr; }
  const char* c_str() const noexcept { return text_; }

 private:
  bool convertPlain(std::u16string_view path) noexcept;

  std::array<char, 512> buffer_;
  std::string other_;
  const char* text_ = nullptr;
};

}  // namespace forgeyard
