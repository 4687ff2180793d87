#include "hosts/console/cli.h"

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <sstream>

#include "hosts/console/base/report.h"
#include "hosts/console/command_line/arguments.h"
#include "hosts/console/command_line/parser.h"
#include "hosts/console/command_line/usage_message.h"
#include "hosts/console/services/json_lines.h"
#include "hosts/console/services/standard_output.h"
#include "workbench/base/failure.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

ExitCode show(const std::string& text) {
  LineWriter& out = standardOutput();
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) out.line(line);
  return finishOutput(out, ExitCode::Success);
}

ExitCode runGuarded(const Command& command, const Invocation& invocation) {
  try {
    return command.run(invocation);
  } catch (const Failure& failure) {
    complainOfFailure(failure.what());
  } catch (const StatusError& error) {
    complainOfFailure("The module refused: " + describe(error.status()) + ".");
  } catch (const std::exception& error) {
    complainOfFailure(error.what());
  }
  return ExitCode::Failure;
}

// Also where the line as a whole can't be parsed.
bool asksForJson(const std::vector<std::string>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  return std::find(arguments.begin(), end, "--json") != end;
}

ExitCode run(const std::vector<std::string>& typed, std::vector<std::string> rest) {
  const std::vector<std::string> arguments = guardedArguments(typed);
  Options options;
  CommandLine line(options);
  line.setRest(std::move(rest));
  try {
    line.parse(arguments);
  } catch (const CLI::Success& wish) {
    return show(line.text(wish));
  } catch (const CLI::ParseError& error) {
    complainOfFailure(usageMessage(arguments, error));
    return ExitCode::Failure;
  }
  options.project = unguarded(options.project);
  options.workspace = unguarded(options.workspace);
  options.configuration = unguarded(options.configuration);
  return runGuarded(line.command(), line.invocation(options));
}

// The last line of --json.
ExitCode tellResult(ExitCode code, std::chrono::milliseconds elapsed) {
  LineWriter& out = standardOutput();
  if (out.state() != LineWriter::State::Open) return code;
  writeObject(out, "result", {{"exit_code", static_cast<int>(code)}, {"elapsed_ms", elapsed.count()}});
  return finishOutput(out, code);
}

}  // namespace

int runCommandLine(int argc, char** argv) {
  const auto begin = std::chrono::steady_clock::now();
  std::vector<std::string> typed(argv + 1, argv + argc);
  std::vector<std::string> rest = cutRest(typed);
  const bool json = asksForJson(typed);
  speakIn(json ? Speech::Json : Speech::Text);
  ExitCode code = run(typed, std::move(rest));
  if (json) {
    const auto elapsed = std::chrono::steady_clock::now() - begin;
    code = tellResult(code, std::chrono::duration_cast<std::chrono::milliseconds>(elapsed));
  }
  return static_cast<int>(code);
}

}  // namespace forgeyard::console
