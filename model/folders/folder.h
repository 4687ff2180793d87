#pragma once

#include <memory>
#include <unordered_set>
#include <vector>

#include "engine/component/component_base.h"
#include "engine/self_documentation/diagnostics.h"
#include "engine/self_documentation/self_documenting.h"
#include "platform/com/connection_point.h"
#include "typelib/folder.h"

namespace forgeyard {

// The component that holds source files: it has no inputs, does no work in a build and gives the full names
// of its files to what it is connected to, unless it is disabled in the active configuration. Main thread
// only.
class CFolder final : public ComObject<Dual<IFolder>, CComponentBase, ConnectionPoints<IPropertyNotifySink>,
                                       IFolderFiles, SelfDocumenting> {
 public:
  // IFolder
  HRESULT get_SourceFiles(Ref<ISourceFiles>* out) override;
  HRESULT get_Name(BString* value) override;
  HRESULT put_Name(const BString& value) override;
  HRESULT get_Extension(BString* value) override;
  HRESULT put_Extension(const BString& value) override;
  HRESULT get_Enabled(std::int32_t* value) override;
  HRESULT put_Enabled(std::int32_t value) override;

  // IComponent
  HRESULT OnNew(std::int32_t* addToProject) override;

  // IPersistStorage
  HRESULT GetClassID(Guid* out) override;

  // IBuilderPrivate
  HRESULT OutputFilesEnum(Ref<IEnumString>* out) override;
  HRESULT InputFilesEnum(Ref<IEnumString>* out) override;

  // IFolderFiles
  const std::vector<Ref<ISourceFile>>& sourceFiles() const override { return files_; }
  std::shared_ptr<const std::vector<BString>> outputFiles() override;

  // For the collection of its files. Each tells nobody: the caller ends with filesChanged().

  // False for a file that is in the folder already.
  bool add(ISourceFile* file);
  // False for a file that isn't there.
  bool remove(ISourceFile* file);
  // Removes all that are there.
  void remove(const std::unordered_set<IUnknown*>& identities);
  // Tells the folder's sinks and the project that files came or went.
  void filesChanged();
  Ref<IProject> owner() const { return project(); }

 private:
  using FileList = std::shared_ptr<const std::vector<BString>>;

  // CBuilderInputOutput
  void OnTaskEnded() override {}
  void StartTask() override;
  void ReportResult(e_btr) override {}

  // CComponentBase
  Ref<IUnknown> newSettings() override;
  Ref<IUnknown> cloneSettings(IUnknown& settings) override;
  void settingsApplied(IUnknown&, IUnknown&) override {}
  const char16_t* streamName() const override { return u"FolderSettings"; }
  void describeRecord(RecordFields& fields) override;
  void loadStreams(IStorage& storage) override;
  void saveStreams(IStorage& storage) override;
  void describeStreams(RecordStreams& streams) override;
  void closing() override;
  bool contentsDirty() override;
  void contentsSaved() override { filesChanged_ = false; }
  void snapshot() override { savedName_ = name(); }
  void endTransaction(bool apply) override;

  const History& history() const override;

  void loadFiles(IStream& stream);
  void know();
  bool enabledNow();

  BString extension_;
  BString savedName_;
  std::vector<Ref<ISourceFile>> files_;
  // Identities of files_, once one was asked for; else empty.
  std::unordered_set<IUnknown*> known_;
  bool filesChanged_ = false;
  // The names of all files as of a generation of names.
  FileList names_;
  std::uint64_t namesGeneration_ = 0;
  Diagnostics diagnostics_{static_cast<IFolder*>(this)};
};

}  // namespace forgeyard
