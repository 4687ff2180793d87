#include "workbench/import/notes.h"

#include <algorithm>

#include "workbench/base/nearest.h"

namespace forgeyard::workbench {

namespace {

constexpr std::size_t kNamed = 8;

}  // namespace

void Notes::add(const std::string& remark, const std::string& what) {
  auto found = std::find_if(remarks_.begin(), remarks_.end(),
                            [&](const Remark& known) { return known.text == remark; });
  if (found == remarks_.end()) found = remarks_.insert(found, Remark{remark, {}, 0});
  if (what.empty() || std::find(found->first.begin(), found->first.end(), what) != found->first.end()) return;
  ++found->count;
  if (found->first.size() < kNamed) found->first.push_back(what);
}

std::vector<std::string> Notes::lines() const {
  std::vector<std::string> lines;
  for (const Remark& remark : remarks_) {
    std::vector<std::string> names = remark.first;
    if (remark.count > names.size()) names.push_back(std::to_string(remark.count - names.size()) + " more");
    lines.push_back(names.empty() ? remark.text + "." : remark.text + ": " + enumeration(names));
  }
  return lines;
}

}  // namespace forgeyard::workbench
