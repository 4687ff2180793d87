#include "workbench/import/project_layout.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "workbench/import/source_names.h"
#include "workbench/import/source_units.h"

namespace forgeyard::workbench {

namespace {

// More programs than that would bury the rest of the project.
constexpr std::size_t kMostPrograms = 40;

constexpr std::string_view kDefaultInput = ".c;.i;.ii;.m;.cc;.cxx;.cpp;.C;.s;.S";

// What writes into one object directory.
struct ObjectDirectory {
  std::set<std::string> objects;
  std::size_t length = 0;  // of the list of its objects

  bool hasRoomFor(const SourceUnit& unit, std::size_t unitLength) const {
    return (length == 0 || length + unitLength <= kLongestObjectList) &&
           std::none_of(unit.objects.begin(), unit.objects.end(),
                        [&](const std::string& object) { return objects.contains(object); });
  }
};

class Layout {
 public:
  Layout(const ProjectParts& parts, Notes& notes)
      : parts_(parts), notes_(notes), divided_(sourceUnitsOf(parts)) {}

  ImportPlan run() {
    plan_.name = parts_.name;
    for (const SourceUnit& unit : divided_.units) place(unit);
    addShownFiles();
    if (divided_.joined) joinObjects();
    addLinkSteps();
    plan_.tools = std::move(tools_);
    return std::move(plan_);
  }

 private:
  // A tool of the plan with what its programs need to know.
  struct MadeTool {
    std::size_t tool = 0;
    int program = kCommonProgram;
    std::size_t directory = 0;
    bool cxx = false;
  };

  std::string shownLabel(const std::string& label) const { return label.empty() ? parts_.name : label; }

  std::size_t directoryFor(const SourceUnit& unit) {
    const std::size_t length = objectListLength(parts_, unit);
    std::size_t at = 0;
    while (at < directories_.size() && !directories_[at].hasRoomFor(unit, divided_.joined ? length : 0)) ++at;
    if (at == directories_.size()) directories_.emplace_back();
    directories_[at].objects.insert(unit.objects.begin(), unit.objects.end());
    directories_[at].length += divided_.joined ? length : 0;
    return at;
  }

  static std::string macroOf(std::size_t directory) {
    return directory == 0 ? "$(CIntDir)" : "$(CIntDir)" + std::to_string(directory + 1);
  }

  void place(const SourceUnit& unit) {
    MadeTool& made = toolFor(unit, directoryFor(unit));
    PlannedTool& tool = tools_[made.tool];
    tool.inputs.push_back(addFolder(unit));
    made.cxx = made.cxx || std::any_of(unit.files.begin(), unit.files.end(), isCxx);
    if (!unit.assembled) takeExtensions(tool, unit);
  }

  // The compiler component takes most extensions by itself.
  static void takeExtensions(PlannedTool& tool, const SourceUnit& unit) {
    for (const std::string& file : unit.files) {
      const std::string extension(fileExtension(file));
      const auto input = std::find_if(tool.settings.begin(), tool.settings.end(),
                                      [](const Assignment& setting) { return setting.property == "Input"; });
      const std::string list =
          ";" + (input == tool.settings.end() ? std::string(kDefaultInput) : input->value) + ";";
      if (list.find(";" + extension + ";") != list.npos) continue;
      if (input == tool.settings.end()) {
        tool.settings.push_back({"Input", std::string(kDefaultInput) + ";" + extension});
      } else {
        input->value += ";" + extension;
      }
    }
  }

