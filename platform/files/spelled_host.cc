#include "platform/files/spelled_host.h"

#include <optional>
#include <utility>

#include "platform/files/host_location.h"

namespace forgeyard {

SpelledHost::SpelledHost(const BString& path) {
  if (convertPlain(path.view())) {
    text_ = buffer_.data();
  } else if (std::optional<std::string> host = spelledHost(path)) {
    other_ = std::move(*host);
    text_ = other_.c_str();
  }
}

// Leaves everything with a rule of its own to the table of drives: drives, shares, characters beyond ASCII.
bool SpelledHost::convertPlain(std::u16string_view path) noexcept {
  if (path.size() < 2 || path.size() >= buffer_.size() || path[0] != u'\\' || path[1] == u'\\' ||
      path[1] == u'/') {
    return false;
  }
  for (std::size_t i = 0; i < path.size(); ++i) {
    const char16_t unit = path[i];
    if (unit == 0 || unit >= 0x80) return false;
    buffer_[i] = unit == u'\\' ? '/' : static_cast<char>(unit);
  }
  buffer_[path.size()] = '\0';
  return true;
}

}  // namespace forgeyard
