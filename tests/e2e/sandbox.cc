#include "tests/e2e/sandbox.h"

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <regex>

#include "tests/support/places.h"

namespace forgeyard::e2e {

namespace fs = std::filesystem;

bool eventually(const std::function<bool()>& holds, int milliseconds) {
  for (int waited = 0; waited < milliseconds; waited += 5) {
    if (holds()) return true;
    ::poll(nullptr, 0, 5);
  }
  return holds();
}

bool hasOpen(pid_t process, std::string_view name) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(process) + "/fd", error)) {
    std::error_code gone;
    if (fs::read_symlink(entry, gone).filename() == name) return true;
  }
  return false;
}

Sandbox::Sandbox() : programs_(places::programs()) {
  setDirectory("project");
  fs::create_directory(home_ / "runtime");
  fs::permissions(home_ / "runtime", fs::perms::owner_all);
}

Sandbox::~Sandbox() {
  for (const pid_t process : processes()) {
    ADD_FAILURE() << "left behind: process " << process << " "
                  << contentOf("/proc/" + std::to_string(process) + "/cmdline");
    ::kill(process, SIGKILL);
  }
}

void Sandbox::setDirectory(const std::string& name) {
  directory_ = home_ / name;
  fs::create_directories(directory_);
}

void Sandbox::put(std::string_view name, std::string_view content) const {
  fs::create_directories(fs::path(path(name)).parent_path());
  std::ofstream(path(name), std::ios::binary) << content;
}

void Sandbox::touch(std::string_view name) const {
  fs::last_write_time(path(name), fs::file_time_type::clock::now());
}

bool Sandbox::exists(std::string_view name) const {
  return fs::exists(path(name));
}

Start Sandbox::start(Lines arguments) const {
  Start start;
  start.command = std::move(arguments);
  start.command.insert(start.command.begin(), programs_ + "/forgeyard");
  start.directory = directory_;
  start.environment = {"HOME=" + home_.path(),
                       "FORGEYARD_REGISTRY=" + (home_ / "registry"),
                       "FORGEYARD_WORKSPACE=" + (home_ / "workspace"),
                       "FORGEYARD_RUNTIME_DIR=" + (home_ / "runtime"),
                       "XDG_CONFIG_HOME=" + (home_ / "config"),
                       "XDG_DATA_HOME=" + (home_ / "data"),
                       "XDG_STATE_HOME=" + (home_ / "state")};
  return start;
}

Outcome Sandbox::forgeyard(Lines arguments) const {
  return RunningProgram(start(std::move(arguments))).finish();
}

Outcome Sandbox::must(Lines arguments) const {
  std::string line = "forgeyard";
  for (const std::string& word : arguments) line += " " + word;
  Outcome outcome = forgeyard(std::move(arguments));
  EXPECT_EQ(outcome.exitCode, 0) << line << "\n" << outcome.output << outcome.errors;
  return outcome;
}

Outcome Sandbox::run(const std::string& program, Lines arguments) const {
  Start start;
  start.command = std::move(arguments);
  start.command.insert(start.command.begin(), program);
  start.directory = directory_;
  return RunningProgram(start).finish();
}

void Sandbox::makeProgramProject(const Lines& sources) const {
  must({"new", "p.nqp"});
  must({"config", "set", "Target=native", "OutputDirectory=out", "IntermediateDirectory=obj",
        "UpdateFileDependencies=1"});
  must({"folder", "add", "src", "--filter", "c"});
  must({"component", "add", "cc", "cc"});
  must({"component", "add", "cmdline", "link"});
  must({"connect", "src", "cc"});
  must({"connect", "cc", "link"});
  must({"set", "link", "Input=.obj", "Output=prog", "CommandOutDir=$(COutDir)", "RunOnce=1",
        "FileSeparator=\" \"", "Command=gcc -o \"$(OutDir)prog\" \"$(FileFullPathList)\""});
  Lines add{"file", "add", "--folder", "src"};
  add.insert(add.end(), sources.begin(), sources.end());
  must(add);
}

void Sandbox::makeToolProject(const Lines& sources, const std::string& command) const {
  must({"new", "p.nqp"});
  must({"config", "set", "OutputDirectory=out", "IntermediateDirectory=obj"});
  must({"folder", "add", "src"});
  must({"component", "add", "cmdline", "tool"});
  must({"connect", "src", "tool"});
  must({"set", "tool", "Output=.out", "CommandOutDir=$(COutDir)", "Command=" + command});
  Lines add{"file", "add", "--folder", "src"};
  for (const std::string& source : sources) {
    if (!exists(source)) put(source, "");
    add.push_back(source);
  }
  must(add);
}

std::string Sandbox::scriptedTool() {
  return places::scriptedTool();
}

void Sandbox::waitForFile(std::string_view name) const {
  ASSERT_TRUE(eventually([&] { return exists(name); })) << name << " does not appear";
}

std::set<pid_t> Sandbox::processes() const {
  // Everything that a host of this sandbox starts inherits its environment.
  const std::string mark = "FORGEYARD_RUNTIME_DIR=" + (home_ / "runtime");
  std::set<pid_t> found;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator("/proc", error)) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") != name.npos) continue;
    if (contentOf(entry.path() / "environ").find(mark) != std::string::npos) found.insert(std::stoi(name));
  }
  return found;
}

bool Sandbox::becomesQuiet() const {
  return eventually([&] { return processes().empty(); }, 10000);
}

Lines compiled(const Outcome& outcome) {
  static const std::regex command(R"( -c .* -o.*\\([^\\]+)\.obj $)");
  Lines stems;
  for (const std::string& line : outcome.lines()) {
    std::smatch match;
    if (std::regex_search(line, match, command)) stems.push_back(match[1]);
  }
  std::sort(stems.begin(), stems.end());
  return stems;
}

int toolRuns(const Outcome& outcome) {
  const Lines lines = outcome.lines();
  return static_cast<int>(std::count_if(
      lines.begin(), lines.end(), [](const std::string& line) { return line.starts_with("Exit Code: "); }));
}

int count(const Outcome& outcome, std::string_view line) {
  const Lines lines = outcome.lines();
  return static_cast<int>(std::count(lines.begin(), lines.end(), line));
}

}  // namespace forgeyard::e2e
