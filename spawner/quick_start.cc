// The program's entry point where the processor is known: starts a simple command before the C library is up.
//
// Bringing a static C library up costs three times as much as all that the spawner does for a plain command,
// and in a virtual machine far more (it asks the processor for its features some forty times, and each answer
// comes from the hypervisor); and the spawner runs once for every tool of every build. So a command that
// needs no quoting rules and no table from the registry is split, found, started and watched from here by
// code that needs no library. Every other command, and every mistake, goes on to the ordinary start and
// main().

#include "spawner/kernel.h"
#include "spawner/tool_run.h"
#include "spawner/tool_search.h"

namespace forgeyard {
namespace {

constexpr int MAXIMUM_WORDS = 4096;

bool isBlank(char c) noexcept {
  return c == ' ' || c == '\t';
}

// A command without a double quote is cut at its blanks and nothing else.
struct Shape {
  bool quotes = false;
  bool backslashes = false;
  int words = 0;
};

Shape shapeOf(const char* command) noexcept {
  Shape shape;
  for (const char* at = command; *at; ++at) {
    if (*at == '"') shape.quotes = true;
    if (*at == '\\') shape.backslashes = true;
    if (!isBlank(*at) && (at == command || isBlank(at[-1]))) ++shape.words;
  }
  return shape;
}

// False for a name that needs a look at the registry or is an option of ours.
bool takeProgramName(const char* command, PathBuffer& name, bool& hasDirectory) noexcept {
  for (; *command && !isBlank(*command); ++command) {
    if (*command == '\\' || *command == ':') return false;
    if (*command == '/') hasDirectory = true;
    name.add(*command);
  }
  return !startsWith(name.text(), "--") && !name.wasCut();
}

// The program's file, if it can be told without the registry whether the arguments stay as they are.
bool findProgram(const PathBuffer& name, bool hasDirectory, bool backslashes, const char* const* environment,
                 PathBuffer& file) noexcept {
  if (hasDirectory) {
    file.add(name.text(), name.size());
    return !backslashes;
  }
  PathBuffer directory;
  ownDirectory(directory);
  const Found found = findTool(name.text(), directory.text(), environment, file);
  return found == Found::OwnDirectory || (found == Found::Path && !backslashes);
}

void splitInPlace(char* command, const char** words) noexcept {
  int count = 0;
  for (char* at = command; *at; ++at) {
    if (isBlank(*at)) {
      *at = '\0';
    } else if (at == command || at[-1] == '\0') {
      words[count++] = at;
    }
  }
  words[count] = nullptr;
}

}  // namespace

// `stack` is what the kernel puts there for a new program: count, arguments, null, environment, null.
// Returns, with nothing changed, for a command that is none of its business.
extern "C" void tideSpawnQuickStart(long* stack) noexcept {
  char** const arguments = reinterpret_cast<char**>(stack + 1);
  const char* const* const environment = arguments + stack[0] + 1;
  if (stack[0] != 2) return;
  char* command = arguments[1];
  while (isBlank(*command)) ++command;
  const Shape shape = shapeOf(command);
  if (shape.quotes || shape.words == 0 || shape.words >= MAXIMUM_WORDS) return;

  PathBuffer name;
  PathBuffer file;
  bool hasDirectory = false;
  if (!takeProgramName(command, name, hasDirectory)) return;
  if (!findProgram(name, hasDirectory, shape.backslashes, environment, file)) return;

  static const char* words[MAXIMUM_WORDS];
  splitInPlace(command, words);
  kernel::exit(runTool({file.text(), name.text(), words, environment}));
}

}  // namespace forgeyard

asm(".globl tideSpawnEntry\n"
    ".type tideSpawnEntry, @function\n"
    "tideSpawnEntry:\n"
    "  mov %rsp, %rbx\n"
    "  mov %rsp, %rdi\n"
    "  and $-16, %rsp\n"
    "  call tideSpawnQuickStart\n"
    "  mov %rbx, %rsp\n"
    "  xor %edx, %edx\n"  // no function to call at exit: what the kernel itself says
    "  jmp _start\n");
