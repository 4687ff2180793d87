// merge: what two sides have made of a project in one.

#include <functional>
#include <nlohmann/json.hpp>

#include "tests/hosts/console/console_sandbox.h"
#include "workbench/merge/merge_projects.h"
#include "workbench/text/json_reader.h"
#include "workbench/text/json_writer.h"

namespace forgeyard::console {

using namespace workbench;
namespace {

using Json = nlohmann::json;
using Edit = std::function<void(Json&)>;
using testing::HasSubstr;

// The parts of a project as dump shows it.
Json& component(Json& project, const std::string& name) {
  for (Json& one : project["components"]) {
    if (one["Name"] == name) return one;
  }
  throw std::out_of_range(name);
}
Json& settings(Json& project, const std::string& name, const std::string& configuration = "Default") {
  for (Json& one : component(project, name)["settings"]) {
    if (one["configuration"] == configuration) return one;
  }
  throw std::out_of_range(configuration);
}
Json& file(Json& project, const std::string& folder, std::size_t number) {
  return component(project, folder)["files"][number];
}
void removeWhere(Json& list, const std::function<bool(const Json&)>& match) {
  for (std::size_t i = list.size(); i-- > 0;) {
    if (match(list[i])) list.erase(i);
  }
}
void removeComponent(Json& project, const std::string& name) {
  const Json id = component(project, name)["Id"];
  removeWhere(project["components"], [&](const Json& one) { return one["Id"] == id; });
  removeWhere(project["connections"], [&](const Json& one) { return one["from"] == id || one["to"] == id; });
}
void removeConfiguration(Json& project, const std::string& name) {
  removeWhere(project["configurations"], [&](const Json& one) { return one["Name"] == name; });
  for (Json& one : project["components"])
    removeWhere(one["settings"], [&](const Json& entry) { return entry["configuration"] == name; });
}
Json& addComponent(Json& project, const std::string& like, const std::string& name, int id) {
  Json made = component(project, like);
  made["element"] = "Component" + std::to_string(id);
  made["Name"] = name;
  made["Id"] = id;
  if (made.contains("files")) made["files"] = Json::array();
  project["components"].push_back(made);
  project["settings"]["NextComponentId"] = id + 1;
  return project["components"].back();
}
void addConfiguration(Json& project, const std::string& name) {
  Json made = project["configurations"][0];
  made["Name"] = name;
  project["configurations"].push_back(made);
  for (Json& one : project["components"]) {
    Json entry = one["settings"][0];
    entry["configuration"] = name;
    one["settings"].push_back(entry);
  }
}
void renameConfiguration(Json& project, const std::string& name, const std::string& now) {
  if (project["active"] == name) project["active"] = now;
  for (Json& one : project["configurations"]) {
    if (one["Name"] == name) one["Name"] = now;
  }
  for (Json& one : project["components"]) {
    for (Json& entry : one["settings"]) {
      if (entry["configuration"] == name) entry["configuration"] = now;
    }
  }
}
void connect(Json& project, int from, int to) {
  project["connections"].push_back({{"from", from}, {"to", to}});
}
void addFile(Json& project, const std::string& folder, const std::string& name) {
  Json made = file(project, "src", 0);
  made["PersistAs"] = ".\\" + name;
  made["Name"] = "\\" + name;
  component(project, folder)["files"].push_back(made);
}
void moveFile(Json& project, const std::string& from, std::size_t number, const std::string& to) {
  const Json moved = file(project, from, number);
  component(project, from)["files"].erase(number);
  component(project, to)["files"].push_back(moved);
}

const Edit emptySource = [](Json& p) {
  moveFile(p, "src", 0, "inc");
  moveFile(p, "src", 0, "inc");
  removeComponent(p, "src");
};
const Edit nothing = [](Json&) {};

struct Case {
  const char* name;
  Edit ours;
  Edit theirs;
  Edit merged;  // from ours
  std::vector<std::string> conflicts;
  const char* note = "";
};

// What comes of a merge in this process.
Json mergedHere(const Json& base, const Json& ours, const Json& theirs) {
  const auto read = [](const Json& project) { return readJson(project.dump()).records; };
  MergeLog log;
  ProjectRecords merged;
  merged.records = mergedProject(read(base), read(ours), read(theirs), log);
  EXPECT_TRUE(log.conflicts.empty() && log.notes.empty());
  return Json::parse(recordsAsJson(merged, Detail::All));
}

class Merge : public ConsoleSandbox {
 protected:
  // Folders "src" (0) with a.c and b.c and "inc" (1), a compiler "cc" (2) and a command line "link" (3).
  Json baseProject() const {
    makeProject();
    put("a.c", "");
    put("b.c", "");
    must({"file", "add", "a.c", "b.c", "--folder", "src"});
    return Json::parse(shown({"dump", "p.nqp"}));
  }
  void restored(const Json& project, const std::string& name) const {
    put("text.json", project.dump());
    must({"restore", "-y", "text.json", name});
  }
};

TEST_F(Merge, EachKindOfChange) {
  const auto conflictIn = [](const std::string& where) { return std::vector{"Conflict: " + where + "\n"}; };
  const Case cases[] = {
      {"two properties of one configuration",
       [](Json& p) { settings(p, "cc")["WarningLevel"] = 2; },
       [](Json& p) { settings(p, "cc")["DebugInfo"] = 1; },
       [](Json& p) { settings(p, "cc")["DebugInfo"] = 1; },
       {}},
      {"the same property in two ways",
       [](Json& p) { settings(p, "cc")["WarningLevel"] = 2; },
       [](Json& p) { settings(p, "cc")["WarningLevel"] = 3; },
       nothing,
       {"Conflict: component \"cc\", configuration \"Default\", WarningLevel\n  base:   1\n  ours:   2 "
        "(kept)\n"
        "  theirs: 3\n"}},
      {"the project's own properties", [](Json& p) { p["settings"]["SSRoot"] = "$/a"; },
       [](Json& p) {
         p["settings"]["SSRoot"] = "$/b";
         p["settings"]["Name"] = "x";
       },
       [](Json& p) { p["settings"]["Name"] = "x"; }, conflictIn("project, SSRoot")},
      {"files of different names",
       [](Json& p) { p["settings"]["FileName"] = "ours.nqp"; },
       [](Json& p) { p["settings"]["FileName"] = "theirs.nqp"; },
       nothing,
       {}},
      {"the same property in one way",
       [](Json& p) { settings(p, "cc")["Options"] = "-g"; },
       [](Json& p) { settings(p, "cc")["Options"] = "-g"; },
       nothing,
       {}},
      {"a name and a setting",
       [](Json& p) { component(p, "cc")["Name"] = "compile"; },
       [](Json& p) { settings(p, "cc", "Small")["Options"] = "-g"; },
       [](Json& p) { settings(p, "compile", "Small")["Options"] = "-g"; },
       {}},
      {"cookies",
       [](Json& p) { p["configurations"][0]["cookies"][0][1] = "native"; },
       [](Json& p) {
         p["configurations"][0]["cookies"].push_back({"Zone", "x"});
       },
       [](Json& p) {
         p["configurations"][0]["cookies"].push_back({"Zone", "x"});
       },
       {}},
      {"one cookie in two ways", [](Json& p) { p["configurations"][0]["cookies"][0][1] = "native"; },
       [](Json& p) { p["configurations"][0]["cookies"][0][1] = "mips"; }, nothing,
       conflictIn("configuration \"Default\", cookie \"Target\"")},
      {"connections",
       [](Json& p) { p["connections"].erase(0); },
       [](Json& p) { connect(p, 1, 3); },
       [](Json& p) { connect(p, 1, 3); },
       {}},
      {"connections that close a circle",
       [](Json& p) { connect(p, 3, 1); },
       [](Json& p) { connect(p, 1, 2); },
       nothing,
       {"Conflict: connection from component \"inc\" to component \"cc\"\n", "circle"}},
      {"a connection to what ours has removed",
       [](Json& p) { removeComponent(p, "link"); },
       [](Json& p) { connect(p, 1, 3); },
       nothing,
       {"component \"link\" is removed"}},
      {"different new components with one number",
       [](Json& p) { addComponent(p, "inc", "mine", 4); },
       [](Json& p) {
         addComponent(p, "cc", "other", 4);
         connect(p, 0, 4);
       },
       [](Json& p) {
         addComponent(p, "cc", "other", 5);
         connect(p, 0, 5);
       },
       {},
       "number 5 now"},
      {"the same new component under two numbers",
       [](Json& p) { addComponent(p, "inc", "docs", 4); },
       [](Json& p) {
         addComponent(p, "inc", "first", 4);
         addComponent(p, "inc", "docs", 5);
         connect(p, 5, 3);
       },
       [](Json& p) {
         addComponent(p, "inc", "first", 6);
         connect(p, 4, 3);
       },
       {}},
      {"new components of one name",
       [](Json& p) { addComponent(p, "inc", "tool", 4); },
       [](Json& p) { addComponent(p, "cc", "tool", 4); },
       [](Json& p) { addComponent(p, "cc", "tool 2", 5); },
       {},
       "\"tool 2\" now"},
      {"a component that theirs has removed",
       [](Json& p) { settings(p, "cc")["DebugInfo"] = 1; },
       [](Json& p) { removeComponent(p, "link"); },
       [](Json& p) { removeComponent(p, "link"); },
       {}},
      {"a component that one has removed and the other changed", [](Json& p) { removeComponent(p, "link"); },
       [](Json& p) { settings(p, "link")["Command"] = "x"; }, nothing, conflictIn("component \"link\"")},
      {"the other way round", [](Json& p) { settings(p, "link")["Command"] = "x"; },
       [](Json& p) { removeComponent(p, "link"); }, nothing, conflictIn("component \"link\"")},
      {"a component that theirs, with a new configuration, has removed",
       [](Json& p) { settings(p, "link")["Command"] = "x"; },
       [](Json& p) {
         removeComponent(p, "link");
         addConfiguration(p, "New");
       },
       [](Json& p) {
         addConfiguration(p, "New");
         settings(p, "link", "New")["BuildDirty"] = 1;
       },
       conflictIn("component \"link\"")},
      {"files of both",
       [](Json& p) { addFile(p, "src", "ours.c"); },
       [](Json& p) { addFile(p, "src", "theirs.c"); },
       [](Json& p) { addFile(p, "src", "theirs.c"); },
       {}},
      {"a file that is gone and another one's dependencies",
       [](Json& p) { component(p, "src")["files"].erase(0); },
       [](Json& p) { file(p, "src", 1)["ManualDeps"] = {"x.h"}; },
       [](Json& p) { file(p, "src", 0)["ManualDeps"] = {"x.h"}; },
       {}},
      {"a file that has moved and changed",
       [](Json& p) { moveFile(p, "src", 0, "inc"); },
       [](Json& p) { file(p, "src", 0)["ManualDeps"] = {"x.h"}; },
       [](Json& p) { file(p, "inc", 0)["ManualDeps"] = {"x.h"}; },
       {}},
      {"a file that has moved two ways",
       [](Json& p) {
         addComponent(p, "inc", "one", 4);
         moveFile(p, "src", 0, "one");
       },
       [](Json& p) { moveFile(p, "src", 0, "inc"); },
       nothing,
       {"Conflict: file \".\\\\a.c\", folder\n  base:   component \"src\"\n  ours:   component \"one\" "
        "(kept)\n"}},
      {"a new file in a folder that ours has removed", [](Json& p) { removeComponent(p, "inc"); },
       [](Json& p) { addFile(p, "inc", "new.h"); }, nothing, conflictIn(R"(file ".\\new.h")")},
      {"a file that has moved to a folder that ours has removed",
       [](Json& p) {
         removeComponent(p, "inc");
         component(p, "src")["files"].erase(1);
       },
       [](Json& p) { moveFile(p, "src", 0, "inc"); }, nothing, conflictIn(R"(file ".\\a.c")")},
      {"a changed file of a folder that theirs has emptied and removed",
       [](Json& p) { file(p, "src", 0)["ManualDeps"] = {"x.h"}; },
       emptySource,
       emptySource,
       {}},
      {"dependencies that builds have found",
       [](Json& p) {
         file(p, "src", 0)["AutomaticDeps"] = {"a.h", "b.h"};
       },
       [](Json& p) {
         file(p, "src", 0)["AutomaticDeps"] = {"a.h", "c.h"};
       },
       [](Json& p) {
         file(p, "src", 0)["AutomaticDeps"] = {"a.h", "b.h", "c.h"};
       },
       {}},
      {"commands that builds have made",
       [](Json& p) { settings(p, "cc")["Command"] = "gcc -a"; },
       [](Json& p) { settings(p, "cc")["Command"] = "gcc -b"; },
       nothing,
       {}},
      {"settings of what is built",
       [](Json& p) { settings(p, "cc")["BuildDirty"] = 0; },
       [](Json& p) { settings(p, "cc")["Options"] = "-g"; },
       [](Json& p) {
         settings(p, "cc")["Options"] = "-g";
         settings(p, "cc")["BuildDirty"] = 1;
       },
       {}},
      {"configurations of both",
       [](Json& p) { addConfiguration(p, "Ours"); },
       [](Json& p) { addConfiguration(p, "Theirs"); },
       [](Json& p) { addConfiguration(p, "Theirs"); },
       {}},
      {"a component of one and a configuration of the other",
       [](Json& p) { addConfiguration(p, "New"); },
       [](Json& p) { addComponent(p, "link", "more", 4); },
       [](Json& p) { addComponent(p, "link", "more", 4); },
       {},
       "settings of configuration \"Default\" in \"New\" too"},
      {"a configuration that theirs has removed",
       [](Json& p) { settings(p, "cc")["Options"] = "-g"; },
       [](Json& p) { removeConfiguration(p, "Small"); },
       [](Json& p) { removeConfiguration(p, "Small"); },
       {}},
      {"a configuration that one has removed and the other changed",
       [](Json& p) { removeConfiguration(p, "Small"); },
       [](Json& p) { settings(p, "cc", "Small")["Options"] = "-g"; }, nothing,
       conflictIn("configuration \"Small\"")},
      {"the active configuration of ours, removed by theirs",
       [](Json& p) { p["active"] = "Small"; },
       [](Json& p) { removeConfiguration(p, "Small"); },
       [](Json& p) {
         removeConfiguration(p, "Small");
         p["active"] = "Default";
       },
       {}},
      {"another name of a configuration and a new component",
       [](Json& p) { renameConfiguration(p, "Default", "New"); },
       [](Json& p) {
         addComponent(p, "cc", "more", 4);
         settings(p, "more")["Options"] = "-x";
       },
       [](Json& p) {
         addComponent(p, "cc", "more", 4);
         settings(p, "more", "New")["Options"] = "-x";
         settings(p, "more", "New").swap(settings(p, "more", "Small"));
       },
       {}},
      {"different configurations removed, all together",
       [](Json& p) {
         removeConfiguration(p, "Default");
         p["active"] = "Small";
       },
       [](Json& p) { removeConfiguration(p, "Small"); }, nothing, conflictIn("configuration \"Small\"")},
      {"an order and an addition",
       [](Json& p) { std::swap(file(p, "src", 0), file(p, "src", 1)); },
       [](Json& p) { addFile(p, "src", "new.c"); },
       [](Json& p) { addFile(p, "src", "new.c"); },
       {}},
      {"an addition and an order",
       [](Json& p) { addFile(p, "src", "new.c"); },
       [](Json& p) { std::swap(file(p, "src", 0), file(p, "src", 1)); },
       [](Json& p) { std::swap(file(p, "src", 0), file(p, "src", 1)); },
       {}},
  };
  const Json base = baseProject();
  restored(base, "base");
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Json ours = base;
    Json theirs = base;
    row.ours(ours);
    row.theirs(theirs);
    EXPECT_EQ(mergedHere(base, base, theirs), theirs) << "one side alone";
    EXPECT_EQ(mergedHere(base, theirs, base), theirs);
    EXPECT_EQ(mergedHere(base, theirs, theirs), theirs);
    restored(ours, "ours");
    restored(theirs, "theirs");
    const Outcome merged = forgeyard({"merge", "base", "ours", "theirs", "-o", "merged"});
    EXPECT_EQ(merged.exitCode, row.conflicts.empty() ? 0 : 1) << merged.errors;
    for (const std::string& words : row.conflicts) EXPECT_THAT(merged.errors, HasSubstr(words));
    EXPECT_THAT(merged.errors, HasSubstr(row.note));
    row.merged(ours);
    const Json found = Json::parse(shown({"dump", "merged"}), nullptr, false);
    EXPECT_EQ(found, ours) << Json::diff(ours, found).dump(1) << merged.errors;
    // The other way round the same happens, but for what the conflicts were about.
    const Outcome reversed = forgeyard({"merge", "base", "theirs", "ours", "-o", "merged"});
    EXPECT_EQ(reversed.exitCode, merged.exitCode) << reversed.errors;
    EXPECT_EQ(forgeyard({"dump", "merged"}).exitCode, 0);
  }
}

TEST_F(Merge, WritesOursUnlessToldOtherwise) {
  const Json base = baseProject();
  Json theirs = base;
  settings(theirs, "cc")["DebugInfo"] = 1;
  restored(base, "base");
  restored(base, "ours");
  restored(theirs, "theirs");
  must({"merge", "base", "ours", "theirs"});
  EXPECT_EQ(shown({"dump", "ours"}), shown({"dump", "theirs"}));
  // Both sides have added the file.
  put("empty", "");
  must({"merge", "empty", "ours", "theirs"});
}

TEST_F(Merge, WhatCantBeMergedIsLeftAlone) {
  const Json base = baseProject();
  restored(base, "base");
  Json twice = base;
  component(twice, "cc")["Id"] = 3;
  restored(twice, "twice");
  put("half", content("base").substr(0, content("base").size() / 2));
  put("text", "no project");
  const struct {
    const char* file;
    const char* words;
  } rows[] = {{"twice", "two components have the number 3"},
              {"half", "is damaged. Nothing was merged"},
              {"text", "is not a project file"},
              {"none", "There is no project file"}};
  const std::string before = content("base");
  for (const auto& row : rows) {
    EXPECT_THAT(forgeyard({"merge", "base", "base", row.file}).errors, HasSubstr(row.words));
    EXPECT_EQ(forgeyard({"merge", "base", "base", row.file}).exitCode, 2) << row.file;
  }
  EXPECT_EQ(content("base"), before);
}

}  // namespace
}  // namespace forgeyard::console
