#pragma once

#include <vector>

#include "platform/com/enumerators.h"
#include "platform/com/type_info.h"
#include "typelib/collections.h"

namespace forgeyard {

struct IProject;

// One file with its dependencies and source control state.
struct ISourceFile : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7015-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Name(BString* value) = 0;  // full path
  virtual HRESULT put_Name(const BString& value) = 0;
  virtual HRESULT get_PersistAs(BString* value) = 0;  // as stored: relative when it begins with a dot
  virtual HRESULT put_PersistAs(const BString& value) = 0;
  virtual HRESULT get_Project(Ref<IProject>* out) = 0;
  virtual HRESULT put_Project(IProject* value) = 0;
  virtual HRESULT AddManualDep(const BString& name) = 0;
  virtual HRESULT RemoveManualDep(const BString& name) = 0;
  virtual HRESULT get_ManualDeps(Ref<ISimpleCollection>* out) = 0;
  virtual HRESULT get_AutomaticDeps(Ref<ISimpleCollection>* out) = 0;
  // The object must offer IEnumString.
  virtual HRESULT put_AutomaticDeps(IUnknown* names) = 0;
  virtual HRESULT get_SourceControl(std::int32_t* value) = 0;
  virtual HRESULT put_SourceControl(std::int32_t value) = 0;
  // Both succeed and write nothing: times are read from the disk.
  virtual HRESULT get_LastUpdated(double* value) = 0;
  virtual HRESULT get_LastUpdatedDeps(double* value) = 0;
};

// Inside the module only: the dependency lists of a source file without a copy. Valid until the file changes.
struct ISourceFileDependencies : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D701F-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual const std::vector<BString>& manualDependencies() const = 0;
  virtual const std::vector<BString>& automaticDependencies() const = 0;
};

struct ISourceFiles : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7016-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Item(const Variant& index, Ref<ISourceFile>* out) = 0;
  virtual HRESULT Add(ISourceFile* file) = 0;
  virtual HRESULT get_Count(std::int32_t* value) = 0;
  virtual HRESULT get__NewEnum(Ref<IUnknown>* out) = 0;  // IEnumVARIANT of ISourceFile
  virtual HRESULT Delete(ISourceFile* file) = 0;
  virtual HRESULT New(Ref<ISourceFile>* out) = 0;
  virtual HRESULT AddMulti(IEnumUnknown* files) = 0;
  virtual HRESULT RemoveMulti(IEnumUnknown* files) = 0;
};

// The component that holds source files.
struct IFolder : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7017-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_SourceFiles(Ref<ISourceFiles>* out) = 0;
  virtual HRESULT get_Name(BString* value) = 0;
  virtual HRESULT put_Name(const BString& value) = 0;
  virtual HRESULT get_Extension(BString* value) = 0;
  virtual HRESULT put_Extension(const BString& value) = 0;
  // In the active configuration.
  virtual HRESULT get_Enabled(std::int32_t* value) = 0;
  virtual HRESULT put_Enabled(std::int32_t value) = 0;
};

// Inside the module only: a folder's files without a copy. Both are valid until the folder or a file changes.
struct IFolderFiles : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7032-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual const std::vector<Ref<ISourceFile>>& sourceFiles() const = 0;
  // What OutputFilesEnum walks: the same list object until a name, the files or the enabled state change.
  virtual std::shared_ptr<const std::vector<BString>> outputFiles() = 0;
};

struct IFolderSettings : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7018-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Enabled(std::int32_t* value) = 0;
  virtual HRESULT put_Enabled(std::int32_t value) = 0;
  virtual HRESULT get_Clone(Ref<IFolderSettings>* out) = 0;
};

FORGEYARD_DUAL(ISourceFile)
FORGEYARD_DUAL(ISourceFiles)
FORGEYARD_DUAL(IFolder)
FORGEYARD_DUAL(IFolderSettings)

}  // namespace forgeyard
