#include "hosts/console/usage/examples.h"

#include <array>

namespace forgeyard::console {

namespace {

constexpr std::array kExamples{
    Example{"", "forgeyard new first.nqp", "Make a project."},
    Example{"", "forgeyard folder add sources --filter \"c;h\"",
            "A folder that takes C sources and headers."},
    Example{"", "forgeyard component add cc compile && forgeyard connect sources compile",
            "A compiler for what is in the folder."},
    Example{"", "forgeyard file add *.c *.h", "Sources; each goes where its extension belongs."},
    Example{"", "forgeyard config set Target=native OutputDirectory=out IntermediateDirectory=obj",
            "What the configuration is for, and where results go."},
    Example{"", "forgeyard build", "Run what is out of date."},
    Example{"build", "forgeyard -p board.nqp -c debug build",
            "The configuration debug of a project elsewhere."},
    Example{"build", "forgeyard --json build | jq -r .type", "For a program: one JSON object a line."},
    Example{"build", "forgeyard build --dry-run", "The commands alone."},
    Example{"compile", "forgeyard compile src/main.c", "One file, out of date or not."},
    Example{"completion", "source <(forgeyard completion bash)", "For this shell."},
    Example{"component", "forgeyard component add cmdline link", "A component with a command of its own."},
    Example{"component", "forgeyard component remove '#3'", "By its number, where two have one name."},
    Example{"config", "forgeyard config add debug --from Default", "A copy under another name."},
    Example{"config", "forgeyard -c debug config set OutputDirectory=debug",
            "Change one that is not active."},
    Example{"connect", "forgeyard connect compile link", "The linker gets what the compiler makes."},
    Example{"doctor", "forgeyard doctor -q", "Only what is wrong."},
    Example{"dump", "forgeyard dump old.nqp | less", "What stands in a file, damaged or not."},
    Example{"export", "forgeyard export compile-commands && clang-tidy -p . src/main.c",
            "What tools for sources need."},
    Example{"export", "forgeyard export ninja && ninja", "The same build without Forgeyard."},
    Example{"export", "forgeyard -c release export make -o release.mk", "Another configuration, elsewhere."},
    Example{"file", "forgeyard file add src/*.c --folder sources", "Into a folder of your choice."},
    Example{"folder", "forgeyard folder add sources --filter \"c;h\"", "For files of two extensions."},
    Example{"get", "forgeyard get compile WarningLevel", "The value of one property."},
    Example{"graph", "forgeyard graph --format svg > graph.svg", "A picture for a document."},
    Example{"history", "forgeyard history Project --from 2", "What is new since version 2."},
    Example{"import", "forgeyard import . --dry-run", "What a project of these sources would be."},
    Example{"man", "forgeyard man build | man -l -", "A page, without an installation."},
    Example{"merge", "forgeyard merge base.nqp ours.nqp theirs.nqp -o merged.nqp",
            "Without git, and OURS stays as it is."},
    Example{"new", "forgeyard new board/board.nqp --name Board", "In a directory that is made if need be."},
    Example{"restore", "forgeyard restore first.json again.nqp", "A project of a changed dump."},
    Example{"script", "forgeyard -p p.nqp script report.lua --verbose", "The last word is the script's."},
    Example{"serve", "forgeyard -p p.nqp serve --stdio", "For an editor."},
    Example{"set", "forgeyard set compile WarningLevel=2 DebugInfo=yes", "All of them or none."},
    Example{"set", "forgeyard set compile DefineMacros=NDEBUG --all-configs", "In every configuration."},
    Example{"status", "forgeyard status", "What a build has to do, and what it lacks."},
    Example{"target", "forgeyard target add board --compiler \"gnu-cc arm-none-eabi-gcc -mcpu=cortex-m4\"",
            "A cross compiler with options."},
    Example{"target", "forgeyard target detect", "After a compiler was installed."},
    Example{"typelib", "forgeyard typelib project", "What a script can do with a project."},
    Example{"watch", "forgeyard watch", "Build at each change, until Ctrl-C."},
    Example{"why", "forgeyard why compile", "Each file with the reason."},
    Example{"workspace", "forgeyard workspace add first.nqp && forgeyard workspace use first",
            "Commands find the active project from any directory."},
};

}  // namespace

std::span<const Example> examples() {
  return kExamples;
}

bool shows(const Example& example, std::string_view name) {
  const std::string_view first = name.substr(0, name.find(' '));
  return example.word == first && std::string_view(example.line).find(name) != std::string_view::npos;
}

}  // namespace forgeyard::console
