#include "model/folders/file_index.h"

#include "model/core/enumerate.h"
#include "model/folders/file_names.h"
#include "platform/paths/shell_path.h"
#include "platform/text/fold.h"
#include "platform/text/narrow.h"

namespace forgeyard {

namespace {

constexpr bool isSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDFFF;
}

// Names are compared in their narrow form, and this is how it comes back.
BString compared(const BString& name) {
  const std::u16string_view text = name.view();
  const bool plain = std::none_of(text.begin(), text.end(), isSurrogate);
  return plain ? name : BString::fromNarrow(name.narrow());
}

// Equal for names that differ in case alone.
std::uint32_t foldedHash(std::u16string_view name) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (std::size_t at = 0; at < name.size();) {
    char32_t c = name[at];
    if (c < 0x80) {
      c = foldAscii(c);
      ++at;
    } else {
      const DecodedCharacter next = decodeCharacter(name, at);
      c = foldCharacter(next.codePoint);
      at += next.length;
    }
    hash = (hash ^ c) * 0x100000001B3u;
  }
  return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

// Bringing both names into pretty case first changes nothing, since matching ignores case.
bool matches(const BString& wanted, ISourceFile* file) {
  BString name;
  check(file->get_Name(&name));
  return PathMatchSpecA(wanted.view(), compared(name).view());
}

// A file of this module tells when its name changes.
bool tellsChanges(ISourceFile* file) {
  return static_cast<bool>(query<ISourceFileDependencies>(file));
}

Ref<ISourceFile> walkFolder(const BString& wanted, IFolder& folder) {
  Ref<ISourceFiles> files;
  check(folder.get_SourceFiles(&files));
  Ref<ISourceFile> found;
  forEachObject<ISourceFile>(*files, [&](ISourceFile& file) {
    if (!found && matches(wanted, &file)) found = Ref<ISourceFile>(&file);
  });
  return found;
}

}  // namespace

Ref<ISourceFile> FileIndex::find(const BString& name, const std::vector<Ref<IComponent>>& components,
                                 std::uint64_t componentsVersion) {
  if (generation_ != fileNamesGeneration() || componentsVersion_ != componentsVersion) {
    rebuild(components);
    componentsVersion_ = componentsVersion;
  }
  const BString wanted = compared(name);
  const std::uint32_t plain = findPlain(wanted);
  if (Ref<ISourceFile> earlier = findAsked(wanted, plain)) return earlier;
  return plain < entries_.size() ? Ref<ISourceFile>(entries_[plain].file) : Ref<ISourceFile>();
}

std::uint32_t FileIndex::findPlain(const BString& name) const {
  const std::uint32_t hash = foldedHash(name);
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t at = hash & mask; slots_[at] != 0; at = (at + 1) & mask) {
    const Entry& entry = entries_[slots_[at] - 1];
    if (entry.hash == hash && PathMatchSpecA(name.view(), entry.name.view())) return slots_[at] - 1;
  }
  return static_cast<std::uint32_t>(entries_.size());
}

Ref<ISourceFile> FileIndex::findAsked(const BString& name, std::uint32_t before) const {
  for (const Asked& asked : asked_) {
    if (asked.order >= before) break;
    if (asked.folder) {
      if (Ref<ISourceFile> found = walkFolder(name, *asked.folder)) return found;
    } else if (matches(name, asked.file)) {
      return Ref<ISourceFile>(asked.file);
    }
  }
  return nullptr;
}

void FileIndex::rebuild(const std::vector<Ref<IComponent>>& components) {
  generation_ = 0;
  entries_.clear();
  asked_.clear();
  for (const Ref<IComponent>& component : components) {
    const Ref<IFolder> folder = component.as<IFolder>();
    if (!folder) continue;
    if (const Ref<IFolderFiles> known = folder.as<IFolderFiles>()) {
      entries_.reserve(entries_.size() + known->sourceFiles().size());
      for (const Ref<ISourceFile>& file : known->sourceFiles()) enter(file.get());
    } else {
      asked_.push_back({static_cast<std::uint32_t>(entries_.size()), nullptr, folder.get()});
      entries_.push_back({});
    }
  }
  fillSlots();
  generation_ = fileNamesGeneration();
}

void FileIndex::enter(ISourceFile* file) {
  BString name;
  check(file->get_Name(&name));
  name = compared(name);
  if (!tellsChanges(file) || isMatchSpec(name)) {
    asked_.push_back({static_cast<std::uint32_t>(entries_.size()), file, nullptr});
    entries_.push_back({{}, file, 0});
  } else {
    const std::uint32_t hash = foldedHash(name);
    entries_.push_back({std::move(name), file, hash});
  }
}

// Of names that match each other the first keeps the slot, since a walk would stop there.
void FileIndex::fillSlots() {
  std::size_t size = 64;
  while (size < entries_.size() * 2) size *= 2;
  slots_.assign(size, 0);
  auto nextAsked = asked_.begin();
  for (std::uint32_t i = 0; i < entries_.size(); ++i) {
    if (nextAsked != asked_.end() && nextAsked->order == i) {
      ++nextAsked;
      continue;
    }
    std::size_t at = entries_[i].hash & (size - 1);
    while (slots_[at] != 0) at = (at + 1) & (size - 1);
    slots_[at] = i + 1;
  }
}

}  // namespace forgeyard