  MadeTool& toolFor(const SourceUnit& unit, std::size_t directory) {
    const auto key = std::tuple(unit.group, unit.assembled, unit.program, directory);
    if (const auto known = toolOf_.find(key); known != toolOf_.end()) return made_[known->second];
    toolOf_.emplace(key, made_.size());
    made_.push_back({tools_.size(), unit.program, directory, false});
    const CompileGroup& group = parts_.groups[unit.group];
    std::string name = unit.assembled ? "assemble" : "compile";
    if (!group.label.empty()) name += " " + group.label;
    if (unit.program != kCommonProgram &&
        group.label != divided_.programs[static_cast<std::size_t>(unit.program)])
      name += " " + divided_.programs[static_cast<std::size_t>(unit.program)];
    PlannedTool tool{unit.assembled ? "asm" : "cc", names_.unlikeOthers(name), {}, {}};
    if (unit.assembled) {
      tool.settings = parts_.assemblerSettings;
      tool.settings.push_back({"Input", ".s"});
    } else {
      tool.settings = group.settings;
    }
    if (directory != 0) tool.settings.push_back({"CommandOutDir", macroOf(directory)});
    tools_.push_back(std::move(tool));
    return made_.back();
  }

  std::string addFolder(const SourceUnit& unit) {
    std::string wanted = shownLabel(unit.label);
    if (unit.assembled && parts_.folders == FolderMode::ByDirectory) wanted += " assembler";
    if (unit.program != kCommonProgram)
      wanted += " " + divided_.programs[static_cast<std::size_t>(unit.program)];
    PlannedFolder folder{names_.unlikeOthers(wanted), "", unit.files};
    if (!unit.assembled && unit.program == kCommonProgram)
      folderOf_.emplace(unit.label, plan_.folders.size());
    plan_.folders.push_back(std::move(folder));
    setFilter(plan_.folders.back());
    return plan_.folders.back().name;
  }

  static void setFilter(PlannedFolder& folder) {
    std::set<std::string> extensions;
    for (const std::string& file : folder.files) {
      if (const std::string_view extension = fileExtension(file); extension.size() > 1)
        extensions.insert(std::string(extension.substr(1)));
    }
    folder.filter.clear();
    for (const std::string& extension : extensions)
      folder.filter += (folder.filter.empty() ? "" : ";") + extension;
  }

  void addShownFiles() {
    for (const std::string& file : parts_.shown) {
      const bool header = kindOfFile(file) != FileKind::Compiled && kindOfFile(file) != FileKind::Assembled;
      // A source that isn't compiled must not lie where a compiler takes its input.
      std::string label = parts_.folders == FolderMode::ByKind ? (header ? "headers" : "included sources")
                          : header                             ? directoryLabel(parts_, file)
                                   : shownLabel(directoryLabel(parts_, file)) + " included";
      auto known = folderOf_.find(label);
      if (known == folderOf_.end()) {
        known = folderOf_.emplace(label, plan_.folders.size()).first;
        plan_.folders.push_back({names_.unlikeOthers(shownLabel(label)), "", {}});
      }
      plan_.folders[known->second].files.push_back(file);
    }
    for (const auto& [label, at] : folderOf_) setFilter(plan_.folders[at]);
  }

  static PlannedTool runOnce(std::string name, std::string input, std::string output, std::string directory,
                             std::string command) {
    return {"cmdline",
            std::move(name),
            {{"Input", std::move(input)},
             {"Output", std::move(output)},
             {"CommandOutDir", std::move(directory)},
             {"RunOnce", "yes"},
             {"FileSeparator", "\" \""},
             {"Command", std::move(command)}},
            {}};
  }

  // One object of all that lie in a directory: a list of them all would be too long for a command.
  void joinObjects() {
    notes_.add("The objects are too many for one command, so they are linked in steps");
    std::vector<MadeTool> joins;
    std::map<std::pair<std::size_t, int>, std::size_t> known;
    for (const MadeTool& made : made_) {
      const auto [at, isNew] = known.emplace(std::pair(made.directory, made.program), joins.size());
      if (isNew) {
        const std::string output = "joined" + std::to_string(joins.size() + 1) + ".o";
        joins.push_back({tools_.size(), made.program, made.directory, false});
        tools_.push_back(runOnce(
            names_.unlikeOthers("join"), ".obj", output, macroOf(made.directory),
            parts_.link.driver + " -r -nostdlib -o \"$(OutDir)" + output + "\" \"$(FileFullPathList)\""));
      }
      MadeTool& join = joins[at->second];
      join.cxx = join.cxx || made.cxx;
      tools_[join.tool].inputs.push_back(tools_[made.tool].name);
    }
    made_ = std::move(joins);
  }

