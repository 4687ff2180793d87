#pragma once

#include <optional>

#include "engine/self_documentation/diagnostics.h"
#include "engine/self_documentation/self_documenting.h"
#include "model/core/cookie_table.h"
#include "platform/com/connection_point.h"
#include "platform/com/weak_ref.h"
#include "platform/storage/records/persist.h"
#include "typelib/configuration.h"
#include "typelib/project.h"

namespace forgeyard {

// The cookie of a configuration that names what is built.
inline constexpr const char16_t* kTargetCookie = u"Target";

// What a configuration stores.
struct ConfigurationRecord {
  BString name;
  BString outputDirectory;
  BString intermediateDirectory;
  CookieTable cookies;
  bool buildDirty = true;
  bool updateFileDependencies = true;

  // Fields that an older record lacks keep their defaults.
  void describe(RecordFields& fields);
  friend bool operator==(const ConfigurationRecord&, const ConfigurationRecord&) = default;
};

// A named set of build choices of one project. Owned by the project, of which it keeps a weak reference. Main
// thread only.
class CConfiguration final : public ComObject<Dual<IConfiguration>, IPersistStream, SupportCookies,
                                              ConnectionPoints<IPropertyNotifySink>, SelfDocumenting> {
 public:
  // IConfiguration
  HRESULT get_Name(BString* value) override;
  HRESULT put_Name(const BString& value) override;
  HRESULT get_OutputDirectory(BString* value) override;
  HRESULT put_OutputDirectory(const BString& value) override;
  HRESULT get_IntermediateDirectory(BString* value) override;
  HRESULT put_IntermediateDirectory(const BString& value) override;
  HRESULT BeforeSettings() override;
  HRESULT AfterSettings(std::int32_t apply) override;
  HRESULT get_UpdateFileDependencies(std::int32_t* value) override;
  HRESULT put_UpdateFileDependencies(std::int32_t value) override;
  HRESULT get_BuildDirty(std::int32_t* value) override;
  HRESULT put_BuildDirty(std::int32_t value) override;
  HRESULT put_Project(IProject* value) override;

  // IPersistStream. Dirty is exact: a value that was changed and changed back leaves the record as stored.
  HRESULT GetClassID(Guid* out) override;
  HRESULT IsDirty() override;
  HRESULT Load(IStream* stream) override;
  HRESULT Save(IStream* stream, bool clearDirty) override;

 private:
  // What a dropped settings transaction brings back.
  struct Snapshot {
    BString outputDirectory;
    BString intermediateDirectory;
    BString target;
    bool updateFileDependencies = true;
  };

  const History& history() const override;
  CookieTable& cookies() override { return record_.cookies; }
  // Empty when there is no such cookie.
  BString target() const;
  HRESULT putAndNotify(BString& field, const BString& value, std::int32_t id);
  void restore(const Snapshot& before);
  void markBuildDirty(const Snapshot& before);
  void markToolsDirty(bool targetChanged, bool updateChanged);

  WeakRef<IProject> project_;
  ConfigurationRecord record_;
  ConfigurationRecord stored_;
  bool inFile_ = false;               // stored_ is what the file holds
  std::optional<Snapshot> snapshot_;  // within a settings transaction
  Diagnostics diagnostics_{static_cast<IConfiguration*>(this)};
};

}  // namespace forgeyard
