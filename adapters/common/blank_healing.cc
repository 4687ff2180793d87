#include "adapters/common/blank_healing.h"

#include "adapters/common/file_names.h"

namespace forgeyard {
namespace {

constexpr std::size_t kMostWords = 32;

// All ways to join, shortest first.
std::vector<std::string> joinings(std::string_view first, const std::vector<std::string>& words,
                                  std::size_t at) {
  std::vector<std::string> result{std::string(first)};
  if (!isAbsolute(first)) return result;
  for (std::size_t i = at + 1; i < words.size() && result.size() <= kMostWords; ++i) {
    if (words[i].empty() || words[i].front() == '-' || isAbsolute(words[i])) break;
    result.push_back(result.back() + " " + words[i]);
  }
  return result;
}

}  // namespace

Healed healExisting(std::string_view first, const std::vector<std::string>& words, std::size_t at,
                    const std::function<bool(const std::string&)>& exists) {
  const std::vector<std::string> ways = joinings(first, words, at);
  if (ways.size() == 1) return {ways.front(), 0};
  for (std::size_t i = 0; i < ways.size(); ++i) {
    if (exists(ways[i])) return {ways[i], i};
  }
  return {ways.front(), 0};
}

Healed healOutput(std::string_view first, const std::vector<std::string>& words, std::size_t at,
                  const std::function<bool(const std::string&)>& accepts) {
  const std::vector<std::string> ways = joinings(first, words, at);
  for (std::size_t i = ways.size() - 1; i > 0; --i) {
    if (accepts(ways[i])) return {ways[i], i};
  }
  return {ways.front(), 0};
}

}  // namespace forgeyard