  void addLinkSteps() {
    if (made_.empty()) return;
    if (!parts_.link.script.empty()) return addLinkerComponent();
    if (parts_.mains.empty()) return addLibrary();
    if (parts_.mains.size() == 1) return addProgram("link", parts_.name, kCommonProgram);
    if (divided_.programs.size() > kMostPrograms) {
      return notes_.add("So many sources have a function main that no link step is made (" +
                        std::to_string(divided_.programs.size()) + "); say which one counts: --main FILE");
    }
    for (std::size_t i = 0; i < divided_.programs.size(); ++i)
      addProgram("link " + divided_.programs[i], divided_.programs[i], static_cast<int>(i));
  }

  // Makes the tool take what the others that belong to the program make. Whether C++ is among it.
  bool feed(PlannedTool& tool, int program) const {
    bool cxx = false;
    for (const MadeTool& made : made_) {
      if (made.program != kCommonProgram && made.program != program) continue;
      tool.inputs.push_back(tools_[made.tool].name);
      cxx = cxx || made.cxx;
    }
    return cxx;
  }

  std::string linkedDriver(bool cxx) const {
    std::string driver = parts_.link.driver;
    const std::size_t name = driver.size() - fileName(driver).size();
    for (const auto& [c, with] : {std::pair("gcc", "g++"), {"clang", "clang++"}, {"cc", "c++"}}) {
      const std::size_t at = driver.rfind(c);
      if (!cxx || at == driver.npos || at < name) continue;
      return driver.replace(at, std::string_view(c).size(), with);
    }
    return driver;
  }

  void addProgram(const std::string& component, const std::string& program, int index) {
    const std::string output = plainName(program);
    PlannedTool tool =
        runOnce(names_.unlikeOthers(component), divided_.joined ? ".o" : ".obj", output, "$(COutDir)", "");
    const bool cxx = feed(tool, index);
    tool.settings.back().value = linkedDriver(cxx) + " -o \"$(OutDir)" + output +
                                 "\" \"$(FileFullPathList)\"" +
                                 (parts_.link.options.empty() ? "" : " " + parts_.link.options);
    tools_.push_back(std::move(tool));
  }

  void addLibrary() {
    notes_.add("No source has a function main, so a library is made");
    const std::string output = "lib" + plainName(parts_.name) + ".a";
    PlannedTool tool =
        runOnce(names_.unlikeOthers("archive"), divided_.joined ? ".o" : ".obj", output, "$(COutDir)",
                parts_.link.archiver + " rcs \"$(OutDir)" + output + "\" \"$(FileFullPathList)\"");
    feed(tool, kCommonProgram);
    tools_.push_back(std::move(tool));
  }

  void addLinkerComponent() {
    const std::string& script = parts_.link.script;
    const std::string extension(fileExtension(script));
    PlannedFolder folder{names_.unlikeOthers("scripts"), "", {script}};
    setFilter(folder);
    std::string libraries;
    for (std::size_t at = 0; at < directories_.size(); ++at) libraries += (at ? ";" : "") + macroOf(at);
    PlannedTool tool{"linker",
                     names_.unlikeOthers("link"),
                     {{"Input", extension + ";.obj"}, {"LibraryPath", libraries}},
                     {folder.name}};
    feed(tool, kCommonProgram);
    plan_.folders.push_back(std::move(folder));
    tools_.push_back(std::move(tool));
  }

  const ProjectParts& parts_;
  Notes& notes_;
  const SourceUnits divided_;
  ImportPlan plan_;
  NamePool names_;
  std::vector<ObjectDirectory> directories_;
  std::vector<PlannedTool> tools_;
  std::vector<MadeTool> made_;
  std::map<std::tuple<std::size_t, bool, int, std::size_t>, std::size_t> toolOf_;
  std::map<std::string, std::size_t> folderOf_;
};

}  // namespace

ImportPlan layOut(const ProjectParts& parts, Notes& notes) {
  return Layout(parts, notes).run();
}

}  // namespace forgeyard::workbench
