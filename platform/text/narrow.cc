#include "platform/text/narrow.h"

#include <cstdint>
#include <cstring>

namespace forgeyard {
namespace {

constexpr char32_t kFirstHigh = 0xD800;
constexpr char32_t kFirstLow = 0xDC00;
constexpr char32_t kPastLow = 0xE000;
constexpr char32_t kFirstEscape = 0xDC80;  // the escape of byte 0x80
constexpr char32_t kPastEscape = 0xDD00;
constexpr std::size_t kBlock = 8;  // characters that are looked at together as long as they are ASCII

constexpr bool isHigh(char32_t c) {
  return c >= kFirstHigh && c < kFirstLow;
}
constexpr bool isLow(char32_t c) {
  return c >= kFirstLow && c < kPastLow;
}
constexpr bool isEscape(char32_t c) {
  return c >= kFirstEscape && c < kPastEscape;
}
constexpr char32_t pairOf(char32_t high, char32_t low) {
  return 0x10000 + ((high - kFirstHigh) << 10) + (low - kFirstLow);
}

unsigned byteAt(std::string_view text, std::size_t at) {
  return static_cast<unsigned char>(text[at]);
}
constexpr char32_t escapeOf(unsigned byte) {
  return 0xDC00 + byte;
}

// The value that a lead byte starts with and how many bytes follow it; none for a byte that leads nothing.
struct Lead {
  std::size_t following;
  char32_t bits;
  char32_t least;  // smaller values have a shorter form, which is the valid one
};
constexpr Lead leadOf(unsigned byte) {
  if (byte >= 0xC2 && byte < 0xE0) return {1, byte & 0x1F, 0x80};
  if (byte >= 0xE0 && byte < 0xF0) return {2, byte & 0x0F, 0x800};
  if (byte >= 0xF0 && byte < 0xF5) return {3, byte & 0x07, 0x10000};
  return {0, 0, 0};
}

// The character at a byte that is not ASCII; surrogates other than escapes in their three-byte form pass.
DecodedCharacter decodeSequence(std::string_view text, std::size_t at) {
  const DecodedCharacter escaped{escapeOf(byteAt(text, at)), 1};
  const Lead lead = leadOf(byteAt(text, at));
  if (lead.following == 0 || text.size() - at <= lead.following) return escaped;
  char32_t value = lead.bits;
  for (std::size_t i = 1; i <= lead.following; ++i) {
    const unsigned byte = byteAt(text, at + i);
    if ((byte & 0xC0) != 0x80) return escaped;
    value = value << 6 | (byte & 0x3F);
  }
  if (value < lead.least || value > 0x10FFFF || isEscape(value)) return escaped;
  return {value, lead.following + 1};
}

bool blockIsAscii(const char* block) {
  std::uint64_t word;
  std::memcpy(&word, block, sizeof word);
  return (word & 0x8080808080808080u) == 0;
}

bool blockIsAscii(const char16_t* block) {
  std::uint64_t words[2];
  std::memcpy(words, block, sizeof words);
  return ((words[0] | words[1]) & 0xFF80FF80FF80FF80u) == 0;
}

// How many characters there are before the first that is not ASCII.
std::size_t asciiLength(std::string_view text) {
  std::size_t at = 0;
  while (text.size() - at >= kBlock && blockIsAscii(text.data() + at)) at += kBlock;
  while (at < text.size() && byteAt(text, at) < 0x80) ++at;
  return at;
}

// Blocks of a fixed size compile to a few vector instructions; the last one may overlap the one before.
void widenAscii(const char* text, std::size_t size, char16_t* out) {
  constexpr std::size_t kWideBlock = 16;
  const auto widenBlock = [&](std::size_t at) {
    char16_t wide[kWideBlock];
    for (std::size_t i = 0; i < kWideBlock; ++i) wide[i] = static_cast<unsigned char>(text[at + i]);
    std::memcpy(out + at, wide, sizeof wide);
  };
  if (size < kWideBlock) {
    for (std::size_t i = 0; i < size; ++i) out[i] = static_cast<unsigned char>(text[i]);
    return;
  }
  for (std::size_t at = 0; at + kWideBlock < size; at += kWideBlock) widenBlock(at);
  widenBlock(size - kWideBlock);
}

class WideCounter {
 public:
  void block(const char*) { length_ += kBlock; }
  void unit(char32_t) { ++length_; }
  std::size_t length() const { return length_; }

 private:
  std::size_t length_ = 0;
};

class WideWriter {
 public:
  explicit WideWriter(char16_t* out) : out_(out) {}
  void block(const char* ascii) {
    for (std::size_t i = 0; i < kBlock; ++i) out_[i] = static_cast<unsigned char>(ascii[i]);
    out_ += kBlock;
  }
  void unit(char32_t unit) { *out_++ = static_cast<char16_t>(unit); }

