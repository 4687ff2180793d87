// Fixed workloads, each measured against other programs in the same run, so that the ratios mean the same on
// every machine. Imitates a C project of 10,000 sources that include 40 of 2,000 headers each: the size at
// which a build manager's own time is felt.
//
//   forgeyard_bench [--quick] [--rounds N] DIRECTORY     DIRECTORY is made and may be deleted afterwards

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "bench/bench_host.h"
#include "bench/measure.h"
#include "bench/tree.h"
#include "platform/registry/registry.h"
#include "platform/registry/registry_keys.h"
#include "typelib/classes.h"

namespace forgeyard::bench {
namespace {

// The commands' identifiers, as menus know them.
constexpr std::uint32_t kBuild = 301;
constexpr std::uint32_t kRebuild = 307;

struct Options {
  std::string directory;
  bool quick = false;
  int rounds = 7;
};

class Bench {
 public:
  explicit Bench(Options options) : options_(std::move(options)), bin_(FORGEYARD_BIN_DIR) {}

  void run() {
    prepare();
    BenchHost host(bin_);
    noOpBuild(host);
    headerTouched(host);
    loadAndSave(host);
    insertFiles(host);
    toolStarts(host);
    outputLines(host);
    printTable(rows_);
  }

 private:
  std::string path(const std::string& name) const { return options_.directory + "/" + name; }
  std::string standIn() const { return FORGEYARD_STAND_IN; }
  int sourceCount() const { return options_.quick ? 1000 : 10000; }

  void prepare() {
    std::filesystem::remove_all(options_.directory);
    std::filesystem::create_directories(options_.directory);
    options_.directory = std::filesystem::canonical(options_.directory);
    setenv("FORGEYARD_REGISTRY", path("registry").c_str(), 1);
    setenv("FORGEYARD_RUNTIME_DIR", path("runtime").c_str(), 1);
    setenv("FORGEYARD_WORKSPACE", path("workspace").c_str(), 1);
    std::filesystem::create_directories(path("runtime"));
    std::filesystem::permissions(path("runtime"), std::filesystem::perms::owner_all);
    std::string home = std::filesystem::path(bin_).parent_path();
    for (char& c : home) {
      if (c == '/') c = '\\';
    }
    const auto error = Registry::update(path("registry"), [&](Registry& registry) {
      registry.setValue(registry_keys::kKorvel, registry_keys::kHome, home);
      registry.setValue(registry_keys::kTargets, "bench", "");
      registry.setValue(registry_keys::kCompilers, "bench", "gnu-cc " + standIn());
    });
    if (error) throw std::runtime_error(error->message);
  }

  void add(std::string what, const std::string& measured, double ratio, double aim) {
    rows_.push_back({std::move(what), measured, ratio, aim});
    std::fprintf(stderr, "  %s: %s\n", rows_.back().what.c_str(), measured.c_str());
  }
  static std::string text(const char* format, double a, double b) {
    char line[128];
    std::snprintf(line, sizeof line, format, a, b);
    return line;
  }

  Run forgeyard(std::vector<std::string> arguments, const std::string& directory,
                const std::string& output = "") {
    arguments.insert(arguments.begin(), bin_ + "/forgeyard");
    return runProgram(arguments, directory, output);
  }

  // The large tree with a project in which everything is up to date, for ninja too.
  void makeLargeTree(BenchHost& host) {
    std::fprintf(stderr, "making a tree of %d sources\n", sourceCount());
    large_ = makeTree(path("large"), sourceCount(), sourceCount() / 5, 40);
    writeNinjaFile(large_, standIn(), true);
    runProgram({"ninja", "-j2"}, large_.root);
    project_ = host.newProject(large_.root, "large.nqp");
    host.insertFiles(*project_, large_);
    const Ref<IDispatch> compiler = host.addTool(*project_, CLSID_Cc, "compiler");
    host.setTarget(*project_, "bench");
    host.set(*project_, *compiler, "CommandOutDir", BString(u"obj"));
    host.set(*project_, *compiler, "IncludePath", BString(u"."));
    check(project_->UpdateComponentOutputs());
    // As a build would have left it.
    for (int i = 0; i < sourceCount(); ++i) touch(large_.root + "/" + large_.object(i, "obj"));
    host.setDependencies(*project_, large_);
    host.set(*project_, *compiler, "BuildDirty", std::int32_t{0});
    check(project_->ProjectSave());
    expectUpToDate(host);
  }
  void expectUpToDate(BenchHost& host) {
    host.build(*project_, kBuild);
    for (const std::string& line : host.lines()) {
      if (line == "All outputs up to date.") return;
    }
    for (const std::string& line : host.lines()) std::fprintf(stderr, "    %s\n", line.c_str());
    throw std::runtime_error("the large project is not up to date");
  }

