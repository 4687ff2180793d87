#pragma once

namespace forgeyard {

inline unsigned long textLength(const char* text) noexcept {
  unsigned long length = 0;
  while (text[length]) ++length;
  return length;
}

inline bool startsWith(const char* text, const char* beginning) noexcept {
  while (*beginning && *text == *beginning) {
    ++text;
    ++beginning;
  }
  return *beginning == '\0';
}

// Text that grows in a fixed room, always with a null at its end; what doesn't fit is cut off and
// remembered. For paths and messages of code that runs without the C library.
template <unsigned long ROOM>
class TextBuffer {
 public:
  TextBuffer() noexcept { data_[0] = '\0'; }
  TextBuffer(const TextBuffer&) = delete;
  TextBuffer& operator=(const TextBuffer&) = delete;

  TextBuffer& add(const char* text, unsigned long length) noexcept {
    for (unsigned long i = 0; i < length; ++i) add(text[i]);
    return *this;
  }
  TextBuffer& add(const char* text) noexcept { return add(text, textLength(text)); }
  TextBuffer& add(char c) noexcept {
    if (size_ + 1 >= ROOM) {
      cut_ = true;
      return *this;
    }
    data_[size_++] = c;
    data_[size_] = '\0';
    return *this;
  }
  TextBuffer& addNumber(unsigned long number) noexcept {
    if (number >= 10) addNumber(number / 10);
    return add(static_cast<char>('0' + number % 10));
  }
  void clear() noexcept {
    size_ = 0;
    data_[0] = '\0';
    cut_ = false;
  }

  const char* text() const noexcept { return data_; }
  unsigned long size() const noexcept { return size_; }
  bool wasCut() const noexcept { return cut_; }

 private:
  char data_[ROOM];
  unsigned long size_ = 0;
  bool cut_ = false;
};

using PathBuffer = TextBuffer<4096>;

}  // namespace forgeyard
