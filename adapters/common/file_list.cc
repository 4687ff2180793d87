#include "adapters/common/file_list.h"

#include "platform/text/split.h"

namespace forgeyard {

std::vector<std::string> readFileList(const std::vector<std::string>& words, std::size_t from) {
  std::string text;
  for (std::size_t i = from; i < words.size(); ++i) text.append(i == from ? "" : " ").append(words[i]);
  std::vector<std::string> list;
  for (std::string_view rest = text;;) {
    const std::size_t comma = rest.find(',');
    list.emplace_back(stripBlanks(rest.substr(0, comma)));
    if (comma == rest.npos) return list;
    rest.remove_prefix(comma + 1);
  }
}

std::string_view field(const std::vector<std::string>& list, std::size_t index) noexcept {
  return index < list.size() ? std::string_view(list[index]) : std::string_view();
}

}  // namespace forgeyard
