#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/spawner/spawned.h"
#include "tests/support/places.h"

namespace forgeyard {

// The tool of the tests is on the PATH; events and registry are the test's own.
class SpawnerTest : public RuntimeTest {
 protected:
  void setRegistry(const std::string& text) { writeFile(scratch_ / "registry", text); }

  ScopedVariable registry_{"FORGEYARD_REGISTRY", scratch_ / "registry"};
  ScopedVariable path_{"PATH", places::spawnerTools() + ":/usr/bin:/bin"};
};

// The same for all ways through the spawner: a command in an argument, plain or with quotes, is started
// before the C library is up, one on standard input by the ordinary program.
class EachWayTest : public SpawnerTest, public testing::WithParamInterface<const char*> {
 protected:
  // The command, with its program's name as the way needs it.
  static std::string command(const std::string& arguments, const std::string& program = "tool") {
    const std::string quote = GetParam() == std::string("quoted") ? "\"" : "";
    return quote + program + quote + " " + arguments;
  }
  // How the way runs it.
  static ProcessOptions tool(const std::string& arguments, const std::string& program = "tool",
                             const std::string& spawner = SPAWNER) {
    const std::string text = command(arguments, program);
    return GetParam() == std::string("input") ? optionsForInput(text, spawner) : optionsFor({spawner, text});
  }
};

inline constexpr const char* kWays[] = {"plain", "quoted", "input"};

}  // namespace forgeyard
