#include "hosts/console/services/terminal.h"

#include <locale.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>
#include <wchar.h>

#include <cstdlib>

#include "platform/text/narrow.h"

namespace forgeyard::console {

namespace {

constexpr std::size_t kUsualWidth = 80;
constexpr std::string_view kEllipsis = "\u2026";
constexpr char32_t kFirstSurrogate = 0xD800;
constexpr char32_t kLastSurrogate = 0xDFFF;

std::string_view variable(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

// The widths of characters, whatever the user's locale: our texts are UTF-8 always.
class Utf8Locale {
 public:
  Utf8Locale() : locale_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {}

  int widthOf(char32_t character) const {
    if (!locale_) return 1;
    const locale_t before = ::uselocale(locale_);
    const int width = ::wcwidth(static_cast<wchar_t>(character));
    ::uselocale(before);
    return width;
  }

 private:
  locale_t locale_;
};

int widthOf(char32_t character) {
  static const Utf8Locale locale;
  return locale.widthOf(character);
}

bool isPrintable(char32_t character) {
  return (character < kFirstSurrogate || character > kLastSurrogate) && widthOf(character) >= 0;
}

std::size_t columnsOf(char32_t character) {
  return isPrintable(character) ? static_cast<std::size_t>(widthOf(character)) : 1;
}

}  // namespace

Terminal Terminal::ofStandardOutput() {
  const std::string_view kind = variable("TERM");
  Terminal terminal;
  terminal.redraws = ::isatty(STDOUT_FILENO) == 1 && !kind.empty() && kind != "dumb";
  terminal.colours = terminal.redraws && variable("NO_COLOR").empty();
  return terminal;
}

std::size_t terminalWidth() {
  winsize size{};
  return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualWidth;
}

bool isForeground() {
  const pid_t group = ::tcgetpgrp(STDOUT_FILENO);
  return group < 0 || group == ::getpgrp();
}

std::size_t columnsOf(std::string_view text) {
  std::size_t columns = 0;
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCharacter character = decodeCharacter(text, at);
    columns += columnsOf(character.codePoint);
    at += character.length;
  }
  return columns;
}

std::string lastColumns(std::string_view text, std::size_t columns) {
  std::size_t left = columnsOf(text);
  if (left <= columns) return std::string(text);
  if (columns == 0) return {};
  std::size_t at = 0;
  while (left > columns - 1) {
    const DecodedCharacter character = decodeCharacter(text, at);
    left -= columnsOf(character.codePoint);
    at += character.length;
  }
  return std::string(kEllipsis) + std::string(text.substr(at));
}

std::string printable(std::string_view text) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCharacter character = decodeCharacter(text, at);
    if (isPrintable(character.codePoint)) {
      result += text.substr(at, character.length);
    } else {
      result += '?';
    }
    at += character.length;
  }
  return result;
}

}  // namespace forgeyard::console
