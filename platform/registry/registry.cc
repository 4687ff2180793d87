#include "platform/registry/registry.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "platform/text/fold.h"

namespace forgeyard {
namespace {

using Kind = RegistryLine::Kind;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlankLine = "\xEF\xBB\xBF \t\r\n";  // what a line without content may hold
constexpr std::string_view kRootPrefix = "HKEY_";

// The key's name as sections spell it.
std::string fullKeyOf(std::string_view key) {
  while (key.starts_with('\\')) key.remove_prefix(1);
  while (key.ends_with('\\')) key.remove_suffix(1);
  if (equalFoldedAscii(key.substr(0, kRootPrefix.size()), kRootPrefix)) return std::string(key);
  std::string full(registry_keys::kRoot);
  if (!key.empty()) full.append("\\").append(key);
  return full;
}

// A written name, decoded into `space` if it needs it.
std::string_view decoded(std::string_view written, std::string& space) {
  if (written.find('%') == written.npos) return written;
  space = decodeRegistryText(written);
  return space;
}

bool isNamed(std::string_view written, std::string_view name) {
  std::string space;
  return equalFolded(decoded(written, space), name);
}

// Where the name of the key below `fullKey` begins in a section's name; nothing if the section isn't below
// it.
std::optional<std::size_t> placeBelow(std::string_view section, std::string_view fullKey) {
  for (std::size_t at = section.find('\\'); at != section.npos; at = section.find('\\', at + 1)) {
    if (equalFolded(section.substr(0, at), fullKey)) return at + 1;
  }
  return std::nullopt;
}

bool isBlank(const RegistryLine& line) {
  return line.raw.find_first_not_of(kBlankLine) == std::string_view::npos;
}

bool isSectionOf(const RegistryLine& line, std::string_view fullKey) {
  return line.kind == Kind::Section && !line.name.empty() && isNamed(line.name, fullKey);
}

bool isSectionAtOrBelow(const RegistryLine& line, std::string_view fullKey) {
  if (line.kind != Kind::Section) return false;
  std::string space;
  const std::string_view section = decoded(line.name, space);
  return equalFolded(section, fullKey) || placeBelow(section, fullKey).has_value();
}

// Names in their order, each once but for case.
class NameList {
 public:
  void add(std::string_view name) {
    if (seen_.insert(folded(name)).second) names_.emplace_back(name);
  }
  std::vector<std::string> take() { return std::move(names_); }

 private:
  std::unordered_set<std::string> seen_;
  std::vector<std::string> names_;
};

}  // namespace

std::optional<std::string> RegistryKey::value(std::string_view name) const {
  const RegistryLine* line = registry_->findValue(path_, name);
  return line ? std::optional(decodeRegistryText(line->data)) : std::nullopt;
}

std::vector<std::string> RegistryKey::valueNames() const {
  NameList names;
  registry_->forEachValue(path_, [&](const RegistryLine& line) {
    std::string space;
    names.add(decoded(line.name, space));
  });
  return names.take();
}

std::vector<std::string> RegistryKey::subkeys() const {
  NameList names;
  for (const RegistryLine& line : registry_->lines_) {
    if (line.kind != Kind::Section) continue;
    std::string space;
    const std::string_view section = decoded(line.name, space);
    const std::optional<std::size_t> start = placeBelow(section, path_);
    if (start) names.add(section.substr(*start, section.find('\\', *start) - *start));
  }
  return names.take();
}

Registry Registry::parse(std::string_view text) {
  Registry registry;
  registry.addText(text);
  return registry;
}

void Registry::addText(std::string_view text) {
  std::string_view rest = storage_.emplace_front(text);
  if (rest.starts_with(kByteOrderMark)) {
    lines_.push_back({Kind::Other, rest.substr(0, kByteOrderMark.size()), {}, {}});
    rest.remove_prefix(kByteOrderMark.size());
  }
  const std::size_t firstEnd = rest.find('\n');
  if (firstEnd != rest.npos && firstEnd > 0 && rest[firstEnd - 1] == '\r') lineEnd_ = "\r\n";
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    const std::size_t length = end == rest.npos ? rest.size() : end + 1;
    lines_.push_back(readRegistryLine(rest.substr(0, length)));
    rest.remove_prefix(length);
  }
}

std::string Registry::text() const {
  std::string result;
  for (const RegistryLine& line : lines_) result += line.raw;
  return result;
}

