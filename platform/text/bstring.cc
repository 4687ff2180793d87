#include "platform/text/bstring.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

#include "platform/text/narrow.h"

namespace forgeyard {

int compareUnits(std::u16string_view a, std::u16string_view b) noexcept {
  constexpr std::size_t unitsInWord = sizeof(std::uint64_t) / sizeof(char16_t);
  const std::size_t common = std::min(a.size(), b.size());
  std::size_t at = 0;
  for (; at + unitsInWord <= common; at += unitsInWord) {
    std::uint64_t left = 0;
    std::uint64_t right = 0;
    std::memcpy(&left, a.data() + at, sizeof left);
    std::memcpy(&right, b.data() + at, sizeof right);
    if (left != right) break;
  }
  for (; at < common; ++at) {
    if (a[at] != b[at]) return a[at] < b[at] ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

BString::Buffer* BString::allocate(std::size_t length) {
  if (length > UINT32_MAX / sizeof(char16_t)) throw std::length_error("text too long");
  void* memory = std::malloc(sizeof(Buffer) + length * sizeof(char16_t));
  if (!memory) throw std::bad_alloc();
  return new (memory) Buffer{1, static_cast<std::uint32_t>(length), 0};
}

BString::Buffer* BString::allocate(std::u16string_view source) {
  Buffer* buffer = allocate(source.size());
  if (!source.empty()) std::memcpy(text(buffer), source.data(), source.size() * sizeof(char16_t));
  return buffer;
}

void BString::release() noexcept {
  if (!buffer_ || buffer_->references.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
  buffer_->~Buffer();
  std::free(buffer_);
}

std::size_t BString::hash() const noexcept {
  if (!buffer_) return std::hash<std::u16string_view>{}({});
  std::size_t value = buffer_->hash.load(std::memory_order_relaxed);
  if (value == 0) {
    value = std::hash<std::u16string_view>{}(view());
    buffer_->hash.store(value, std::memory_order_relaxed);
  }
  return value;
}

BString BString::concat(std::u16string_view a, std::u16string_view b, std::u16string_view c) {
  BString result;
  result.buffer_ = allocate(a.size() + b.size() + c.size());
  char16_t* out = text(result.buffer_);
  for (std::u16string_view part : {a, b, c}) {
    if (!part.empty()) std::memcpy(out, part.data(), part.size() * sizeof(char16_t));
    out += part.size();
  }
  return result;
}

BString BString::fromNarrow(std::string_view narrow) {
  BString result;
  result.buffer_ = allocate(wideLength(narrow));
  widenInto(narrow, text(result.buffer_));
  return result;
}

std::string BString::narrow() const {
  return narrowFromWide(view());
}

}  // namespace forgeyard
