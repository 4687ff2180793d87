#include "repository/item_path.h"

#include <algorithm>
#include <utility>

#include "platform/text/narrow.h"
#include "repository/svn_error.h"

namespace forgeyard::repository {

namespace {

bool isControl(char16_t unit) {
  return unit < 0x20 || unit == 0x7F;
}

// Half of a pair without the other, which is also how bytes that are no UTF-8 arrive.
bool hasLoneSurrogate(std::u16string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCharacter character = decodeCharacter(text, at);
    if (character.codePoint >= 0xD800 && character.codePoint <= 0xDFFF) return true;
    at += character.length;
  }
  return false;
}

void checkComponent(std::u16string_view name) {
  const std::string shown = narrowFromWide(name);
  if (name == u"." || name == u"..") throw RepositoryError("\"" + shown + "\" can't be the name of an item");
  if (std::any_of(name.begin(), name.end(), isControl))
    throw RepositoryError("the name of an item can't hold control characters");
  if (hasLoneSurrogate(name)) throw RepositoryError("the name of an item is not valid UTF-8");
}

}  // namespace

std::string relativePath(const BString& spec) {
  std::u16string_view rest = spec.view();
  std::string path;
  bool first = true;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find_first_of(u"\\/"), rest.size());
    const std::u16string_view name = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (std::exchange(first, false) || name.empty()) continue;
    checkComponent(name);
    path = joined(path, narrowFromWide(name));
  }
  return path;
}

std::string specOf(std::string_view relative) {
  return std::string("$/").append(relative);
}

std::string checkedName(const BString& name) {
  checkComponent(name.view());
  if (name.empty() || name.view().find_first_of(u"\\/") != std::u16string_view::npos)
    throw RepositoryError("\"" + name.narrow() + "\" can't be the name of an item");
  return name.narrow();
}

std::string parentOf(std::string_view relative) {
  const std::size_t slash = relative.rfind('/');
  return slash == relative.npos ? "" : std::string(relative.substr(0, slash));
}

std::string_view nameOf(std::string_view relative) {
  return relative.substr(relative.rfind('/') + 1);
}

std::string joined(std::string_view parent, std::string_view name) {
  if (parent.empty()) return std::string(name);
  return std::string(parent).append("/").append(name);
}

bool isAtOrBelow(std::string_view relative, std::string_view folder) {
  return folder.empty() || relative == folder ||
         (relative.size() > folder.size() && relative.starts_with(folder) && relative[folder.size()] == '/');
}

bool isValidUtf8(std::string_view text) {
  return !hasLoneSurrogate(wideFromNarrow(text));
}

std::string commentText(const BString& comment) {
  std::u16string text;
  const std::u16string_view given = comment.view();
  for (std::size_t at = 0; at < given.size(); ++at) {
    const char16_t unit = given[at];
    if (unit == u'\r') {
      if (at + 1 == given.size() || given[at + 1] != u'\n') text += u'\n';
    } else {
      text += isControl(unit) && unit != u'\n' && unit != u'\t' ? u' ' : unit;
    }
  }
  if (!hasLoneSurrogate(text)) return narrowFromWide(text);
  std::replace_if(
      text.begin(), text.end(), [](char16_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }, u'?');
  return narrowFromWide(text);
}

}  // namespace forgeyard::repository
