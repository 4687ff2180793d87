#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "hosts/console/commands/command.h"
#include "hosts/console/commands/common_usage.h"

namespace forgeyard::console {

// A command line of this program up to the cursor, and what may stand at the cursor.
class TypedLine {
 public:
  // The words behind the program's name, and the one at the cursor.
  TypedLine(const std::vector<std::string>& words, std::string current);

  // Those that have been typed.
  const Options& options() const { return options_; }
  // Null before it is complete.
  const Command* command() const { return command_; }
  // The first word of a command of two, while the second is not there.
  const std::string& group() const { return group_; }
  // What was typed for the argument of that name; empty if nothing.
  std::string argument(std::string_view name) const;

  enum class Wanted : std::uint8_t { Nothing, CommandWord, Option, Value };
  Wanted wanted() const { return wanted_; }
  // Of a value: the row that it belongs to.
  const Parameter& row() const { return row_; }
  // What of the word at the cursor is the value: all of it but for a leading "--name=".
  const std::string& value() const { return value_; }
  const std::string& beforeValue() const { return beforeValue_; }

  // The options that may still come, long forms first.
  std::vector<Parameter> optionsLeft() const;

 private:
  void take(const std::string& word);
  void takeOption(const std::string& word);
  void takeWord(const std::string& word);
  void takeValue(const Parameter& row, const std::string& value);
  void look(const std::string& current);
  // The row of an option in one of its forms; null for none.
  const Parameter* optionRow(std::string_view form) const;
  // The row of the next argument; null when no more can come.
  const Parameter* nextArgument() const;

  Options options_;
  const Command* command_ = nullptr;
  std::string group_;
  std::map<std::string, std::string, std::less<>> arguments_;
  std::set<std::string, std::less<>> given_;  // names of options
  std::size_t positions_ = 0;                 // arguments so far
  const Parameter* pending_ = nullptr;        // an option whose value follows
  bool onlyOperands_ = false;
  Wanted wanted_ = Wanted::Nothing;
  Parameter row_;
  std::string value_;
  std::string beforeValue_;
};

}  // namespace forgeyard::console
