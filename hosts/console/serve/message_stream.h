#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace forgeyard::console {

// Messages on a stream of bytes: "Content-Length: N", further header lines that don't count, an empty line
// and N bytes. Lines end with CR LF; a bare LF is taken too.

// The message as it goes on its way.
std::string framed(std::string_view message);

// Takes a stream apart. One thread.
class MessageReader {
 public:
  static constexpr std::size_t kLargest = std::size_t{16} << 20;

  struct Visitor {
    std::function<void(std::string message)> message;
    // One of so many bytes, more than LARGEST, which are left out.
    std::function<void(std::size_t bytes)> tooLarge;
  };
  explicit MessageReader(Visitor visitor) : visitor_(std::move(visitor)) {}

  // The next bytes of the stream. False, from then on, when they are no messages: there is no telling where
  // the next one begins.
  bool feed(std::string_view bytes);

 private:
  static constexpr std::size_t kLongestHeader = 4096;

  bool takeHeader();
  bool takeBody();

  Visitor visitor_;
  std::string buffer_;
  std::optional<std::size_t> expected_;  // bytes of the message whose header has been read
  std::size_t skip_ = 0;
  bool broken_ = false;
};

}  // namespace forgeyard::console
