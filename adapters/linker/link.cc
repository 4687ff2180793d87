#include "adapters/linker/link.h"

#include <errno.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "adapters/common/file_names.h"
#include "adapters/common/temporary.h"
#include "adapters/common/tool_steps.h"
#include "adapters/common/whole_file.h"
#include "adapters/linker/link_arguments.h"
#include "adapters/linker/link_script.h"
#include "adapters/linker/s_records.h"

namespace forgeyard {
namespace {

class Link {
 public:
  Link(const LinkCommand& command, const LinkerTools& tools, HostSpelling& spelling,
       const Diagnostics& diagnostics)
      : command_(command),
        tools_(tools),
        diagnostics_(diagnostics),
        steps_(diagnostics),
        temporary_(diagnostics.program()),
        searched_(searchedDirectories()),
        script_(spelling, searched_, temporary_.path()) {
    for (const std::string& file :
         {command.output, command.symbolFile, command.mapFile, command.relocations}) {
      steps_.output(file);
    }
  }

  int run() {
    if (readScript() && makeLayout() && runLinker()) {
      nameOriginalsInMap();
      convert();
      if (!command_.symbolFile.empty()) steps_.run({{tools_.nm, "-n", linked()}, command_.symbolFile, {}});
      if (!command_.relocations.empty()) {
        steps_.run({{tools_.readelf, "-rW", linked()}, command_.relocations, {}});
      }
    }
    return steps_.exitCode();
  }

 private:
  bool isImage() const { return command_.format != LinkFormat::Executable; }
  std::string linked() const {
    return isConverted(command_) ? temporary_.file("linked.elf") : command_.output;
  }
  LinkerInputs inputs() const {
    return {searched_, ownLayout() ? layoutFile() : "", script_.copy(), script_.hasSections(), linked()};
  }
  std::string layoutFile() const { return temporary_.file("layout.ld"); }

  Words searchedDirectories() const {
    Words directories = command_.directories;
    directories.push_back(directoryOf(command_.script));
    append(directories, runtimeDirectories(tools_, temporary_.file("directory.txt")));
    return directories;
  }

  bool readScript() {
    std::vector<std::string> problems;
    if (!script_.read(command_.script)) {
      problems = script_.problems();
    } else if (!script_.namesInputs() && !hasLibraryOption()) {
      problems.push_back(script_.namesNothing());
    }
    for (const std::string& problem : problems) diagnostics_.line(problem);
    if (!problems.empty()) return steps_.fail("nothing linked: the script can't be used", ADAPTER_FAILED);
    const ScriptPlace& place = script_.globalPointer();
    if (!command_.globalPointer.empty() && !place.file.empty()) {
      diagnostics_.line(place.file + ":" + std::to_string(place.line) +
                        ": warning: the script sets _gp itself, so /gp" + command_.globalPointer +
                        " has no effect");
    }
    return true;
  }

  bool hasLibraryOption() const {
    return std::any_of(command_.options.begin(), command_.options.end(),
                       [](const std::string& option) { return option.starts_with("-l"); });
  }

  bool ownLayout() const { return !command_.globalPointer.empty() && !script_.hasSections(); }

  // The linker's layout lets nobody else set _gp, so /gp needs a copy of it that does.
  bool makeLayout() {
    if (!ownLayout()) return true;
    const std::string verbose = temporary_.file("verbose.txt");
    Words words{tools_.ld, "-static"};
    if (isImage()) words.push_back("-N");
    words.push_back("--verbose");
    if (!steps_.run({words, verbose, {}})) return false;
    const std::string layout = layoutWithoutGlobalPointer(readWholeFile(verbose).value_or(""));
    if (layout.empty())
      return steps_.fail(tools_.ld + " doesn't tell its layout, which /gp needs", ADAPTER_FAILED);
    const int error = writeWholeFile(layoutFile(), layout);
    return error == 0 ||
           steps_.fail("cannot write " + layoutFile() + ": " + errorWords(error), ADAPTER_FAILED);
  }

  bool runLinker() {
    return steps_.run({linkerArguments(command_, tools_, inputs()), {}, [this](std::string_view line) {
                         const std::string text = script_.explain(line);
                         if (!text.empty()) diagnostics_.line(text);
                       }});
  }

  // So that the map says the same for the same input.
  void nameOriginalsInMap() {
    if (command_.mapFile.empty()) return;
    constexpr std::string_view kWord = "\nOUTPUT(";
    rewrite(command_.mapFile, [&](std::string map) {
      const std::size_t output = map.rfind(std::string(kWord) + linked());
      if (output != map.npos) map.replace(output + kWord.size(), linked().size(), command_.output);
      return script_.withOriginals(std::move(map));
    });
  }

  void convert() {
    if (linked() == command_.output) return;
    const Words words = conversionArguments(command_, tools_, linked(), command_.output);
    if (steps_.run(words) && command_.format == LinkFormat::SRecords) nameOutputInHeader();
  }

  void nameOutputInHeader() {
    const std::string_view name = baseName(command_.output);
    rewrite(command_.output, [&](const std::string& records) { return withHeaderName(records, name); });
  }

  template <class Change>
  void rewrite(const std::string& file, Change&& change) {
    const std::optional<std::string> content = readWholeFile(file);
    const int error = content ? writeWholeFile(file, change(*content)) : errno;
    if (error != 0) steps_.fail("cannot rewrite " + file + ": " + errorWords(error), ADAPTER_FAILED);
  }

  const LinkCommand& command_;
  const LinkerTools& tools_;
  const Diagnostics& diagnostics_;
  ToolSteps steps_;
  TemporaryDirectory temporary_;
  Words searched_;
  LinkScript script_;
};

}  // namespace

int link(const LinkCommand& command, const LinkerTools& tools, HostSpelling& spelling,
         const Diagnostics& diagnostics) {
  return Link(command, tools, spelling, diagnostics).run();
}

std::string layoutWithoutGlobalPointer(std::string_view verbose) {
  constexpr std::string_view kRule = "\n==========";  // the layout stands between two lines of these
  const std::size_t start = verbose.find(kRule);
  if (start == verbose.npos) return {};
  const std::size_t begin = verbose.find('\n', start + 1);
  const std::size_t end = verbose.find(kRule, begin);
  if (begin == verbose.npos || end == verbose.npos) return {};
  std::string layout(verbose.substr(begin + 1, end - begin));
  const std::size_t pointer = layout.find("HIDDEN (_gp = ");
  if (pointer != layout.npos) layout.erase(pointer, layout.find(';', pointer) + 1 - pointer);
  return layout;
}

}  // namespace forgeyard
