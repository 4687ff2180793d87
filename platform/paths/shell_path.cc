#include "platform/paths/shell_path.h"

#include <algorithm>

#include "platform/text/fold.h"

namespace forgeyard {
namespace {

template <class Char>
using View = std::basic_string_view<Char>;
template <class Char>
using Text = std::basic_string<Char>;

template <class Char>
constexpr Char kBackslash = Char('\\');

template <class Char>
bool isSeparator(Char c) {
  return c == Char('\\') || c == Char('/');
}

template <class Char>
bool startsWithDrive(View<Char> path) {
  return path.size() >= 2 && path[1] == Char(':');
}

// A root from which `..` leads nowhere: `\`, `\\`, `X:\`, `\\server\share` and that with a backslash.
template <class Char>
bool isRoot(View<Char> path) {
  if (path.size() == 3 && startsWithDrive(path)) return path[2] == kBackslash<Char>;
  if (path.empty() || path[0] != kBackslash<Char>) return false;
  if (path.size() == 1) return true;
  if (path[1] != kBackslash<Char>) return false;
  const std::size_t share = path.find(kBackslash<Char>, 2);
  if (share == path.npos) return true;
  const std::size_t end = path.find(kBackslash<Char>, share + 1);
  return end == path.npos || end + 1 == path.size();
}

// `path` ends in a backslash that a `..` follows: takes the component before it away, with both its
// backslashes. The one behind the `..`, if any, stands for them.
template <class Char>
void goUp(Text<Char>& path) {
  if (path.empty()) return;
  const std::size_t before = path.size() < 2 ? path.npos : path.rfind(kBackslash<Char>, path.size() - 2);
  path.resize(before != path.npos ? before : startsWithDrive<Char>(path) ? 2 : 0);
}

// `path` ends where a last `.` stood: the backslash before that goes as well.
template <class Char>
void dropLastBackslash(Text<Char>& path) {
  if (path.size() > 1 && path.back() == kBackslash<Char> &&
      !(path.size() == 3 && startsWithDrive<Char>(path)) &&
      !(path.size() == 2 && path[0] == kBackslash<Char>)) {
    path.pop_back();
  }
}

template <class Char>
std::optional<Text<Char>> canonicalize(View<Char> path, std::size_t limit) {
  Text<Char> result;
  result.reserve(path.size() + 1);
  std::size_t at = 0;
  while (at < path.size()) {
    if (path[at] == kBackslash<Char>) {
      result += path[at++];
      continue;
    }
    const std::size_t end = std::min(path.find(kBackslash<Char>, at), path.size());
    const View<Char> component = path.substr(at, end - at);
    const bool dot = component.size() == 1 && component[0] == Char('.');
    const bool dotDot = component.size() == 2 && component[0] == Char('.') && component[1] == Char('.');
    at = end;
    if (dot && end == path.size()) {
      dropLastBackslash(result);
    } else if (dot || (dotDot && isRoot<Char>(result))) {
      if (end < path.size()) ++at;
    } else if (dotDot) {
      goUp(result);
    } else {
      result += component;
    }
  }
  if (result.empty() || (result.size() == 2 && startsWithDrive<Char>(result))) result += kBackslash<Char>;
  if (result.size() >= limit) return std::nullopt;
  return result;
}

template <class Char>
bool isRelative(View<Char> path) {
  if (path.empty()) return true;
  // A drive is one byte, so a wide character that takes more of them names none.
  return path[0] != kBackslash<Char> && !(startsWithDrive(path) && static_cast<char32_t>(path[0]) < 0x80);
}

template <class Char>
bool addBackslash(Text<Char>& path, std::size_t limit) {
  if (path.empty() || path.back() == kBackslash<Char>) return true;
  if (path.size() + 1 >= limit) return false;
  path += kBackslash<Char>;
  return true;
}

// Where the last component begins: behind the last separator or colon that something other than a separator
// follows.
template <class Char>
std::size_t fileNameStart(View<Char> path) {
  for (std::size_t at = path.size(); at-- > 1;) {
    const Char before = path[at - 1];
    if ((isSeparator(before) || before == Char(':')) && !isSeparator(path[at])) return at;
  }
  return 0;
}

template <class Char>
std::size_t extensionStart(View<Char> path) {
  for (std::size_t at = path.size(); at-- > 0;) {
    if (path[at] == Char('.')) return at;
    if (path[at] == kBackslash<Char> || path[at] == Char(' ')) break;
  }
  return path.size();
}

// Where the directory part ends: at the last backslash, or behind a colon or leading backslashes, which
// belong to the directory.
template <class Char>
std::size_t directoryEnd(View<Char> path) {
  std::size_t at = 0;
  while (at < 2 && at < path.size() && path[at] == kBackslash<Char>) ++at;
  std::size_t end = at;
  for (; at < path.size(); ++at) {
    if (path[at] == kBackslash<Char>) {
      end = at;
    } else if (path[at] == Char(':')) {
      if (at + 1 < path.size() && path[at + 1] == kBackslash<Char>) ++at;
      end = at + 1;
    }
  }
  return end;
}

template <class Char>
bool removeFileSpec(Text<Char>& path) {
  const std::size_t end = directoryEnd<Char>(path);
  if (end == path.size()) return false;
  path.resize(end);
  return true;
}

template <class Char>
bool makePretty(Text<Char>& path) {
  for (const Char c : path) {
    if (c >= Char('a') && c <= Char('z')) return false;
  }
  for (std::size_t i = 1; i < path.size(); ++i) path[i] = foldAscii(path[i]);
  return true;
}

// The backslashes, or the drive with its backslash, that a path begins with.
template <class Char>
std::size_t rootLength(View<Char> path) {
  std::size_t length = startsWithDrive(path) ? 2 : 0;
  while (length < path.size() && path[length] == kBackslash<Char>) ++length;
  return length;
}

template <class Char>
std::size_t componentEnd(View<Char> path, std::size_t at) {
  return std::min(path.find(kBackslash<Char>, at), path.size());
}

template <class Char>
std::size_t skipBackslashes(View<Char> path, std::size_t at) {
  while (at < path.size() && path[at] == kBackslash<Char>) ++at;
  return at;
}

template <class Char>
View<Char> directoryOf(View<Char> path, PathKind kind) {
  return kind == PathKind::File ? path.substr(0, directoryEnd(path)) : path;
}

// How far two directories agree.
struct CommonPart {
  bool any = false;  // they have a root or a component in common
  std::size_t inFrom = 0;
  std::size_t inTo = 0;
};

template <class Char>
CommonPart commonPart(View<Char> from, View<Char> to) {
  CommonPart common;
  const View<Char> root = from.substr(0, rootLength(from));
  if (!equalFolded(root, to.substr(0, rootLength(to)))) return common;
  // One root holds everything on it; the two backslashes of a network name alone hold nothing.
  common.any = startsWithDrive(root) ? root.size() > 2 : root.size() == 1;
  common.inFrom = common.inTo = root.size();
  while (common.inFrom < from.size() && common.inTo < to.size()) {
    const std::size_t fromEnd = componentEnd(from, common.inFrom);
    const std::size_t toEnd = componentEnd(to, common.inTo);
    if (!equalFolded(from.substr(common.inFrom, fromEnd - common.inFrom),
                     to.substr(common.inTo, toEnd - common.inTo))) {
      break;
    }
    common.any = true;
    common.inFrom = skipBackslashes(from, fromEnd);
    common.inTo = skipBackslashes(to, toEnd);
  }
  return common;
}

template <class Char>
std::optional<Text<Char>> relativePath(View<Char> from, PathKind fromKind, View<Char> to, PathKind toKind,
                                       std::size_t limit) {
  if (from.empty() || to.empty()) return std::nullopt;
  from = directoryOf(from, fromKind);
  const CommonPart common = commonPart(from, directoryOf(to, toKind));
  if (!common.any) return std::nullopt;
  Text<Char> result;
  for (std::size_t at = common.inFrom; at < from.size(); at = skipBackslashes(from, componentEnd(from, at))) {
    if (!result.empty()) result += kBackslash<Char>;
    result.append(2, Char('.'));
  }
  if (result.empty()) result += Char('.');
  const View<Char> rest = to.substr(skipBackslashes(to, common.inTo));
  if (!rest.empty()) {
    result += kBackslash<Char>;
    result += rest;
  }
  if (result.size() >= limit) return std::nullopt;
  return result;
}

}  // namespace

std::optional<std::string> PathCanonicalizeA(std::string_view path, std::size_t limit) {
  return canonicalize(path, limit);
}
std::optional<std::u16string> PathCanonicalizeA(std::u16string_view path, std::size_t limit) {
  return canonicalize(path, limit);
}

bool PathIsRelativeA(std::string_view path) noexcept {
  return isRelative(path);
}
bool PathIsRelativeA(std::u16string_view path) noexcept {
  return isRelative(path);
}

bool PathAddBackslashA(std::string& path, std::size_t limit) {
  return addBackslash(path, limit);
}
bool PathAddBackslashA(std::u16string& path, std::size_t limit) {
  return addBackslash(path, limit);
}

std::string_view PathFindFileNameA(std::string_view path) noexcept {
  return path.substr(fileNameStart(path));
}
std::u16string_view PathFindFileNameA(std::u16string_view path) noexcept {
  return path.substr(fileNameStart(path));
}

std::string_view PathFindExtensionA(std::string_view path) noexcept {
  return path.substr(extensionStart(path));
}
std::u16string_view PathFindExtensionA(std::u16string_view path) noexcept {
  return path.substr(extensionStart(path));
}

void PathRemoveExtensionA(std::string& path) {
  path.resize(extensionStart<char>(path));
}
void PathRemoveExtensionA(std::u16string& path) {
  path.resize(extensionStart<char16_t>(path));
}

bool PathRemoveFileSpecA(std::string& path) {
  return removeFileSpec(path);
}
bool PathRemoveFileSpecA(std::u16string& path) {
  return removeFileSpec(path);
}

void PathStripPathA(std::string& path) {
  path.erase(0, fileNameStart<char>(path));
}
void PathStripPathA(std::u16string& path) {
  path.erase(0, fileNameStart<char16_t>(path));
}

bool PathMakePrettyA(std::string& path) {
  return makePretty(path);
}
bool PathMakePrettyA(std::u16string& path) {
  return makePretty(path);
}

std::optional<std::string> PathRelativePathToA(std::string_view from, PathKind fromKind, std::string_view to,
                                               PathKind toKind, std::size_t limit) {
  return relativePath(from, fromKind, to, toKind, limit);
}
std::optional<std::u16string> PathRelativePathToA(std::u16string_view from, PathKind fromKind,
                                                  std::u16string_view to, PathKind toKind,
                                                  std::size_t limit) {
  return relativePath(from, fromKind, to, toKind, limit);
}

}  // namespace forgeyard
