#include "engine/component/macro_map.h"

#include "platform/files/file_system.h"
#include "platform/paths/shell_path.h"

namespace forgeyard {

namespace {

constexpr std::array<std::u16string_view, kMacroCount> kNames{
    u"$(CIntDir)",          u"$(COutDir)",  u"$(File)",  u"$(FileExt)", u"$(FileFullPath)",
    u"$(FileFullPathList)", u"$(FileName)", u"$(InDir)", u"$(OutDir)",  u"$(OutFileFullPathList)",
    u"$(WorkDir)"};

}  // namespace

std::u16string_view macroName(Macro macro) {
  return kNames[static_cast<std::size_t>(macro)];
}

std::u16string_view MacroMap::value(Macro macro) const {
  const auto& value = values_[static_cast<std::size_t>(macro)];
  return value ? std::u16string_view(*value) : std::u16string_view();
}

std::optional<Macro> MacroMap::find(std::u16string_view name) const {
  for (std::size_t i = 0; i < kMacroCount; ++i) {
    if (values_[i] && kNames[i] == name) return static_cast<Macro>(i);
  }
  return std::nullopt;
}

BString MacroMap::expand(std::u16string_view text) const {
  std::u16string result(text);
  for (std::size_t i = 0; i < kMacroCount; ++i) {
    if (!values_[i]) continue;
    for (std::size_t at = result.find(kNames[i]); at != result.npos; at = result.find(kNames[i], at)) {
      result.replace(at, kNames[i].size(), *values_[i]);
      at += values_[i]->size();
    }
  }
  return result;
}

void MacroMap::setFile(std::u16string_view fullPath) {
  const std::u16string_view extension = PathFindExtensionA(fullPath);
  const std::u16string_view stem = fullPath.substr(0, fullPath.size() - extension.size());
  std::u16string directory(fullPath);
  PathRemoveFileSpecA(directory);
  PathAddBackslashA(directory);
  set(Macro::InDir, directory);
  set(Macro::File, PathFindFileNameA(fullPath));
  set(Macro::FileName, PathFindFileNameA(stem));
  set(Macro::FileExt, extension.empty() ? std::u16string_view(u".") : extension);
  set(Macro::FileFullPath, fullPath);
}

std::u16string absoluteDirectory(std::u16string_view text, std::u16string_view workingDirectory) {
  std::u16string path;
  if (text.empty() || PathIsRelativeA(text)) path = workingDirectory;
  PathAddBackslashA(path);
  path += text;
  if (auto canonical = PathCanonicalizeA(std::u16string_view(path), kNoPathLimit))
    path = std::move(*canonical);
  const BString made(path);
  if (!files().isDirectory(made)) files().createDirectories(made);
  PathAddBackslashA(path);
  return path;
}

}  // namespace forgeyard