  double statEverything() {
    return millisecondsOf([&] {
      struct stat status {};
      for (const auto* names : {&large_.sources, &large_.headers}) {
        for (const std::string& name : *names) stat((large_.root + "/" + name).c_str(), &status);
      }
      for (int i = 0; i < sourceCount(); ++i)
        stat((large_.root + "/" + large_.object(i, "obj")).c_str(), &status);
    });
  }

  void noOpBuild(BenchHost& host) {
    makeLargeTree(host);
    double memory = 0;
    double ninjaMemory = 0;
    Contest contest;
    contest.add("stat", [&] { return statEverything(); });
    contest.add("host", [&] { return millisecondsOf([&] { host.build(*project_, kBuild); }); });
    contest.add("process", [&] {
      // The project is open here, exclusively; the other process gets a copy.
      const Run run = forgeyard({"build", "-p", "copy.nqp"}, large_.root);
      memory = std::max(memory, run.peakMegabytes);
      return run.milliseconds;
    });
    contest.add("ninja", [&] {
      const Run run = runProgram({"ninja"}, large_.root);
      ninjaMemory = std::max(ninjaMemory, run.peakMegabytes);
      return run.milliseconds;
    });
    std::filesystem::copy_file(large_.root + "/large.nqp", large_.root + "/copy.nqp",
                               std::filesystem::copy_options::overwrite_existing);
    contest.run(options_.rounds);
    const double ninja = contest.medianOf("ninja");
    const double inHost = contest.medianOf("host");
    const double process = contest.medianOf("process");
    add("no-op build in a running host / ninja", text("%.1f ms / %.1f ms", inHost, ninja), inHost / ninja,
        0.5);
    add("no-op `forgeyard build`, load included / ninja", text("%.1f ms / %.1f ms", process, ninja),
        process / ninja, 1);
    const double stats = contest.medianOf("stat");
    add("ninja no-op / one stat of each file", text("%.1f ms / %.1f ms", ninja, stats), ninja / stats, 0);
    add("no-op in a running host / one stat of each file", text("%.1f ms / %.1f ms", inHost, stats),
        inHost / stats, 0);
    add("peak memory of the no-op `forgeyard build`, MiB (aim 40)",
        text("%.1f MiB, ninja %.1f MiB", memory, ninjaMemory), memory, 40);
  }

  // One header that a fiftieth of the sources includes.
  void headerTouched(BenchHost& host) {
    const std::string header = large_.root + "/" + large_.headers[3];
    Contest contest;
    contest.add("host", [&] {
      touch(header);
      return millisecondsOf([&] { host.build(*project_, kBuild); });
    });
    contest.add("ninja", [&] {
      touch(header);
      return runProgram({"ninja", "-j1"}, large_.root).milliseconds;
    });
    contest.run(std::min(options_.rounds, 5));
    const double ours = contest.medianOf("host");
    const double ninja = contest.medianOf("ninja");
    add("a header of 200 sources touched, decision and runs / ninja -j1",
        text("%.0f ms / %.0f ms", ours, ninja), ours / ninja, 1);
  }

  double plainCopy(const std::string& from) {
    return millisecondsOf([&] {
      std::ifstream in(from, std::ios::binary);
      const std::string to = path("plain-copy");
      const int out = open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
      std::vector<char> buffer(1 << 20);
      while (in.read(buffer.data(), static_cast<std::streamsize>(buffer.size())) || in.gcount() > 0) {
        if (write(out, buffer.data(), static_cast<std::size_t>(in.gcount())) < 0)
          throw std::runtime_error("write");
      }
      fsync(out);
      close(out);
    });
  }

