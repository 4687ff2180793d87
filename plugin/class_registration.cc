#include "plugin/class_registration.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "plugin/object_map.h"
#include "typelib/classes.h"

namespace forgeyard {

namespace {

constexpr std::string_view kClasses = R"(HKEY_CLASSES_ROOT\)";

struct Category {
  Guid id;
  const char* name;
};

// What single classes have beside what all have, below the key of the class.
struct Detail {
  const char* subkey;  // empty: the key of the class itself
  const char* value;
  const char* text;
};

struct Details {
  std::string_view name;
  std::span<const Category> categories;
  std::span<const Detail> details = {};
};

constexpr std::array kLoadedObject{Category{CATID_UseCommands, "I Use Commands"},
                                   Category{CATID_LoadedObject, "Loaded Object"}};
constexpr std::array kCommands{Category{CATID_UseCommands, "I Use Commands"}};
constexpr std::array kWindowCommands{Category{CATID_UseCommands, "use commands"}};
constexpr std::array kComponent{Category{CATID_BuildComponent, "Build Componenent"}};

constexpr std::array kFolderDetails{
    Detail{"Description", "", "A folder component groups source files with common settings"}};

// These name the pane in the host's menu of panes.
constexpr std::array kWorkspaceDetails{
    Detail{"MenuText", "", "&Workspace"},    Detail{"MenuHelp", "", "Workspace View"},
    Detail{"Version", "", "1.0.0"},          Detail{"Description", "", "Description of Workspace"},
    Detail{"Name", "", "KV Workspace Pane"}, Detail{"Company", "", "Korvel Ltd"},
    Detail{"", "Category", "Corvane"},
};

constexpr std::array kDetails{
    Details{"BuildTool", kLoadedObject},
    Details{"BuildCategories", kLoadedObject},
    Details{"FolderLO", kLoadedObject},
    Details{"WorkspaceLO", kLoadedObject},
    Details{"CmdLineLO", kLoadedObject},
    Details{"CcLO", kLoadedObject},
    Details{"AsmLO", kLoadedObject},
    Details{"LinkerLO", kLoadedObject},
    Details{"SourceControl", kLoadedObject},
    Details{"Project", kCommands},
    Details{"FolderPane", kCommands},
    Details{"CmdLineWindow", kWindowCommands},
    Details{"CcWindow", kWindowCommands},
    Details{"AsmWindow", kWindowCommands},
    Details{"LinkerWindow", kWindowCommands},
    Details{"FolderWindow", kWindowCommands},
    Details{"Workspace", kWindowCommands, kWorkspaceDetails},
    Details{"Folder", kComponent, kFolderDetails},
};

Details detailsOf(std::string_view name) {
  const auto found =
      std::find_if(kDetails.begin(), kDetails.end(), [&](const Details& d) { return d.name == name; });
  return found == kDetails.end() ? Details{} : *found;
}

std::string braced(const Guid& guid) {
  return "{" + formatGuid(guid) + "}";
}

void addDetails(std::vector<RegistryEntry>& entries, const std::string& key, const Details& own) {
  for (const Detail& detail : own.details) {
    const std::string subkey = *detail.subkey ? std::string("\\") + detail.subkey : "";
    entries.push_back({key + subkey, detail.value, detail.text});
  }
  for (const Category& category : own.categories) {
    entries.push_back({key + R"(\Implemented Categories\)" + braced(category.id), "", category.name});
  }
}

}  // namespace

std::string RegisteredClass::classKey() const {
  return std::string(kClasses) + R"(CLSID\)" + braced(clsid);
}

std::string RegisteredClass::programKey() const {
  return std::string(kClasses) + "KV." + name;
}

std::string RegisteredClass::versionedProgramKey() const {
  return programKey() + ".1";
}

std::vector<RegistryEntry> RegisteredClass::entries(const std::string& modulePath) const {
  const std::string title = std::string(name) + " Class";
  const std::string program = std::string("KV.") + name;
  const std::string key = classKey();
  std::vector<RegistryEntry> entries{
      {versionedProgramKey(), "", title},
      {versionedProgramKey() + R"(\CLSID)", "", braced(clsid)},
      {programKey(), "", title},
      {programKey() + R"(\CurVer)", "", program + ".1"},
      {programKey() + R"(\CLSID)", "", braced(clsid)},
      {key, "", title},
      {key + R"(\ProgID)", "", program + ".1"},
      {key + R"(\VersionIndependentProgID)", "", program},
      {key + R"(\Programmable)", "", std::nullopt},
      {key + R"(\InprocServer32)", "", modulePath},
      {key + R"(\InprocServer32)", "ThreadingModel", "Apartment"},
  };
  addDetails(entries, key, detailsOf(name));
  return entries;
}

const std::vector<RegisteredClass>& registeredClasses() {
  static const std::vector<RegisteredClass> all = [] {
    std::vector<RegisteredClass> classes;
    const auto add = [&](const Guid& clsid, const char* name) {
      const bool known = std::any_of(classes.begin(), classes.end(),
                                     [&](const RegisteredClass& c) { return c.clsid == clsid; });
      if (!known) classes.push_back({clsid == CLSID_DataObjectInMap ? CLSID_DataObject : clsid, name});
    };
    const std::span map(objectMap());
    for (const ClassEntry& entry : map.first(map.size() - 1)) add(entry.clsid, entry.name);
    for (const ClassEntry& entry : hostLibraryClasses()) add(entry.clsid, entry.name);
    add(CLSID_BuildCategories, "BuildCategories");
    return classes;
  }();
  return all;
}

}  // namespace forgeyard
