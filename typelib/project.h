#pragma once

#include <string>
#include <vector>

#include "platform/com/enumerators.h"
#include "platform/com/type_info.h"
#include "typelib/collections.h"

namespace forgeyard {

struct IComponents;
struct IConfiguration;
struct IConfigurations;
struct IConnections;
struct ISourceFile;

// Identifiers of the project's property-change notifications: those of the members.
enum ProjectNotification : std::int32_t {
  kProjectName = 1,
  kProjectWorkingDirectory = 2,
  kProjectFileName = 3,
  kProjectSSRoot = 4,
  kProjectActive = 5,
  kProjectComponents = 6,
  kProjectConfigurations = 12,
  kProjectActiveConfiguration = 13,
  kProjectConnections = 15,
  kProjectSSControl = 16,
  kProjectLoaded = 18,
  kProjectDirty = 19,
  kProjectSourceFilesChanged = 22,
  kProjectExternalDependencies = 24,
  kProjectComponentOutputs = 30,
};

// The root of the project model.
struct IProject : IDispatch {
  using Base = IDispatch;
  static constexpr Guid iid = guid("5B2D7019-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Name(BString* value) = 0;
  virtual HRESULT put_Name(const BString& value) = 0;
  virtual HRESULT get_WorkingDirectory(BString* value) = 0;
  virtual HRESULT put_WorkingDirectory(const BString& value) = 0;
  virtual HRESULT get_FileName(BString* value) = 0;
  virtual HRESULT put_FileName(const BString& value) = 0;
  virtual HRESULT get_SSRoot(BString* value) = 0;
  virtual HRESULT put_SSRoot(const BString& value) = 0;
  virtual HRESULT get_Active(std::int32_t* value) = 0;
  virtual HRESULT put_Active(std::int32_t value) = 0;
  virtual HRESULT get_Components(Ref<IComponents>* out) = 0;
  virtual HRESULT OnClose() = 0;
  virtual HRESULT ProjectLoad() = 0;
  virtual HRESULT ProjectSave() = 0;
  virtual HRESULT ProjectInit() = 0;
  virtual HRESULT InsertFiles(IEnumString* files, IDispatch* folder) = 0;
  virtual HRESULT get_Configurations(Ref<IConfigurations>* out) = 0;
  // 1 and null when there is none.
  virtual HRESULT get_ActiveConfiguration(Ref<IConfiguration>* out) = 0;
  virtual HRESULT put_ActiveConfiguration(IConfiguration* value) = 0;
  virtual HRESULT ManageConfigurations() = 0;
  virtual HRESULT get_Connections(Ref<IConnections>* out) = 0;
  virtual HRESULT get_SSControl(std::int32_t* value) = 0;
  virtual HRESULT put_SSControl(std::int32_t value) = 0;
  virtual HRESULT ProjectClose() = 0;
  virtual HRESULT get_Loaded(std::int32_t* value) = 0;
  virtual HRESULT put_Loaded(std::int32_t value) = 0;
  virtual HRESULT get_Dirty(std::int32_t* value) = 0;
  virtual HRESULT put_Dirty(std::int32_t value) = 0;
  virtual HRESULT get_VSSDatabase(Ref<IUnknown>* out) = 0;
  // Success whether found or not; *file is written only when found.
  virtual HRESULT FindFileInProject(const BString& name, Ref<ISourceFile>* file) = 0;
  virtual HRESULT SourceFilesChanged() = 0;
  virtual HRESULT DeleteComponent(IUnknown* component) = 0;
  virtual HRESULT get_ExternalDependencies(Ref<ISimpleCollection>* out) = 0;
  virtual HRESULT BeforeSettings() = 0;
  virtual HRESULT AfterSettings(std::int32_t apply) = 0;
  virtual HRESULT get_BuildDirty(std::int32_t* value) = 0;
  virtual HRESULT put_BuildDirty(std::int32_t value) = 0;
  virtual HRESULT InsertFiles2(const Variant& file, IDispatch* folder) = 0;
  virtual HRESULT UpdateComponentOutputs() = 0;
};

// What a project tells its components.
struct IProjectE : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D701A-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT OnNewConfiguration(IConfiguration* created, IConfiguration* basedOn) = 0;
  virtual HRESULT OnDeletedConfiguration(IConfiguration* old) = 0;
};

// Something of a project file that a load left out.
struct LoadOmission {
  std::string what;  // the stream or element, or "the rest of the file"
  std::string why;
};

// What went wrong where an operation of the project succeeds all the same; hosts read it behind each load and
// save. A load brings up what it can read; a save that fails leaves the file as it was and the project dirty.
struct IProjectReport : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7031-93C4-4E6F-A8D1-2F60C1B49E01");

  // Of the last load, in the order of the file.
  virtual const std::vector<LoadOmission>& omissions() const = 0;
  // Why the last load opened no file; S_OK when it did.
  virtual HRESULT loadFailure() const = 0;
  // Why the last save wrote nothing; S_OK when it did write.
  virtual HRESULT saveFailure() const = 0;
};

// Many changes in a row as one. With every change a project works out anew what each component takes in and
// makes; between the two calls, which may be nested, it doesn't, and at the last EndChanges once.
struct IProjectChanges : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("8E0C5C1B-6A55-4F0E-9B53-7B1D3A9D2C44");

  virtual HRESULT BeginChanges() = 0;
  // E_UNEXPECTED without a BeginChanges before it.
  virtual HRESULT EndChanges() = 0;
};

FORGEYARD_DUAL(IProject)

}  // namespace forgeyard
