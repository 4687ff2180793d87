#include "hosts/console/usage/typed_line.h"

#include <algorithm>
#include <utility>

#include "hosts/console/commands/all_commands.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

using Kind = Parameter::Kind;

constexpr Parameter kHelp{Kind::Flag, "-h,--help", "", "Show what there is; also behind a command"};
constexpr Parameter kVersion{Kind::Flag, "--version", "", "Show the version"};

bool takesMany(const Parameter& parameter) {
  return parameter.kind == Kind::Texts || parameter.kind == Kind::OptionalTexts ||
         parameter.kind == Kind::Rest;
}

bool isArgument(const Parameter& parameter) {
  return parameter.kind == Kind::Text || parameter.kind == Kind::OptionalText || takesMany(parameter);
}

bool isOption(const Parameter& parameter) {
  return parameter.kind == Kind::Option || parameter.kind == Kind::Flag;
}

}  // namespace

TypedLine::TypedLine(const std::vector<std::string>& words, std::string current) {
  for (const std::string& word : words) take(word);
  value_ = std::move(current);
  look(value_);
}

std::string TypedLine::argument(std::string_view name) const {
  const auto found = arguments_.find(name);
  return found == arguments_.end() ? "" : found->second;
}

void TypedLine::take(const std::string& word) {
  if (pending_) return takeValue(*std::exchange(pending_, nullptr), word);
  if (word == "--" && !onlyOperands_) {
    onlyOperands_ = true;
  } else if (!onlyOperands_ && word.size() > 1 && word.front() == '-') {
    takeOption(word);
  } else {
    takeWord(word);
  }
}

void TypedLine::takeOption(const std::string& word) {
  const std::size_t sign = word.find('=');
  const bool isLong = word.starts_with("--");
  const std::string form = isLong ? word.substr(0, sign) : word.substr(0, 2);
  const Parameter* row = optionRow(form);
  if (!row) return;
  given_.insert(row->name);
  if (row->kind != Kind::Option) return;
  if (isLong ? sign != word.npos : word.size() > 2)
    return takeValue(*row, word.substr(isLong ? sign + 1 : 2));
  pending_ = row;
}

void TypedLine::takeWord(const std::string& word) {
  if (command_) {
    if (const Parameter* row = nextArgument()) arguments_.emplace(row->name, word);
    ++positions_;
    // What a command hands on has no options of this program in it.
    const Parameter* next = nextArgument();
    if (next && next->kind == Kind::Rest) onlyOperands_ = true;
    return;
  }
  const std::string name = group_.empty() ? word : group_ + " " + word;
  for (const Command* command : allCommands()) {
    if (command->name == name) command_ = command;
  }
  if (!command_) group_ = name;
}

void TypedLine::takeValue(const Parameter& row, const std::string& value) {
  for (const GlobalOption& option : globalOptions()) {
    if (option.row.name == std::string_view(row.name) && option.text) options_.*option.text = value;
  }
  arguments_.emplace(row.name, value);
}

void TypedLine::look(const std::string& current) {
  if (pending_) {
    wanted_ = Wanted::Value;
    row_ = *pending_;
    return;
  }
  if (!onlyOperands_ && current.starts_with('-')) {
    wanted_ = Wanted::Option;
    const std::size_t sign = current.find('=');
    const Parameter* row = sign == current.npos ? nullptr : optionRow(current.substr(0, sign));
    if (!row || row->kind != Kind::Option) return;
    wanted_ = Wanted::Value;
    row_ = *row;
    beforeValue_ = current.substr(0, sign + 1);
    value_ = current.substr(sign + 1);
    return;
  }
  if (!command_) {
    wanted_ = Wanted::CommandWord;
  } else if (const Parameter* row = nextArgument()) {
    wanted_ = Wanted::Value;
    row_ = *row;
  }
}

const Parameter* TypedLine::optionRow(std::string_view form) const {
  const auto isForm = [&](const Parameter& row) { return isOption(row) && isFormOf(form, row); };
  if (const GlobalOption* option = globalOption(form)) return &option->row;
  if (!command_) return nullptr;
  const auto found = std::find_if(command_->parameters.begin(), command_->parameters.end(), isForm);
  return found == command_->parameters.end() ? nullptr : &*found;
}

const Parameter* TypedLine::nextArgument() const {
  std::size_t left = positions_;
  for (const Parameter& parameter : command_->parameters) {
    if (!isArgument(parameter)) continue;
    if (left == 0 || takesMany(parameter)) return &parameter;
    --left;
  }
  return nullptr;
}

std::vector<Parameter> TypedLine::optionsLeft() const {
  std::vector<Parameter> rows;
  if (command_) {
    std::copy_if(command_->parameters.begin(), command_->parameters.end(), std::back_inserter(rows),
                 isOption);
  }
  for (const GlobalOption& option : globalOptions()) rows.push_back(option.row);
  rows.push_back(kHelp);
  if (!command_) rows.push_back(kVersion);
  std::erase_if(rows, [&](const Parameter& row) { return given_.contains(row.name); });
  return rows;
}

}  // namespace forgeyard::console
