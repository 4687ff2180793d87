#include "hosts/console/serve/message_stream.h"

#include <algorithm>
#include <charconv>

#include "platform/text/fold.h"

namespace forgeyard::console {

namespace {

constexpr std::string_view kLength = "Content-Length";

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

std::optional<std::size_t> number(std::string_view digits) {
  std::size_t value = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value);
  return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

// The length that a header tells, or nothing.
std::optional<std::size_t> lengthIn(std::string_view header) {
  std::optional<std::size_t> length;
  while (!header.empty()) {
    const std::size_t end = std::min(header.find('\n'), header.size());
    const std::string_view line = trimmed(header.substr(0, end));
    header.remove_prefix(std::min(end + 1, header.size()));
    const std::size_t colon = line.find(':');
    if (colon == line.npos) return std::nullopt;
    if (equalFoldedAscii(trimmed(line.substr(0, colon)), kLength))
      length = number(trimmed(line.substr(colon + 1)));
  }
  return length;
}

// Where the header's empty line begins and how long it is with the line end before it.
std::pair<std::size_t, std::size_t> headerEnd(std::string_view bytes) {
  const std::size_t strict = bytes.find("\r\n\r\n");
  const std::size_t bare = bytes.find("\n\n");
  return bare < strict ? std::pair(bare, std::size_t{2}) : std::pair(strict, std::size_t{4});
}

}  // namespace

std::string framed(std::string_view message) {
  std::string text(kLength);
  text.append(": ").append(std::to_string(message.size())).append("\r\n\r\n");
  return text.append(message);
}

bool MessageReader::feed(std::string_view bytes) {
  const std::size_t skipped = std::min(skip_, bytes.size());
  skip_ -= skipped;
  buffer_.append(bytes.substr(skipped));
  while (!broken_ && (expected_ ? takeBody() : takeHeader())) {
  }
  return !broken_;
}

// Both return whether there may be more to take.
bool MessageReader::takeHeader() {
  const auto [end, length] = headerEnd(buffer_);
  if (end == std::string::npos) {
    broken_ = buffer_.size() > kLongestHeader;
    return false;
  }
  expected_ = lengthIn(std::string_view(buffer_).substr(0, end));
  broken_ = !expected_;
  buffer_.erase(0, end + length);
  if (broken_ || *expected_ <= kLargest) return !broken_;
  visitor_.tooLarge(*expected_);
  skip_ = *expected_ - std::min(*expected_, buffer_.size());
  buffer_.erase(0, *expected_ - skip_);
  expected_.reset();
  return true;
}

bool MessageReader::takeBody() {
  if (buffer_.size() < *expected_) return false;
  std::string message = buffer_.substr(0, *expected_);
  buffer_.erase(0, *expected_);
  expected_.reset();
  visitor_.message(std::move(message));
  return true;
}

}  // namespace forgeyard::console