  void loadAndSave(BenchHost& host) {
    Contest contest;
    contest.add("copy", [&] { return plainCopy(large_.root + "/copy.nqp"); });
    contest.add("load", [&] {
      host.closeProject(*project_);
      return millisecondsOf([&] { project_ = host.loadProject(large_.root, "large.nqp"); });
    });
    contest.add("save", [&] { return millisecondsOf([&] { check(project_->ProjectSave()); }); });
    contest.run(options_.rounds);
    const double copy = contest.medianOf("copy");
    const double load = contest.medianOf("load");
    const double save = contest.medianOf("save");
    add("load of the large project / plain copy with fsync", text("%.0f ms / %.0f ms", load, copy),
        load / copy, 3);
    add("save of the large project / plain copy with fsync", text("%.0f ms / %.0f ms", save, copy),
        save / copy, 3);
    add("load of the large project, ms (aim 150)",
        text("%.0f ms (%.0f MB file)", load,
             static_cast<double>(std::filesystem::file_size(large_.root + "/copy.nqp")) / 1e6),
        load, 150);
    add("save of the large project, ms (aim 150)", text("%.0f ms%.0s", save, 0), save, 150);
    host.closeProject(*project_);
    project_ = nullptr;
  }

  double insertInto(BenchHost& host, int count) {
    Tree names;
    names.root = path("insert");
    for (int i = 0; i < count; ++i) names.sources.push_back("directory/source" + std::to_string(i) + ".c");
    std::filesystem::create_directories(names.root);
    const std::string file = "insert" + std::to_string(++inserted_) + ".nqp";
    const Ref<IProject> project = host.newProject(names.root, file);
    const double result = millisecondsOf([&] { host.insertFiles(*project, names); });
    host.closeProject(*project);
    std::filesystem::remove(names.root + "/" + file);
    return result;
  }

  void insertFiles(BenchHost& host) {
    Contest contest;
    contest.add("single", [&] { return insertInto(host, sourceCount()); });
    contest.add("double", [&] { return insertInto(host, 2 * sourceCount()); });
    contest.run(std::min(options_.rounds, 5));
    const double single = contest.medianOf("single");
    const double twice = contest.medianOf("double");
    add("InsertFiles of 10,000 files, ms (aim 1000)", text("%.0f ms%.0s", single, 0), single, 1000);
    add("InsertFiles of twice as many / of those", text("%.0f ms / %.0f ms", twice, single), twice / single,
        2.3);
  }

  // Processes one after another, as a build manager starts them at the least.
  double spawnLoop(const Tree& tree) {
    return millisecondsOf([&] {
      const std::string program = standIn();
      for (int i = 0; i < static_cast<int>(tree.sources.size()); ++i) {
        const std::string source = tree.root + "/" + tree.sources[static_cast<std::size_t>(i)];
        const std::string output = "-o" + tree.root + "/" + tree.object(i, "obj-loop");
        const char* arguments[] = {program.c_str(), "-c", source.c_str(), output.c_str(), nullptr};
        pid_t child = 0;
        if (posix_spawn(&child, program.c_str(), nullptr, nullptr, const_cast<char**>(arguments), environ) !=
            0) {
          throw std::runtime_error("cannot start the stand-in");
        }
        waitpid(child, nullptr, 0);
      }
    });
  }

