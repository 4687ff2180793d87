// The program's entry point where the processor is known: starts a command before the C library is up.
//
// Starting a static C library takes three times as long as all that the spawner does for a command, and far
// longer in a virtual machine (it asks the processor for its features some forty times, and the hypervisor
// answers each time); and the spawner runs once for every tool of every build. So a command that needs
// nothing from the registry is split, found, started and watched from here by code that needs no library.
// Every other command, and every mistake, goes on to the ordinary start and main().

#include "platform/paths/word_cutter.h"
#include "spawner/kernel.h"
#include "spawner/tool_run.h"
#include "spawner/tool_search.h"

namespace forgeyard {
namespace {

constexpr int kMaximumWords = 4096;

struct CommandBytes {
  const char* text;

  bool has(unsigned long i) const noexcept { return text[i] != '\0'; }
  char at(unsigned long i) const noexcept { return text[i]; }
  static bool isLiteral(unsigned long, bool) noexcept { return false; }
};

// Collects the first word and leaves the command alone.
struct NameWord {
  const char* command;
  PathBuffer& name;

  void addByte(unsigned long i) noexcept { name.add(command[i]); }
  void addBackslash() noexcept { name.add('\\'); }
  static void endWord() noexcept {}
};

// Writes the words over the command itself: a word is never longer than its spelling, and what is overwritten
// has been read.
struct WordsInPlace {
  char* command;
  const char** words;
  int count = 0;
  unsigned long start = 0;
  unsigned long end = 0;

  void addByte(unsigned long i) noexcept { command[end++] = command[i]; }
  void addBackslash() noexcept { command[end++] = '\\'; }
  void endWord() noexcept {
    command[end++] = '\0';
    words[count++] = command + start;
    start = end;
  }
};

struct Shape {
  bool backslashes = false;
  int blanks = 0;
};

Shape shapeOf(const char* command) noexcept {
  Shape shape;
  for (; *command; ++command) {
    if (*command == '\\') shape.backslashes = true;
    if (*command == ' ' || *command == '\t') ++shape.blanks;
  }
  return shape;
}

// False for a name that needs a look at the registry or is an option of ours.
bool isPlainName(const PathBuffer& name, bool& hasDirectory) noexcept {
  for (const char* at = name.text(); *at; ++at) {
    if (*at == '\\' || *at == ':') return false;
    if (*at == '/') hasDirectory = true;
  }
  return name.size() > 0 && !name.wasCut() && !startsWith(name.text(), "--");
}

// The program's file, if the registry isn't needed to know whether the arguments stay as they are.
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

}  // namespace

// `stack` is what the kernel puts there for a new program: count, arguments, null, environment, null.
// Returns, with nothing changed, for a command that it leaves to main().
extern "C" void tideSpawnQuickStart(long* stack) noexcept {
  char** const arguments = reinterpret_cast<char**>(stack + 1);
  const char* const* const environment = arguments + stack[0] + 1;
  if (stack[0] != 2) return;
  char* const command = arguments[1];
  const Shape shape = shapeOf(command);
  // A word more than there are blanks, and one more after a program's closing quote.
  if (shape.blanks + 3 > kMaximumWords) return;

  const CommandBytes bytes{command};
  PathBuffer name;
  NameWord nameWord{command, name};
  WordCutter start(bytes, nameWord);
  start.skipBlanks();
  const unsigned long programStart = start.position();
  start.takeProgram();
  PathBuffer file;
  bool hasDirectory = false;
  if (!isPlainName(name, hasDirectory)) return;
  if (!findProgram(name, hasDirectory, shape.backslashes, environment, file)) return;

  static const char* list[kMaximumWords];
  WordsInPlace words{command, list};
  WordCutter cutter(bytes, words, programStart);
  cutter.takeProgram();
  cutter.takeArguments();
  list[words.count] = nullptr;
  kernel::exit(runTool({file.text(), name.text(), list, environment}));
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
    "  xor %edx, %edx\n"  // no function to call at exit, as the kernel itself passes
    "  jmp _start\n");
