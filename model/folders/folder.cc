#include "model/folders/folder.h"

#include <algorithm>
#include <array>

#include "model/folders/file_names.h"
#include "model/folders/folder_settings.h"
#include "model/folders/source_file.h"
#include "model/folders/source_files.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr const char16_t* kFilesStream = u"SourceFiles";

enum Notification : std::int32_t { kSourceFiles = 1, kName = 2, kExtension = 3 };

IUnknown* identity(ISourceFile* file) {
  return query<IUnknown>(file).get();
}

const std::shared_ptr<const std::vector<BString>>& noFiles() {
  static const auto none = std::make_shared<const std::vector<BString>>();
  return none;
}

}  // namespace

// IFolder

HRESULT CFolder::get_SourceFiles(Ref<ISourceFiles>* out) {
  return guard([&] { *out = make<CSourceFiles>(Ref<CFolder>(this)); });
}

HRESULT CFolder::get_Name(BString* value) {
  *value = name();
  return S_OK;
}

HRESULT CFolder::put_Name(const BString& value) {
  return guard([&] {
    setName(value);
    notify(kName);
  });
}

HRESULT CFolder::get_Extension(BString* value) {
  *value = extension_;
  return S_OK;
}

HRESULT CFolder::put_Extension(const BString& value) {
  return guard([&] {
    if (extension_ != value) markChanged();
    extension_ = value;
    notify(kExtension);
  });
}

HRESULT CFolder::get_Enabled(std::int32_t* value) {
  return guard([&] { check(activeSettings().as<IFolderSettings>()->get_Enabled(value)); });
}

HRESULT CFolder::put_Enabled(std::int32_t value) {
  return guard([&] { check(activeSettings().as<IFolderSettings>()->put_Enabled(value)); });
}

HRESULT CFolder::OnNew(std::int32_t* addToProject) {
  return guard([&] {
    *addToProject = 0;
    std::array<DialogField, 2> fields{DialogField{u"&Name of the new folder:", u""},
                                      DialogField{u"File e&xtensions:", u""}};
    if (!askForFields(u"New Folder", fields)) return;
    setName(fields[0].text);
    extension_ = fields[1].text;
    *addToProject = 1;
  });
}

// The files

void CFolder::know() {
  if (!known_.empty()) return;
  known_.reserve(files_.size() + 1);
  for (const Ref<ISourceFile>& file : files_) known_.insert(identity(file.get()));
}

bool CFolder::add(ISourceFile* file) {
  know();
  if (!known_.insert(identity(file)).second) return false;
  files_.emplace_back(file);
  filesChanged_ = true;
  fileNamesChanged();
  return true;
}

bool CFolder::remove(ISourceFile* file) {
  const auto found = std::find_if(files_.begin(), files_.end(), [&](const Ref<ISourceFile>& other) {
    return sameObject(other.get(), file);
  });
  if (found == files_.end()) return false;
  known_.erase(identity(file));
  files_.erase(found);
  filesChanged_ = true;
  fileNamesChanged();
  return true;
}

void CFolder::remove(const std::unordered_set<IUnknown*>& identities) {
  known_.clear();
  const auto gone = [&](const Ref<ISourceFile>& file) { return identities.contains(identity(file.get())); };
  if (std::erase_if(files_, gone) == 0) return;
  filesChanged_ = true;
  fileNamesChanged();
}

void CFolder::filesChanged() {
  notify(kSourceFiles);
  if (const Ref<IProject> project = owner()) check(project->SourceFilesChanged());
}

// The build

void CFolder::StartTask() {
  check(BuildResult(E_BTR_COMPLETED, 0));
}

bool CFolder::enabledNow() {
  std::int32_t enabled = 0;
  return succeeded(get_Enabled(&enabled)) && enabled != 0;
}

CFolder::FileList CFolder::outputFiles() {
  if (!enabledNow()) return noFiles();
  if (names_ && namesGeneration_ == fileNamesGeneration()) return names_;
  std::vector<BString> names(files_.size());
  for (std::size_t i = 0; i < files_.size(); ++i) check(files_[i]->get_Name(&names[i]));
  if (!names_ || *names_ != names) names_ = std::make_shared<const std::vector<BString>>(std::move(names));
  namesGeneration_ = fileNamesGeneration();
  return names_;
}

HRESULT CFolder::OutputFilesEnum(Ref<IEnumString>* out) {
  return guard([&] {
    *out = nullptr;
    if (owner()) *out = make<ListEnumerator<IEnumString>>(outputFiles());
  });
}

HRESULT CFolder::InputFilesEnum(Ref<IEnumString>* out) {
  *out = nullptr;
  return S_OK;
}

// Settings

Ref<IUnknown> CFolder::newSettings() {
  return Ref<IUnknown>(static_cast<IFolderSettings*>(make<CFolderSettings>().get()));
}

Ref<IUnknown> CFolder::cloneSettings(IUnknown& settings) {
  Ref<IFolderSettings> clone;
  check(query<IFolderSettings>(&settings)->get_Clone(&clone));
  return Ref<IUnknown>(clone.get());
}

void CFolder::endTransaction(bool apply) {
  if (!apply) setName(savedName_);
}

void CFolder::closing() {
  files_.clear();
  known_.clear();
  names_ = nullptr;
  fileNamesChanged();
}

// Persistence

HRESULT CFolder::GetClassID(Guid* out) {
  *out = CLSID_Folder;
  return S_OK;
}

bool CFolder::contentsDirty() {
  if (filesChanged_) return true;
  return std::any_of(files_.begin(), files_.end(), [](const Ref<ISourceFile>& file) {
    const Ref<IPersistStream> record = file.as<IPersistStream>();
    return record && record->IsDirty() == S_OK;
  });
}

void CFolder::describeRecord(RecordFields& fields) {
  describeName(fields);
  fields.text(u"Extension", extension_);
  describeId(fields);
}

void CFolder::loadStreams(IStorage& storage) {
  Ref<IStream> stream;
  if (failed(storage.OpenStream(kFilesStream, STGM_READ | STGM_SHARE_EXCLUSIVE, &stream))) return;
  loadFiles(*stream);
}

void CFolder::loadFiles(IStream& stream) {
  constexpr std::uint32_t kSmallestRecord = 12;
  RecordReader record(&stream);
  SourceFileReader reader(record, owner().get());
  record.u32();  // version
  std::uint32_t left = record.count(kSmallestRecord);
  files_.reserve(files_.size() + left);
  for (; left > 0; --left) {
    const auto file = make<CSourceFile>();
    file->load(reader);
    files_.emplace_back(file);
  }
  filesChanged_ = false;
}

void CFolder::describeStreams(RecordStreams& streams) {
  streams.list({kFilesStream, u"files", true, {}},
               [](RecordFields& fields) { make<CSourceFile>()->describe(fields); });
}

void CFolder::saveStreams(IStorage& storage) {
  const Ref<IStream> stream = streamForWriting(storage, kFilesStream);
  RecordWriter record(stream.get());
  record.u32(0);
  record.u32(static_cast<std::uint32_t>(files_.size()));
  for (const Ref<ISourceFile>& file : files_) {
    const Ref<IPersistStream> saved = file.as<IPersistStream>();
    check(saved ? saved->Save(stream.get(), true) : E_NOINTERFACE);
  }
}

}  // namespace forgeyard