 private:
  char16_t* out_;
};

template <class Sink>
void putWide(char32_t c, Sink& sink) {
  if (c < 0x10000) {
    sink.unit(c);
  } else {
    sink.unit(kFirstHigh + ((c - 0x10000) >> 10));
    sink.unit(kFirstLow + ((c - 0x10000) & 0x3FF));
  }
}

// A run of first halves in their three-byte form, which stand alone unless a low unit comes behind the run:
// they would make a pair with it, so the whole run is escaped then. Gives the end of the run.
template <class Sink>
std::size_t putHighRun(std::string_view text, std::size_t at, Sink& sink) {
  std::size_t end = at;
  DecodedCharacter next;
  while (end < text.size() && isHigh((next = decodeCharacter(text, end)).codePoint)) end += next.length;
  const bool makesPair = end < text.size() && isLow(next.codePoint);
  while (at < end) {
    if (makesPair) {
      sink.unit(escapeOf(byteAt(text, at++)));
    } else {
      const DecodedCharacter high = decodeSequence(text, at);
      sink.unit(high.codePoint);
      at += high.length;
    }
  }
  return end;
}

template <class Sink>
void widen(std::string_view text, Sink& sink) {
  std::size_t at = 0;
  while (at < text.size()) {
    if (text.size() - at >= kBlock && blockIsAscii(text.data() + at)) {
      sink.block(text.data() + at);
      at += kBlock;
      continue;
    }
    const DecodedCharacter next = decodeCharacter(text, at);
    if (isHigh(next.codePoint)) {
      at = putHighRun(text, at, sink);
    } else {
      putWide(next.codePoint, sink);
      at += next.length;
    }
  }
}

class NarrowCounter {
 public:
  void block(const char16_t*) { length_ += kBlock; }
  void byte(char32_t) { ++length_; }
  std::size_t length() const { return length_; }

 private:
  std::size_t length_ = 0;
};

class NarrowWriter {
 public:
  explicit NarrowWriter(char* out) : out_(out) {}
  void block(const char16_t* ascii) {
    for (std::size_t i = 0; i < kBlock; ++i) out_[i] = static_cast<char>(ascii[i]);
    out_ += kBlock;
  }
  void byte(char32_t byte) { *out_++ = static_cast<char>(byte); }

 private:
  char* out_;
};

template <class Sink>
void putNarrow(char32_t c, Sink& sink) {
  if (c < 0x80) {
    sink.byte(c);
  } else if (isEscape(c)) {
    sink.byte(c & 0xFF);
  } else if (c < 0x800) {
    sink.byte(0xC0 | c >> 6);
    sink.byte(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    sink.byte(0xE0 | c >> 12);
    sink.byte(0x80 | (c >> 6 & 0x3F));
    sink.byte(0x80 | (c & 0x3F));
  } else {
    sink.byte(0xF0 | c >> 18);
    sink.byte(0x80 | (c >> 12 & 0x3F));
    sink.byte(0x80 | (c >> 6 & 0x3F));
    sink.byte(0x80 | (c & 0x3F));
  }
}

template <class Sink>
void makeNarrow(std::u16string_view text, Sink& sink) {
  std::size_t at = 0;
  while (at < text.size()) {
    if (text.size() - at >= kBlock && blockIsAscii(text.data() + at)) {
      sink.block(text.data() + at);
      at += kBlock;
      continue;
    }
    const DecodedCharacter next = decodeCharacter(text, at);
    putNarrow(next.codePoint, sink);
    at += next.length;
  }
}

}  // namespace

DecodedCharacter decodeCharacter(std::string_view text, std::size_t at) noexcept {
  const unsigned byte = byteAt(text, at);
  return byte < 0x80 ? DecodedCharacter{byte, 1} : decodeSequence(text, at);
}

DecodedCharacter decodeCharacter(std::u16string_view text, std::size_t at) noexcept {
  const char32_t unit = text[at];
  if (isHigh(unit) && text.size() - at > 1 && isLow(text[at + 1])) return {pairOf(unit, text[at + 1]), 2};
  return {unit, 1};
}

std::size_t wideLength(std::string_view narrow) noexcept {
  const std::size_t ascii = asciiLength(narrow);
  WideCounter counter;
  widen(narrow.substr(ascii), counter);
  return ascii + counter.length();
}

void widenInto(std::string_view narrow, char16_t* out) noexcept {
  const std::size_t ascii = asciiLength(narrow);
  widenAscii(narrow.data(), ascii, out);
  WideWriter writer(out + ascii);
  widen(narrow.substr(ascii), writer);
}

std::u16string wideFromNarrow(std::string_view narrow) {
  std::u16string wide(wideLength(narrow), u'\0');
  widenInto(narrow, wide.data());
  return wide;
}

std::string narrowFromWide(std::u16string_view wide) {
  NarrowCounter counter;
  makeNarrow(wide, counter);
  std::string narrow(counter.length(), '\0');
  NarrowWriter writer(narrow.data());
  makeNarrow(wide, writer);
  return narrow;
}

}  // namespace forgeyard
