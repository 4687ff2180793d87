#include "workbench/diagnostics/tool_paths.h"

#include <filesystem>

#include "platform/files/host_location.h"

namespace forgeyard::workbench {

namespace {

// The directory in quotes behind the words; empty for another line.
std::string directoryBehind(std::u16string_view line, std::u16string_view words) {
  const std::size_t at = line.find(words);
  if (at == line.npos) return {};
  line.remove_prefix(at + words.size());
  return BString(line.substr(0, line.size() - 1)).narrow();
}

}  // namespace

void ToolPaths::follow(std::u16string_view line) {
  if (!line.ends_with(u'\'') && !line.ends_with(u'\u2019')) return;
  for (const std::u16string_view quote : {u"'", u"`", u"\u2018"}) {
    const std::u16string words = u": Entering directory " + std::u16string(quote);
    if (const std::string entered = directoryBehind(line, words); !entered.empty())
      return directories_.push_back(entered);
  }
  if (line.find(u": Leaving directory ") != line.npos && !directories_.empty()) directories_.pop_back();
}

std::string ToolPaths::toUser(const std::string& file) const {
  if (file.empty()) return file;
  if (file.find('\\') != file.npos) return paths_.toUser(BString::fromNarrow(file));
  std::filesystem::path path(file);
  if (path.is_relative() && !directories_.empty()) path = directories_.back() / path;
  if (path.is_relative() && !file.starts_with("./")) return file;
  std::string host = path.lexically_normal().string();
  if (path.is_relative()) return host;
  const ModelPath model = toModel(host);
  return model ? paths_.toUser(model.path) : host;
}

}  // namespace forgeyard::workbench
