// completion with its inner part, complete, and man: what shells need of the tables of commands.

#include "adapters/common/diagnostics.h"
#include "adapters/common/whole_file.h"
#include "hosts/console/commands/command.h"
#include "hosts/console/services/standard_output.h"
#include "hosts/console/usage/candidates.h"
#include "hosts/console/usage/completion_scripts.h"
#include "hosts/console/usage/manual.h"
#include "hosts/console/usage/shell_line.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

Shell requiredShell(const std::string& name) {
  if (const auto shell = shellNamed(name)) return *shell;
  const std::vector<std::string> shells{"bash", "zsh", "fish"};
  throw Failure("There is no completion for " + name + "." + suggestion(name, shells, "shells"));
}

ExitCode showScript(const Invocation& invocation) {
  LineWriter& out = standardOutput();
  out.lines(completionScript(requiredShell(invocation.text("SHELL"))));
  return finishOutput(out, ExitCode::Success);
}

const char* textOf(Completion::Files files) {
  switch (files) {
    case Completion::Files::Any:
      return "files";
    case Completion::Files::Projects:
      return "projects";
    case Completion::Files::Directories:
      return "directories";
    case Completion::Files::None:
      break;
  }
  return "words";
}

// One candidate as that shell takes it.
std::string answer(const Candidate& candidate, const ShellLine& line, Shell shell) {
  if (shell != Shell::Bash) return candidate.text + "\t" + candidate.help;
  const std::string_view replacing = std::string_view(candidate.text).substr(line.kept);
  // Its line editor closes an open quote by itself unless that is done.
  const std::string end = line.quote ? std::string(1, line.quote) : " ";
  return quotedForBash(replacing, line.quote) + (candidate.open ? "" : end);
}

void answerAll(LineWriter& out, const Invocation& invocation) {
  const auto shell = shellNamed(invocation.text("SHELL"));
  if (!shell) return;
  ShellLine line = readShellLine(invocation.text("LINE"), *shell);
  if (line.words.empty()) return;
  line.words.erase(line.words.begin());
  const Completion completion = complete(TypedLine(line.words, line.current));
  out.line(std::string_view(textOf(completion.files)));
  // The name that Bash looks for in a directory by itself.
  if (completion.files != Completion::Files::None) out.line(line.current.substr(line.kept));
  for (const Candidate& candidate : completion.candidates) {
    if (candidate.text.size() < line.kept || candidate.text.find_first_of("\t\n") != std::string::npos)
      continue;
    out.line(answer(candidate, line, *shell));
  }
}

// A shell in the midst of a line has no use for messages.
ExitCode answerShell(const Invocation& invocation) {
  LineWriter& out = standardOutput();
  try {
    answerAll(out, invocation);
  } catch (const std::exception&) {
  }
  return finishOutput(out, ExitCode::Success);
}

void writePage(const std::string& directory, const std::string& page) {
  const std::string file = directory + "/" + page + ".1";
  if (const int error = replaceFile(file, manualPage(page)); error != 0)
    throw Failure(file + " can't be written: " + errorWords(error) + ".");
}

std::string requiredPage(const std::string& word) {
  if (word.empty()) return manualPages().front();
  std::vector<std::string> words;
  for (const std::string& page : manualPages()) {
    if (page.ends_with("-" + word) || page == word) return page;
    words.push_back(page.substr(page.find('-') + 1));
  }
  throw Failure("There is no command " + word + "." + suggestion(word, words, "commands"));
}

ExitCode showManual(const Invocation& invocation) {
  LineWriter& out = standardOutput();
  const std::string& word = invocation.text("COMMAND");
  if (!invocation.has("--directory")) {
    out.lines(manualPage(requiredPage(word)));
    return finishOutput(out, ExitCode::Success);
  }
  for (const std::string& page : word.empty() ? manualPages() : std::vector{requiredPage(word)})
    writePage(invocation.text("--directory"), page);
  return finishOutput(out, ExitCode::Success);
}

constexpr std::array kCommands{
    Command{"completion",
            "Write the script that lets a shell complete command lines, names of the project included",
            {{{Kind::Text, "SHELL", "bash|zsh|fish",
               "bash, zsh or fish; the comments in the script say how to use it"}}},
            showScript},
    Command{"man",
            "Write a manual page, for the program man",
            {{{Kind::OptionalText, "COMMAND", "",
               "a command's first word; left out: the page of the whole program", Completes::Command},
              {Kind::Option, "--directory", "DIR", "into files there; without COMMAND all pages",
               Completes::Directory}}},
            showManual},
    Command{"complete",
            "Answer what may stand at the end of a command line; for the scripts of \"completion\"",
            {{{Kind::Text, "SHELL", "bash|zsh|fish", "whose quotes the line has"},
              {Kind::Text, "LINE", "", "the line up to the cursor"}}},
            answerShell,
            true},
};

}  // namespace

std::span<const Command> usageCommands() {
  return kCommands;
}

}  // namespace forgeyard::console
