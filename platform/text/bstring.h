#pragma once

#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace forgeyard {

// Text comparison by whole words of memory: paths agree in long beginnings.
inline bool equalUnits(std::u16string_view a, std::u16string_view b) noexcept {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0);
}
int compareUnits(std::u16string_view a, std::u16string_view b) noexcept;

// The wide text of every interface: an immutable UTF-16 value that tells null from empty. Copies share one
// buffer, so a copy costs one counted reference. Comparison and hash look at the text alone: null equals
// empty there, and only isNull() tells them apart. Any thread may copy, compare and destroy.
class BString {
 public:
  BString() noexcept = default;
  BString(std::u16string_view text) : buffer_(allocate(text)) {}         // NOLINT: text converts by design
  BString(const char16_t* text) : BString(std::u16string_view(text)) {}  // NOLINT
  BString(const std::u16string& text) : BString(std::u16string_view(text)) {}  // NOLINT
  BString(const BString& other) noexcept : buffer_(other.buffer_) { retain(); }
  BString(BString&& other) noexcept : buffer_(std::exchange(other.buffer_, nullptr)) {}
  BString& operator=(const BString& other) noexcept {
    BString copy(other);
    swap(copy);
    return *this;
  }
  BString& operator=(BString&& other) noexcept {
    BString taken(std::move(other));
    swap(taken);
    return *this;
  }
  ~BString() { release(); }

  // From UTF-8; bytes that are no UTF-8 survive the way there and back (see narrow.h).
  static BString fromNarrow(std::string_view narrow);
  std::string narrow() const;

  bool isNull() const noexcept { return buffer_ == nullptr; }
  bool empty() const noexcept { return size() == 0; }
  std::size_t size() const noexcept { return buffer_ ? buffer_->length : 0; }
  std::u16string_view view() const noexcept {
    return buffer_ ? std::u16string_view(text(buffer_), buffer_->length) : std::u16string_view();
  }
  operator std::u16string_view() const noexcept { return view(); }  // NOLINT: reads as text

  // Equal for copies of one value; a quick first test for equality and a key for caches that hold a copy.
  const void* identity() const noexcept { return buffer_; }
  // Computed once for each buffer.
  std::size_t hash() const noexcept;

  void swap(BString& other) noexcept { std::swap(buffer_, other.buffer_); }

  friend bool operator==(const BString& a, const BString& b) noexcept {
    return a.buffer_ == b.buffer_ || equalUnits(a.view(), b.view());
  }
  friend std::strong_ordering operator<=>(const BString& a, const BString& b) noexcept {
    return compareUnits(a.view(), b.view()) <=> 0;
  }
  friend BString operator+(const BString& a, const BString& b) { return concat(a.view(), b.view()); }
  static BString concat(std::u16string_view a, std::u16string_view b, std::u16string_view c = {});

 private:
  struct Buffer {
    std::atomic<std::uint32_t> references;
    std::uint32_t length;           // in UTF-16 code units
    std::atomic<std::size_t> hash;  // 0 until asked for
  };
  static char16_t* text(Buffer* buffer) noexcept { return reinterpret_cast<char16_t*>(buffer + 1); }
  static Buffer* allocate(std::u16string_view text);
  static Buffer* allocate(std::size_t length);
  void retain() const noexcept {
    if (buffer_) buffer_->references.fetch_add(1, std::memory_order_relaxed);
  }
  void release() noexcept;

  Buffer* buffer_ = nullptr;
};

}  // namespace forgeyard

template <>
struct std::hash<forgeyard::BString> {
  std::size_t operator()(const forgeyard::BString& text) const noexcept { return text.hash(); }
};
