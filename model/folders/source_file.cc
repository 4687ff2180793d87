#include "model/folders/source_file.h"

#include <algorithm>

#include "engine/simple_collection.h"
#include "model/folders/file_names.h"
#include "platform/paths/shell_path.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr std::uint32_t kRecordVersion = 2;

enum Notification : std::int32_t { kName = 1, kPersistAs = 2, kProject = 3, kSourceControl = 9 };

// A dependency as it is kept: canonical, with a dot in place of the working directory.
BString keptForm(const BString& name, const BString& workingDirectory) {
  std::u16string path(name.view());
  std::replace(path.begin(), path.end(), u'/', u'\\');
  if (auto canonical = PathCanonicalizeA(std::u16string_view(path), kNoPathLimit))
    path = std::move(*canonical);
  return persistedName(path, workingDirectory);
}

}  // namespace

SourceFileReader::SourceFileReader(RecordReader& record, IProject* owner)
    : LoadFields(record), project(owner), record_(record), pool_(NamePool::shared()) {
  if (!owner) return;
  BString directory;
  check(owner->get_WorkingDirectory(&directory));
  directory_ = directory.view();
  PathAddBackslashA(directory_);
}

void SourceFileReader::text(std::u16string_view, BString& value) {
  value = interned();
}

void SourceFileReader::fileName(std::u16string_view, const BString& persistAs, BString& value) {
  if (project && persistAs.view().starts_with(u'.')) {
    record_.listedString(buffer_);
    value = resolve(persistAs);
  } else {
    value = interned();
  }
}

void SourceFileReader::texts(std::u16string_view, std::vector<BString>& value, bool stored) {
  constexpr std::uint32_t kSmallestEntry = 4;
  if (!stored) return;
  std::uint32_t left = record_.count(kSmallestEntry);
  value.clear();
  value.reserve(left);
  for (; left > 0; --left) value.push_back(interned());
}

BString SourceFileReader::resolve(const BString& persistAs) {
  buffer_ = directory_;
  buffer_ += persistAs.view();
  const auto canonical = PathCanonicalizeA(std::u16string_view(buffer_), kNoPathLimit);
  return canonical ? BString(*canonical) : BString(buffer_);
}

// ISourceFile

HRESULT CSourceFile::get_Name(BString* value) {
  *value = name_;
  return S_OK;
}

HRESULT CSourceFile::put_Name(const BString& value) {
  return guard([&] {
    if (name_ != value) changed_ = true;
    name_ = value;
    fileNamesChanged();
    notify(kName);
  });
}

// Reading tells the sinks, writing doesn't; clients are used to it.
HRESULT CSourceFile::get_PersistAs(BString* value) {
  return guard([&] {
    *value = persistAs_;
    notify(kPersistAs);
  });
}

HRESULT CSourceFile::put_PersistAs(const BString& value) {
  if (persistAs_ != value) changed_ = true;
  persistAs_ = value;
  return S_OK;
}

HRESULT CSourceFile::get_Project(Ref<IProject>* out) {
  *out = project_.lock();
  return S_OK;
}

HRESULT CSourceFile::put_Project(IProject* value) {
  return guard([&] {
    project_ = WeakRef<IProject>(value);
    notify(kProject);
  });
}

HRESULT CSourceFile::AddManualDep(const BString& name) {
  return guard([&] {
    manualDeps_.push_back(NamePool::shared()->intern(name));
    changed_ = true;
  });
}

HRESULT CSourceFile::RemoveManualDep(const BString& name) {
  if (std::erase(manualDeps_, BString(name)) != 0) changed_ = true;
  return S_OK;
}

HRESULT CSourceFile::get_ManualDeps(Ref<ISimpleCollection>* out) {
  return guard([&] { *out = make<CSimpleCollection>(manualDeps_); });
}

HRESULT CSourceFile::get_AutomaticDeps(Ref<ISimpleCollection>* out) {
  return guard([&] { *out = make<CSimpleCollection>(automaticDeps_); });
}

BString CSourceFile::workingDirectory() const {
  BString directory;
  if (IProject* project = project_.get()) check(project->get_WorkingDirectory(&directory));
  return directory;
}

HRESULT CSourceFile::put_AutomaticDeps(IUnknown* names) {
  return guard([&] {
    const Ref<IEnumString> walk = query<IEnumString>(names);
    if (!walk) return;
    const BString directory = workingDirectory();
    const std::shared_ptr<NamePool> pool = NamePool::shared();
    std::vector<BString> list;
    forEach(walk, [&](const BString& name) { list.push_back(pool->intern(keptForm(name, directory))); });
    if (list == automaticDeps_) return;
    list.shrink_to_fit();
    automaticDeps_ = std::move(list);
    changed_ = true;
  });
}

HRESULT CSourceFile::get_SourceControl(std::int32_t* value) {
  *value = sourceControl_;
  return S_OK;
}

HRESULT CSourceFile::put_SourceControl(std::int32_t value) {
  return guard([&] {
    if (sourceControl_ == value) return;
    sourceControl_ = value;
    changed_ = true;
    notify(kSourceControl);
  });
}

// File times aren't kept here: they are read from the disk when a build needs them.
HRESULT CSourceFile::get_LastUpdated(double*) {
  return S_OK;
}

HRESULT CSourceFile::get_LastUpdatedDeps(double*) {
  return S_OK;
}

// Events

void CSourceFile::notify(std::int32_t id) const {
  if (sinks_) sinks_->fire([id](IPropertyNotifySink& sink) { ignore(sink.OnChanged(id)); });
}

HRESULT CSourceFile::FindConnectionPoint(const Guid& iid, Ref<IConnectionPoint>* out) {
  return guard([&] {
    *out = nullptr;
    if (iid != IPropertyNotifySink::iid) return CONNECT_E_NOCONNECTION;
    if (!sinks_) sinks_ = make<ConnectionPoint<IPropertyNotifySink>>();
    *out = Ref<IConnectionPoint>(sinks_.get());
    return S_OK;
  });
}

// Persistence

HRESULT CSourceFile::GetClassID(Guid* out) {
  *out = CLSID_SourceFile;
  return S_OK;
}

HRESULT CSourceFile::IsDirty() {
  return changed_ ? S_OK : S_FALSE;
}

HRESULT CSourceFile::Load(IStream* stream) {
  return guard([&] {
    RecordReader record(stream);
    SourceFileReader reader(record, project_.get());
    load(reader);
  });
}

void CSourceFile::load(SourceFileReader& reader) {
  project_ = reader.project;
  describe(reader);
  changed_ = false;
  fileNamesChanged();
}

void CSourceFile::describe(RecordFields& fields) {
  const std::uint32_t version = fields.version(kRecordVersion);
  fields.text(u"PersistAs", persistAs_);
  fields.fileName(u"Name", persistAs_, name_);
  fields.learnt().texts(u"AutomaticDeps", automaticDeps_, version > 0);
  fields.texts(u"ManualDeps", manualDeps_, version > 0);
  fields.number(u"SourceControl", sourceControl_, version > 1);
}

HRESULT CSourceFile::Save(IStream* stream, bool clearDirty) {
  return guard([&] {
    RecordWriter record(stream);
    SaveFields fields(record);
    describe(fields);
    if (clearDirty) changed_ = false;
  });
}

}  // namespace forgeyard
