#include "hosts/console/usage/manual.h"

#include <algorithm>
#include <cctype>

#include "hosts/console/commands/all_commands.h"
#include "hosts/console/commands/common_usage.h"
#include "hosts/console/usage/examples.h"
#include "typelib/type_library.h"
#include "workbench/project/components.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

constexpr const char* kProgram = "forgeyard";
constexpr const char* kPurpose = "build projects of source files, tools and what joins them";

// A text as troff takes it. What begins a line must not look like a request.
std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if ((c == '.' || c == '\'') && (result.empty() || result.back() == '\n')) result += "\\&";
    if (c == '\\') {
      result += "\\e";
    } else if (c == '-') {
      result += "\\-";
    } else {
      result += c;
    }
  }
  return result;
}

// On one line.
std::string flat(std::string_view text) {
  std::string result(text);
  std::replace(result.begin(), result.end(), '\n', ' ');
  return escaped(result);
}

std::string bold(std::string_view text) {
  return "\\fB" + flat(text) + "\\fR";
}
std::string italic(std::string_view text) {
  return "\\fI" + flat(text) + "\\fR";
}

// As the end of "NAME - purpose".
std::string lowered(std::string text) {
  const bool word = text.size() > 1 && std::islower(static_cast<unsigned char>(text[1])) != 0;
  if (word) text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
  return text;
}

// An option or an argument as it is typed: "[--folder NAME]", "PATH...".
std::string synopsisOf(const Parameter& parameter) {
  switch (parameter.kind) {
    case Kind::Text:
      return italic(parameter.name);
    case Kind::OptionalText:
      return "[" + italic(parameter.name) + "]";
    case Kind::Texts:
      return italic(parameter.name) + "...";
    case Kind::OptionalTexts:
    case Kind::Rest:
      return "[" + italic(parameter.name) + "...]";
    case Kind::Option:
      return "[" + bold(longForm(parameter.name)) + " " + italic(parameter.value) + "]";
    case Kind::Flag:
      return "[" + bold(longForm(parameter.name)) + "]";
    case Kind::None:
      break;
  }
  return "";
}

// An option in all its forms, and what follows it.
std::string labelOf(const Parameter& option) {
  const std::string_view brief = shortForm(option.name);
  std::string label = brief.empty() ? "" : bold(brief) + ", ";
  label += bold(longForm(option.name));
  if (option.kind == Kind::Option) label += " " + italic(option.value);
  return label;
}