  void toolStarts(BenchHost& host) {
    const int count = options_.quick ? 200 : 2000;
    const Tree tree = makeTree(path("starts"), count, 10, 0);
    for (const char* directory : {"obj-loop", "obj-ninja"})
      std::filesystem::create_directories(tree.root + "/" + directory);
    writeNinjaFile(tree, standIn(), false);
    const Ref<IProject> direct = host.newProject(tree.root, "direct.nqp");
    host.insertFiles(*direct, tree);
    const Ref<IDispatch> plain = host.addTool(*direct, CLSID_CmdLine, "plain");
    host.set(*direct, *plain, "Command",
             BString::fromNarrow(standIn() + " -c $(FileFullPath) -o$(OutDir)$(FileName).obj"));
    host.set(*direct, *plain, "Output", BString(u".obj"));
    host.set(*direct, *plain, "CommandOutDir", BString(u"obj-direct"));
    const Ref<IProject> adapted = host.newProject(tree.root, "adapted.nqp");
    host.insertFiles(*adapted, tree);
    const Ref<IDispatch> compiler = host.addTool(*adapted, CLSID_Cc, "compiler");
    host.setTarget(*adapted, "bench");
    host.set(*adapted, *compiler, "CommandOutDir", BString(u"obj-adapted"));
    Contest contest;
    contest.add("loop", [&] { return spawnLoop(tree); });
    contest.add("ninja", [&] {
      runProgram({"ninja", "-t", "clean"}, tree.root);
      return runProgram({"ninja", "-j1"}, tree.root).milliseconds;
    });
    contest.add("direct", [&] { return millisecondsOf([&] { host.build(*direct, kRebuild); }); });
    contest.add("adapter", [&] { return millisecondsOf([&] { host.build(*adapted, kRebuild); }); });
    contest.run(std::min(options_.rounds, 5));
    expectAllMade(tree, "obj-direct");
    expectAllMade(tree, "obj-adapted");
    const double ninja = contest.medianOf("ninja");
    const double ours = contest.medianOf("direct");
    const double adapter = contest.medianOf("adapter");
    const double loop = contest.medianOf("loop");
    add("2,000 tool starts / ninja -j1", text("%.0f ms / %.0f ms", ours, ninja), ours / ninja, 0.8);
    add("2,000 tool starts through gnu-cc / ninja -j1", text("%.0f ms / %.0f ms", adapter, ninja),
        adapter / ninja, 1.1);
    add("ninja -j1 / a bare posix_spawn loop", text("%.0f ms / %.0f ms", ninja, loop), ninja / loop, 0);
    add("2,000 tool starts / a bare posix_spawn loop", text("%.0f ms / %.0f ms", ours, loop), ours / loop, 0);
    host.closeProject(*direct);
    host.closeProject(*adapted);
  }
  static void expectAllMade(const Tree& tree, const std::string& directory) {
    for (int i = 0; i < static_cast<int>(tree.sources.size()); ++i) {
      if (!std::filesystem::exists(tree.root + "/" + tree.object(i, directory))) {
        throw std::runtime_error("missing " + tree.object(i, directory));
      }
    }
  }

  void outputLines(BenchHost& host) {
    const std::string count = options_.quick ? "100000" : "1000000";
    const Tree tree = makeTree(path("lines"), 1, 10, 0);
    const Ref<IProject> project = host.newProject(tree.root, "lines.nqp");
    host.insertFiles(*project, tree);
    const Ref<IDispatch> tool = host.addTool(*project, CLSID_CmdLine, "printer");
    host.set(*project, *tool, "Command", BString::fromNarrow(standIn() + " --lines " + count));
    check(project->ProjectSave());
    host.closeProject(*project);
    double memory = 0;
    Contest contest;
    contest.add("cat", [&] {
      return runProgram({"sh", "-c", standIn() + " --lines " + count + " | cat"}, tree.root, path("cat.txt"))
          .milliseconds;
    });
    contest.add("tab", [&] {
      const Run run = forgeyard({"rebuild", "-p", "lines.nqp"}, tree.root, path("tab.txt"));
      memory = std::max(memory, run.peakMegabytes);
      return run.milliseconds;
    });
    contest.run(std::min(options_.rounds, 5));
    if (std::filesystem::file_size(path("tab.txt")) < std::filesystem::file_size(path("cat.txt"))) {
      throw std::runtime_error("lines were lost on the way to the file");
    }
    const double cat = contest.medianOf("cat");
    const double tab = contest.medianOf("tab");
    add("1,000,000 lines through the tab to a file / cat", text("%.0f ms / %.0f ms", tab, cat), tab / cat, 2);
    add("peak memory of that, MiB (aim 40)", text("%.1f MiB%.0s", memory, 0), memory, 40);
  }

  Options options_;
  std::string bin_;
  std::vector<Row> rows_;
  Tree large_;
  Ref<IProject> project_;
  int inserted_ = 0;
};

}  // namespace
}  // namespace forgeyard::bench

int main(int argc, char** argv) {
  forgeyard::bench::Options options;
  CLI::App app("Measures fixed workloads against other programs in the same run.");
  app.add_flag("--quick", options.quick, "A tenth of the size, to see that all of it works");
  app.add_option("--rounds", options.rounds, "How often each is measured")
      ->check(CLI::Range(1, 1000))
      ->capture_default_str();
  app.add_option("DIRECTORY", options.directory, "For the trees; made anew, may be deleted afterwards")
      ->required();
  CLI11_PARSE(app, argc, argv);
  try {
    forgeyard::bench::Bench(options).run();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "forgeyard_bench: %s\n", error.what());
    return 1;
  }
}
