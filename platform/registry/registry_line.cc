#include "platform/registry/registry_line.h"

#include <cstddef>

namespace forgeyard {
namespace {

constexpr std::string_view kUnnamed = "@";
constexpr std::string_view ESCAPABLE("\t\n\r %;=@[]\0", 11);
// What can't stand anywhere in a line as it is.
constexpr std::string_view NEVER_PLAIN("\n\r\0", 3);

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}

std::string_view strip(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// The character that the three at `at` stand for.
std::optional<char> escapedAt(std::string_view text, std::size_t at) {
  if (text[at] != '%' || text.size() - at < 3) return std::nullopt;
  const int high = hexDigit(text[at + 1]);
  const int low = hexDigit(text[at + 2]);
  if (high < 0 || low < 0) return std::nullopt;
  const char c = static_cast<char>(high * 16 + low);
  return ESCAPABLE.find(c) == ESCAPABLE.npos ? std::nullopt : std::optional(c);
}

void appendEscaped(std::string& line, char c) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const unsigned byte = static_cast<unsigned char>(c);
  line += '%';
  line += kDigits[byte >> 4];
  line += kDigits[byte & 15];
}

// Appends the text so that it reads back the same. `anywhere` and `atStart` are further characters that must
// not stand plain anywhere or as the first.
void appendText(std::string& line, std::string_view text, std::string_view anywhere,
                std::string_view atStart) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool atEnd = i == 0 || i + 1 == text.size();
    const bool escape = NEVER_PLAIN.find(c) != NEVER_PLAIN.npos || anywhere.find(c) != anywhere.npos ||
                        (i == 0 && atStart.find(c) != atStart.npos) || (atEnd && isBlank(c)) ||
                        escapedAt(text, i).has_value();
    if (escape) {
      appendEscaped(line, c);
    } else {
      line += c;
    }
  }
}

RegistryLine readSection(RegistryLine line, std::string_view content) {
  line.kind = RegistryLine::Kind::Section;
  if (content.back() != ']') return line;
  content = strip(content.substr(1, content.size() - 2));
  while (content.ends_with('\\')) content.remove_suffix(1);
  line.name = content;
  return line;
}

}  // namespace

RegistryLine readRegistryLine(std::string_view raw) noexcept {
  RegistryLine line;
  line.raw = raw;
  std::string_view content = raw;
  while (content.ends_with('\n') || content.ends_with('\r')) content.remove_suffix(1);
  content = strip(content);
  if (content.empty() || content.front() == ';') return line;
  if (content.front() == '[') return readSection(line, content);
  const std::size_t equals = content.find('=');
  if (equals == content.npos || equals == 0) return line;
  line.kind = RegistryLine::Kind::Value;
  line.name = strip(content.substr(0, equals));
  line.data = strip(content.substr(equals + 1));
  if (line.name == kUnnamed) line.name = {};
  return line;
}

std::string decodeRegistryText(std::string_view written) {
  std::string text;
  text.reserve(written.size());
  for (std::size_t i = 0; i < written.size(); ++i) {
    if (const std::optional<char> c = escapedAt(written, i)) {
      text += *c;
      i += 2;
    } else {
      text += written[i];
    }
  }
  return text;
}

std::string registrySectionLine(std::string_view key) {
  std::string line = "[";
  appendText(line, key, "", "");
  return line += ']';
}

std::string registryValueLine(std::string_view name, std::string_view text) {
  std::string line;
  if (name.empty()) {
    line = kUnnamed;
  } else if (name == kUnnamed) {
    appendEscaped(line, '@');
  } else {
    appendText(line, name, "=", ";[");
  }
  line += '=';
  appendText(line, text, "", "");
  return line;
}

}  // namespace forgeyard