template <class Visit>
void Registry::forEachValue(std::string_view fullKey, Visit&& visit) const {
  bool inKey = false;
  for (const RegistryLine& line : lines_) {
    if (line.kind == Kind::Section) {
      inKey = isSectionOf(line, fullKey);
    } else if (inKey && line.kind == Kind::Value) {
      visit(line);
    }
  }
}

const RegistryLine* Registry::findValue(std::string_view fullKey, std::string_view name) const {
  const RegistryLine* found = nullptr;
  forEachValue(fullKey, [&](const RegistryLine& line) {
    if (isNamed(line.name, name)) found = &line;
  });
  return found;
}

std::optional<RegistryKey> Registry::open(std::string_view key) const {
  std::string fullKey = fullKeyOf(key);
  const bool exists = equalFolded(fullKey, registry_keys::kRoot) ||
                      std::any_of(lines_.begin(), lines_.end(), [&](const RegistryLine& line) {
                        return isSectionAtOrBelow(line, fullKey);
                      });
  return exists ? std::optional(RegistryKey(*this, std::move(fullKey))) : std::nullopt;
}

std::optional<std::string> Registry::value(std::string_view key, std::string_view name) const {
  return RegistryKey(*this, fullKeyOf(key)).value(name);
}

RegistryLine Registry::makeLine(std::string text) {
  return readRegistryLine(storage_.emplace_front(std::move(text)));
}

void Registry::insert(std::size_t place, std::string text) {
  if (place > 0 && !lines_[place - 1].raw.ends_with('\n')) {
    lines_[place - 1] = makeLine(std::string(lines_[place - 1].raw) + lineEnd_);
  }
  const auto at = lines_.begin() + static_cast<std::ptrdiff_t>(place);
  lines_.insert(at, makeLine(std::move(text) + lineEnd_));
}

// Behind the last value of the key; comments below that may belong to what follows.
std::optional<std::size_t> Registry::placeForValue(std::string_view fullKey) const {
  std::optional<std::size_t> place;
  bool inKey = false;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    if (lines_[i].kind == Kind::Section) inKey = isSectionOf(lines_[i], fullKey);
    if (inKey && lines_[i].kind != Kind::Other) place = i + 1;
  }
  return place;
}

void Registry::createKey(std::string_view key) {
  const std::string fullKey = fullKeyOf(key);
  if (placeForValue(fullKey)) return;
  if (!lines_.empty() && !isBlank(lines_.back())) {
    insert(lines_.size(), "");
  }
  insert(lines_.size(), registrySectionLine(fullKey));
}

void Registry::setValue(std::string_view key, std::string_view name, std::string_view text) {
  const std::string fullKey = fullKeyOf(key);
  if (const RegistryLine* line = findValue(fullKey, name)) {
    if (decodeRegistryText(line->data) == text) return;
    const std::string spelled = decodeRegistryText(line->name);
    const auto place = static_cast<std::size_t>(line - lines_.data());
    lines_[place] = makeLine(registryValueLine(spelled, text) + lineEnd_);
    return;
  }
  createKey(key);
  insert(*placeForValue(fullKey), registryValueLine(name, text));
}

bool Registry::removeValue(std::string_view key, std::string_view name) {
  const std::string fullKey = fullKeyOf(key);
  bool inKey = false;
  return std::erase_if(lines_, [&](const RegistryLine& line) {
           if (line.kind == Kind::Section) inKey = isSectionOf(line, fullKey);
           return inKey && line.kind == Kind::Value && isNamed(line.name, name);
         }) > 0;
}

// A section goes from its own line to its last value; comments below that may belong to what follows. The
// blank line ahead of it, which parted it from others, goes as well.
bool Registry::removeKey(std::string_view key) {
  const std::string fullKey = fullKeyOf(key);
  std::vector<RegistryLine> kept;
  std::size_t sectionEnd = 0;
  bool removed = false;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    if (isSectionAtOrBelow(lines_[i], fullKey)) {
      removed = true;
      if (!kept.empty() && isBlank(kept.back())) kept.pop_back();
      sectionEnd = i + 1;
      for (std::size_t j = i + 1; j < lines_.size() && lines_[j].kind != Kind::Section; ++j) {
        if (lines_[j].kind == Kind::Value) sectionEnd = j + 1;
      }
    }
    if (i >= sectionEnd) kept.push_back(lines_[i]);
  }
  lines_ = std::move(kept);
  return removed;
}

}  // namespace forgeyard
