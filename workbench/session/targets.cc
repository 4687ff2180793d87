#include "workbench/session/targets.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>

#include "platform/files/host_location.h"
#include "platform/paths/command_line.h"
#include "workbench/base/program_paths.h"

namespace forgeyard::workbench {

namespace {

namespace fs = std::filesystem;
using namespace registry_keys;

constexpr std::string_view kCompilerAdapter = "gnu-cc";
constexpr std::string_view kAssemblerAdapter = "gnu-as";
constexpr std::string_view kCompilerSuffix = "-gcc";
constexpr std::string_view kLinkerSuffix = "-ld";
constexpr std::string_view kMipsPrefix = "mipsel-linux-gnu";
// Small data goes by the global pointer, which position-independent code and the abicalls of Linux can't do.
constexpr std::string_view kMipsOptions = " -mno-abicalls -fno-pic";

std::string commandLine(std::string_view adapter, std::string_view tool) {
  return std::string(adapter) + " " + std::string(tool);
}

bool isMips(const std::string& prefix) {
  return prefix.starts_with("mips") && !prefix.starts_with("mips64");
}

Target crossTarget(const std::string& prefix) {
  Target target{prefix == kMipsPrefix ? "mips" : prefix, commandLine(kCompilerAdapter, prefix + "-gcc"), ""};
  if (isMips(prefix) && prefix.find("-linux") != prefix.npos) target.compiler += kMipsOptions;
  if (findProgram(prefix + "-as")) target.assembler = commandLine(kAssemblerAdapter, prefix + "-as");
  return target;
}

std::string resolved(const std::string& program) {
  std::error_code error;
  const auto path = findProgram(program);
  return path ? fs::canonical(*path, error).string() : "";
}

// The host's own compiler under its long name. A wrapper that stands for all compilers tells nothing.
bool isNative(const std::string& prefix) {
  const std::string native = resolved("gcc");
  return !native.empty() && native.find("gcc") != native.npos && resolved(prefix + "-gcc") == native;
}

// A cross compiler brings an assembler or linker of its own, other programs of such a name don't.
bool isToolChain(const std::string& prefix) {
  return findProgram(prefix + "-as") || findProgram(prefix + "-ld");
}

// What stands before the suffix in the names of programs along PATH.
std::set<std::string> prefixesOf(std::string_view suffix) {
  std::set<std::string> prefixes;
  for (const std::string& directory : searchPath()) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(directory, error)) {
      const std::string name = entry.path().filename().string();
      if (name.size() > suffix.size() && name.ends_with(suffix))
        prefixes.insert(name.substr(0, name.size() - suffix.size()));
    }
  }
  std::erase_if(prefixes,
                [&](const std::string& prefix) { return !findProgram(prefix + std::string(suffix)); });
  return prefixes;
}

std::set<std::string> crossPrefixes() {
  std::set<std::string> prefixes = prefixesOf(kCompilerSuffix);
  std::erase_if(prefixes, [](const std::string& prefix) { return !isToolChain(prefix) || isNative(prefix); });
  return prefixes;
}

}  // namespace

std::vector<Target> registeredTargets(const Registry& registry) {
  std::vector<Target> targets;
  const auto key = registry.open(kTargets);
  if (!key) return targets;
  for (const std::string& name : key->valueNames()) {
    if (name.empty()) continue;
    targets.push_back({name, registry.value(kCompilers, name).value_or(""),
                       registry.value(kAssemblers, name).value_or("")});
  }
  return targets;
}

std::vector<Target> detectTargets() {
  std::vector<Target> targets;
  if (findProgram("gcc")) {
    targets.push_back({"native", commandLine(kCompilerAdapter, "gcc"), ""});
    if (findProgram("as")) targets.back().assembler = commandLine(kAssemblerAdapter, "as");
  }
  for (const std::string& prefix : crossPrefixes()) targets.push_back(crossTarget(prefix));
  std::sort(targets.begin(), targets.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  return targets;
}

std::string registeredLinker(const Registry& registry) {
  return registry.value(kBuildTool, kLinker).value_or("");
}

std::string detectLinker() {
  std::set<std::string> prefixes = prefixesOf(kLinkerSuffix);
  std::erase_if(prefixes, [](const std::string& prefix) { return !isMips(prefix); });
  if (prefixes.empty()) return "";
  // The one whose compiler is the target "mips", where there is a choice.
  const auto preferred = prefixes.find(std::string(kMipsPrefix));
  return (preferred != prefixes.end() ? *preferred : *prefixes.begin()) + "-";
}

std::string linkerProgram(const std::string& linker) {
  if (linker.ends_with('-') || linker.ends_with('/')) return linker + "ld";
  std::error_code error;
  return fs::is_directory(linker, error) ? linker + "/ld" : linker;
}

bool isTooLongForATool(const std::string& commandLine) {
  return commandLine.size() > kLongestToolText;
}

void enterTarget(Registry& registry, const Target& target) {
  if (!registry.value(kTargets, target.name)) registry.setValue(kTargets, target.name, "");
  // The keys must be there for a tool to say which target is missing in them.
  registry.createKey(kCompilers);
  registry.createKey(kAssemblers);
  if (!target.compiler.empty()) registry.setValue(kCompilers, target.name, target.compiler);
  if (!target.assembler.empty()) registry.setValue(kAssemblers, target.name, target.assembler);
}

bool removeTarget(Registry& registry, const std::string& name) {
  const bool compiler = registry.removeValue(kCompilers, name);
  const bool assembler = registry.removeValue(kAssemblers, name);
  return registry.removeValue(kTargets, name) || compiler || assembler;
}

std::vector<ToolProgram> programsOf(const std::string& commandLine, const std::string& adapterDirectory) {
  std::vector<ToolProgram> programs;
  for (const std::string& typed : CommandLineToArgvW(commandLine)) {
    const bool modelPath = typed.find('\\') != std::string::npos;
    const std::string word = modelPath ? toHost(BString::fromNarrow(typed)).value_or(typed) : typed;
    const bool adapter = word == kCompilerAdapter || word == kAssemblerAdapter;
    std::string installed = std::string(adapterDirectory).append("/").append(word);
    programs.push_back({word, adapter, isExecutable(installed) ? std::move(installed) : findProgram(word)});
    if (!adapter) break;
  }
  return programs;
}

std::vector<std::string> missingPrograms(const std::string& commandLine,
                                         const std::string& adapterDirectory) {
  std::vector<std::string> missing;
  for (const ToolProgram& program : programsOf(commandLine, adapterDirectory)) {
    if (!program.path) missing.push_back(program.name);
  }
  return missing;
}

}  // namespace forgeyard::workbench
