#pragma once

#include <string>
#include <vector>

#include "engine/self_documentation/self_documenting.h"
#include "model/folders/name_pool.h"
#include "platform/com/connection_point.h"
#include "platform/com/weak_ref.h"
#include "platform/storage/records/persist.h"
#include "platform/storage/records/record_fields.h"
#include "typelib/folder.h"
#include "typelib/project.h"

namespace forgeyard {

// What the records of one folder's source files are read with; made once for all of them. Equal texts come
// out as one, and relative names become full ones in the project's working directory.
class SourceFileReader final : public LoadFields {
 public:
  // Borrows the reader; the project may be null.
  SourceFileReader(RecordReader& record, IProject* owner);

  WeakRef<IProject> project;

  void text(std::u16string_view name, BString& value) override;
  void fileName(std::u16string_view name, const BString& persistAs, BString& value) override;
  void texts(std::u16string_view name, std::vector<BString>& value, bool stored) override;

 private:
  BString interned() { return pool_->intern(record_.listedString(buffer_)); }
  // The full path that a persisted name beginning with a dot means in the working directory.
  BString resolve(const BString& persistAs);

  RecordReader& record_;
  std::shared_ptr<NamePool> pool_;
  std::u16string buffer_;
  std::u16string directory_;  // the working directory with a backslash behind it
};

// One file of a folder, with its dependency lists. Owned by the folder; keeps its project weakly. A project
// may have tens of thousands, so an object is small: equal names share one buffer, and its connection point
// is made when the first client asks for it. Main thread only.
class CSourceFile final : public ComObject<Dual<ISourceFile>, IConnectionPointContainer, IPersistStream,
                                           ISourceFileDependencies, SelfDocumenting> {
 public:
  // ISourceFile
  HRESULT get_Name(BString* value) override;
  HRESULT put_Name(const BString& value) override;
  HRESULT get_PersistAs(BString* value) override;
  HRESULT put_PersistAs(const BString& value) override;
  HRESULT get_Project(Ref<IProject>* out) override;
  HRESULT put_Project(IProject* value) override;
  HRESULT AddManualDep(const BString& name) override;
  HRESULT RemoveManualDep(const BString& name) override;
  HRESULT get_ManualDeps(Ref<ISimpleCollection>* out) override;
  HRESULT get_AutomaticDeps(Ref<ISimpleCollection>* out) override;
  HRESULT put_AutomaticDeps(IUnknown* names) override;
  HRESULT get_SourceControl(std::int32_t* value) override;
  HRESULT put_SourceControl(std::int32_t value) override;
  HRESULT get_LastUpdated(double* value) override;
  HRESULT get_LastUpdatedDeps(double* value) override;

  // IConnectionPointContainer
  HRESULT FindConnectionPoint(const Guid& iid, Ref<IConnectionPoint>* out) override;

  // IPersistStream
  HRESULT GetClassID(Guid* out) override;
  HRESULT IsDirty() override;
  HRESULT Load(IStream* stream) override;
  HRESULT Save(IStream* stream, bool clearDirty) override;

  // ISourceFileDependencies
  const std::vector<BString>& manualDependencies() const override { return manualDeps_; }
  const std::vector<BString>& automaticDependencies() const override { return automaticDeps_; }

  // Reads one record; throws StatusError, with the file then half read.
  void load(SourceFileReader& reader);
  void describe(RecordFields& fields);

 private:
  const History& history() const override;
  void notify(std::int32_t id) const;
  BString workingDirectory() const;

  WeakRef<IProject> project_;
  BString persistAs_;
  BString name_;
  std::vector<BString> automaticDeps_;
  std::vector<BString> manualDeps_;
  std::int32_t sourceControl_ = 0;
  bool changed_ = true;  // differs from the file
  Ref<ConnectionPoint<IPropertyNotifySink>> sinks_;
};

}  // namespace forgeyard
