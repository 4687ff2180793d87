#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace forgeyard {

// The path functions of the model: pure text work on backslash paths, narrow (UTF-8) or wide, with one body
// for both. No file is looked at. Functions that give a view give a part of their argument.
//
// `limit` is the length, terminator counted, that a result must stay below. kMaxPath is what the functions
// promise by their contract and the default. Callers that work on real files of this system, whose paths may
// be far longer (the components' directories, file lists and dependencies, the project's files), lift it with
// kNoPathLimit; what speaks to a repository keeps it, since its names are bounded.
inline constexpr std::size_t kMaxPath = 260;
inline constexpr std::size_t kNoPathLimit = std::numeric_limits<std::size_t>::max();

// The path with its `.` and `..` components resolved; components are separated by backslashes only. An empty
// result becomes `\`, a bare drive its root. Nothing if the result reaches the limit.
std::optional<std::string> PathCanonicalizeA(std::string_view path, std::size_t limit = kMaxPath);
std::optional<std::u16string> PathCanonicalizeA(std::u16string_view path, std::size_t limit = kMaxPath);

// True if the file's text matches one of the patterns of a semicolon list, without regard to case. `*` stands
// for any text, separators included, and `?` for one character. Blanks before a pattern don't count, blanks
// behind it do. The list "*.*" matches everything. Doesn't allocate; the cost is at worst length times
// length.
bool PathMatchSpecA(std::string_view file, std::string_view spec) noexcept;
bool PathMatchSpecA(std::u16string_view file, std::u16string_view spec) noexcept;
// Whether a text that is taken for such a list means anything but itself: it then matches others, or not
// itself.
bool isMatchSpec(std::u16string_view text) noexcept;

// False for a path that begins with a backslash or a drive. A slash doesn't make a path absolute here.
bool PathIsRelativeA(std::string_view path) noexcept;
bool PathIsRelativeA(std::u16string_view path) noexcept;

// Appends a backslash unless the path is empty or ends in one. False, with the path unchanged, if the result
// would reach the limit.
bool PathAddBackslashA(std::string& path, std::size_t limit = kNoPathLimit);
bool PathAddBackslashA(std::u16string& path, std::size_t limit = kNoPathLimit);

// The last component, with the separators behind it; the whole path if there is none.
std::string_view PathFindFileNameA(std::string_view path) noexcept;
std::u16string_view PathFindFileNameA(std::u16string_view path) noexcept;

// From the last dot of the last component on; empty if there is none or a blank stands behind it.
std::string_view PathFindExtensionA(std::string_view path) noexcept;
std::u16string_view PathFindExtensionA(std::u16string_view path) noexcept;

// Cuts what PathFindExtensionA finds.
void PathRemoveExtensionA(std::string& path);
void PathRemoveExtensionA(std::u16string& path);

// Cuts the last component and the backslash before it, but never a root. False if there was nothing to cut.
bool PathRemoveFileSpecA(std::string& path);
bool PathRemoveFileSpecA(std::u16string& path);

// Leaves what PathFindFileNameA finds.
void PathStripPathA(std::string& path);
void PathStripPathA(std::u16string& path);

// Puts a path without any lower-case letter (a to z) into lower case but for its first character. False, with
// the path unchanged, if it holds one.
bool PathMakePrettyA(std::string& path);
bool PathMakePrettyA(std::u16string& path);

enum class PathKind { File, Directory };

// The way from one path to another, beginning with `.` or `..`; a file stands for its directory at the start
// of the way. Nothing if the two have no root or first component in common, or if the result reaches the
// limit.
std::optional<std::string> PathRelativePathToA(std::string_view from, PathKind fromKind, std::string_view to,
                                               PathKind toKind, std::size_t limit = kMaxPath);
std::optional<std::u16string> PathRelativePathToA(std::u16string_view from, PathKind fromKind,
                                                  std::u16string_view to, PathKind toKind,
                                                  std::size_t limit = kMaxPath);

}  // namespace forgeyard
