#include "platform/storage/root_storage.h"

#include <utility>

#include "platform/storage/compound_file/compound_layout.h"
#include "platform/storage/compound_file/compound_writer.h"
#include "platform/storage/disk/model_path.h"

namespace forgeyard::compound {
namespace {

// Writes the whole tree into a file.
auto writerOf(const CompoundLayout& layout) {
  return [&layout](HostFile& file) { writeCompoundFile(layout, file); };
}

bool isUnlocked(std::uint32_t mode) {
  return (mode & STGM_SHARE_DENY_NONE) != 0;
}

OpenMode rootMode(std::uint32_t mode) {
  const OpenMode wanted = parseMode(mode & ~STGM_SHARE_DENY_NONE);
  // A root that isn't transacted would have to write each change at once, which can't be done safely.
  if (wanted.write && !wanted.transacted) throw StatusError(STG_E_INVALIDFUNCTION);
  if (wanted.write && isUnlocked(mode)) throw StatusError(STG_E_INVALIDFUNCTION);
  return wanted;
}

// The file of a new root: the one that stands there, whose contents go with the first commit, or an empty
// one.
struct NewRoot {
  LockedFile file;
  bool unwritten;
};

NewRoot openToReplace(const FilePlace& place) {
  return {LockedFile::open(place, true), true};
}

NewRoot createEmpty(const FilePlace& place, const StorageTree& empty) {
  const CompoundLayout layout(empty);
  return {LockedFile::create(place, writerOf(layout)), false};
}

NewRoot replaceOrCreate(const FilePlace& place, const StorageTree& empty) {
  try {
    return openToReplace(place);
  } catch (const StatusError& error) {
    if (error.status() != STG_E_FILENOTFOUND) throw;
  }
  try {
    return createEmpty(place, empty);
  } catch (const StatusError& error) {
    // Somebody made the file in between.
    if (error.status() != STG_E_FILEALREADYEXISTS) throw;
  }
  return openToReplace(place);
}

}  // namespace

RootView::RootView(LockedFile file, const BString& name, OpenMode mode, CompoundContents contents,
                   bool unwritten)
    : StorageView(std::make_shared<Session>(file.place()), nullptr, name, mode, contents.root),
      file_(std::move(file)),
      committed_(std::move(contents.root)),
      damage_(std::move(contents.damage)),
      unwritten_(unwritten) {}

void RootView::commitOwn(std::uint32_t flags) {
  if (own_ == committed_ && !unwritten_) return;
  const CompoundLayout layout(*own_);
  const HRESULT durable = file_.replace(writerOf(layout), (flags & STGC_ONLYIFCURRENT) != 0);
  // From here on the new file stands there, even if a power failure could still bring the old one back.
  unwritten_ = failed(durable);
  committed_ = own_;
  moveStreams(layout, file_.file());
  check(durable);
}

HRESULT RootView::SwitchToFile(const BString& path) {
  return run([&] {
    requireWritable();
    const CompoundLayout layout(*committed_);
    const FilePlace place = FilePlace::resolve(file_.place().calls(), hostPathOf(path));
    file_ = LockedFile::create(place, writerOf(layout));
    name_ = path;
    unwritten_ = false;
    moveStreams(layout, file_.file());
  });
}

HRESULT RootView::Findings(std::vector<BString>* out) {
  if (!out) return STG_E_INVALIDPOINTER;
  return run([&] {
    out->clear();
    for (const std::string& sentence : damage_) out->push_back(BString::fromNarrow(sentence));
  });
}

Ref<IStorage> createRoot(FileCalls& calls, const std::string& hostPath, const BString& name,
                         std::uint32_t mode) {
  const OpenMode wanted = rootMode(mode);
  if (!wanted.write) throw StatusError(STG_E_INVALIDFUNCTION);
  const FilePlace place = FilePlace::resolve(calls, hostPath);
  CompoundContents empty{.root = std::make_shared<StorageTree>(), .damage = {}};
  NewRoot fresh = wanted.create ? replaceOrCreate(place, *empty.root) : createEmpty(place, *empty.root);
  return make<RootStorage>(std::move(fresh.file), name, wanted, std::move(empty), fresh.unwritten);
}

Ref<IStorage> openRoot(FileCalls& calls, const std::string& hostPath, const BString& name,
                       std::uint32_t mode) {
  const OpenMode wanted = rootMode(mode);
  if (wanted.create) throw StatusError(STG_E_INVALIDFUNCTION);
  const FilePlace place = FilePlace::resolve(calls, hostPath);
  LockedFile file = isUnlocked(mode) ? LockedFile::peek(place) : LockedFile::open(place, wanted.write);
  CompoundContents contents = readCompoundFile(file.file());
  return make<RootStorage>(std::move(file), name, wanted, std::move(contents), false);
}

}  // namespace forgeyard::compound