class Page {
 public:
  Page(const std::string& name, const std::string& purpose) {
    std::string title = name;
    std::transform(title.begin(), title.end(), title.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    line(".TH \"" + flat(title) +
         "\" 1 \"" FORGEYARD_DATE "\" \"Forgeyard " FORGEYARD_VERSION "\" \"Forgeyard Manual\"");
    // A name that is divided can't be copied from the page.
    line(".nh");
    line(".ad l");
    section("NAME");
    line(flat(name) + " \\- " + flat(purpose));
  }

  void line(const std::string& text) { text_ += text + "\n"; }
  void section(const char* name) { line(std::string(".SH ") + name); }
  void item(const std::string& label, const std::string& text) {
    line(".TP");
    line(label);
    line(text);
  }

  void synopsis(const Command& command) {
    std::string text = bold(std::string(kProgram) + " " + command.name);
    for (const Parameter& parameter : command.parameters) {
      if (parameter.kind != Kind::None) text += " " + synopsisOf(parameter);
    }
    line(text);
  }

  void parameters(const Command& command) {
    for (const Parameter& parameter : command.parameters) {
      if (parameter.kind == Kind::None) continue;
      const bool option = parameter.kind == Kind::Option || parameter.kind == Kind::Flag;
      item(option ? labelOf(parameter) : italic(parameter.name), flat(parameter.help));
    }
  }

  void notes(const char* name, std::span<const UsageNote> rows) {
    section(name);
    for (const UsageNote& row : rows) item(bold(row.name), flat(row.help) + ".");
  }

  // What a component's settings can be set to, as their descriptions list it.
  void properties(const TypeInfo& type) {
    for (const Member& member : type.members) {
      if (member.put) item(bold(member.name), flat(member.help) + ".");
    }
  }
  void properties() {
    section("PROPERTIES");
    line("Of the settings of every kind of component:");
    properties(typeInfo<IBuilderSettings>());
    for (const ComponentKind& kind : componentKinds()) {
      const TypeInfo* type = findInterface(kind.settings);
      if (!type || kind.name == kFolderKind) continue;
      line(".SS " + flat(kind.name) + ": " + flat(kind.help));
      for (; type != &typeInfo<IBuilderSettings>(); type = type->base) properties(*type);
    }
  }

  void showExamples(std::string_view word) {
    bool any = false;
    for (const Example& example : examples()) {
      if (example.word != word) continue;
      if (any) line(".PP");
      if (!std::exchange(any, true)) section("EXAMPLES");
      line(flat(example.help));
      line(".nf");
      line("    " + flat(example.line));
      line(".fi");
    }
  }

  void seeAlso(const std::vector<std::string>& pages) {
    section("SEE ALSO");
    std::string text;
    for (const std::string& page : pages) text += (text.empty() ? "" : ",\n") + bold(page) + "(1)";
    line(text);
  }

  std::string take() { return std::move(text_); }

 private:
  std::string text_;
};

std::vector<std::string> firstWords() {
  std::vector<std::string> words;
  for (const Command* command : allCommands()) {
    const std::string word = firstWord(command->name);
    if (!command->hidden && std::find(words.begin(), words.end(), word) == words.end()) words.push_back(word);
  }
  return words;
}

std::vector<const Command*> commandsOf(const std::string& word) {
  std::vector<const Command*> commands = allCommands();
  std::erase_if(commands, [&](const Command* one) { return one->hidden || firstWord(one->name) != word; });
  return commands;
}

std::string pageOf(const std::string& word) {
  return std::string(kProgram) + "-" + word;
}

void addGlobalOptions(Page& page) {
  page.section("OPTIONS");
  page.line("Each may stand before or behind the command.");
  for (const GlobalOption& option : globalOptions()) {
    page.item(labelOf(option.row), flat(option.row.help) + ".");
  }
  page.item(bold("-h") + ", " + bold("--help"), "Show what there is; also behind a command.");
  page.item(bold("--version"), "Show the version.");
}

std::string mainPage() {
  Page page(kProgram, kPurpose);
  page.section("SYNOPSIS");
  page.line(bold(kProgram) + " [" + italic("OPTION") + "...] " + italic("COMMAND") + " [" +
            italic("ARGUMENT") + "...]");
  page.section("DESCRIPTION");
  page.line(
      "A project of source files, tools and the connections between them is kept in one file. A build runs "
      "what is out of date, tool by tool.");
  page.section("COMMANDS");
  const char* heading = "";
  for (const CommandFamily& family : commandFamilies()) {
    if (std::string_view(family.heading) != std::exchange(heading, family.heading))
      page.line(".SS " + flat(family.heading));
    for (const Command& command : family.commands()) {
      if (!command.hidden) page.item(bold(command.name), flat(command.help) + ".");
    }
  }
  addGlobalOptions(page);
  page.notes("EXIT STATUS", exitCodes());
  page.notes("ENVIRONMENT", environmentVariables());
  page.notes("FILES", usedFiles());
  page.showExamples("");
  std::vector<std::string> others;
  for (const std::string& word : firstWords()) others.push_back(pageOf(word));
  page.seeAlso(others);
  return page.take();
}

std::string purposeOf(const std::string& word, const std::vector<const Command*>& commands) {
  if (!hasGroup(commands.front()->name)) return lowered(commands.front()->help);
  const auto groups = commandGroups();
  const auto group =
      std::find_if(groups.begin(), groups.end(), [&](const auto& row) { return row.name == word; });
  return group == groups.end() ? word : lowered(group->help);
}

std::string commandPage(const std::string& word) {
  const std::vector<const Command*> commands = commandsOf(word);
  Page page(pageOf(word), purposeOf(word, commands));
  page.section("SYNOPSIS");
  for (const Command* command : commands) {
    if (command != commands.front()) page.line(".br");
    page.synopsis(*command);
  }
  page.section("DESCRIPTION");
  for (const Command* command : commands) {
    const bool only = commands.size() == 1;
    if (!only) page.line(".SS " + flat(command->name));
    page.line(flat(command->help) + ".");
    page.parameters(*command);
  }
  if (word == "set") page.properties();
  page.section("OPTIONS");
  page.line("Those of every command stand in " + bold(kProgram) + "(1).");
  page.notes("EXIT STATUS", exitCodes());
  page.showExamples(word);
  page.seeAlso({kProgram});
  return page.take();
}

}  // namespace

std::vector<std::string> manualPages() {
  std::vector<std::string> pages{kProgram};
  for (const std::string& word : firstWords()) pages.push_back(pageOf(word));
  return pages;
}

std::string manualPage(const std::string& page) {
  return page == kProgram ? mainPage() : commandPage(page.substr(page.find('-') + 1));
}

}  // namespace forgeyard::console
