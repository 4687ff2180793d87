#include "workbench/base/nearest.h"

#include <algorithm>

#include "platform/text/fold.h"

namespace forgeyard::workbench {

namespace {

constexpr std::size_t kMostListed = 12;

// Slips are letters that were left out, put in, mistaken or swapped with their neighbour.
std::size_t slips(std::string_view a, std::string_view b) {
  std::vector<std::size_t> twoAbove(b.size() + 1);
  std::vector<std::size_t> above(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) above[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t mistaken = above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({mistaken, above[j] + 1, row[j - 1] + 1});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        row[j] = std::min(row[j], twoAbove[j - 2] + 1);
    }
    twoAbove.swap(above);
    above.swap(row);
  }
  return above[b.size()];
}

}  // namespace

std::optional<std::string> nearest(std::string_view wanted, std::span<const std::string> candidates) {
  const std::string key = folded(wanted);
  std::optional<std::string> best;
  // One slip in three letters is a typing error, more is another word.
  std::size_t bound = std::max<std::size_t>(1, key.size() / 3) + 1;
  for (const std::string& candidate : candidates) {
    const std::string other = folded(candidate);
    const std::size_t longer = std::max(key.size(), other.size());
    if (longer - std::min(key.size(), other.size()) >= bound) continue;
    const std::size_t count = slips(key, other);
    if (count >= bound || count == longer) continue;
    bound = count;
    best = candidate;
  }
  return best;
}

std::string suggestion(std::string_view wanted, std::span<const std::string> candidates,
                       std::string_view plural) {
  if (const auto near = nearest(wanted, candidates)) return " Did you mean " + *near + "?";
  if (candidates.empty()) return " There are no " + std::string(plural) + ".";
  if (candidates.size() > kMostListed) return "";
  return " The " + std::string(plural) + ": " + enumeration(candidates) + ".";
}

std::string enumeration(std::span<const std::string> names) {
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 == names.size() ? " and " : ", ";
    text += names[i];
  }
  return text;
}

}  // namespace forgeyard::workbench
