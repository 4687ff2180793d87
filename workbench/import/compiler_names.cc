#include "workbench/import/compiler_names.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <utility>

#include "workbench/import/source_names.h"

namespace forgeyard::workbench {

namespace {

constexpr std::array<std::string_view, 5> kLaunchers{"ccache", "sccache", "distcc", "icecc", "env"};
constexpr std::array<std::string_view, 6> kDrivers{"gcc", "g++", "clang", "clang++", "cc", "c++"};

// The program's file name without a version: "g++" for "/usr/bin/g++-12.2".
std::string plainProgram(const std::string& program) {
  std::string name(fileName(program));
  while (!name.empty() && (std::isdigit(static_cast<unsigned char>(name.back())) != 0 || name.back() == '.'))
    name.pop_back();
  if (name.ends_with('-')) name.pop_back();
  return name;
}

}  // namespace

bool isLauncher(const std::string& program) {
  return std::find(kLaunchers.begin(), kLaunchers.end(), fileName(program)) != kLaunchers.end();
}

bool isCompilerDriver(const std::string& program) {
  const std::string name = plainProgram(program);
  return std::any_of(kDrivers.begin(), kDrivers.end(), [&](std::string_view driver) {
    return name == driver || name.ends_with("-" + std::string(driver));
  });
}

std::string driverForC(const std::string& program) {
  std::string name = plainProgram(program);
  for (const auto& [cxx, c] : {std::pair("clang++", "clang"), {"g++", "gcc"}, {"c++", "cc"}}) {
    if (name.ends_with(cxx)) return name.replace(name.size() - std::string_view(cxx).size(), name.npos, c);
  }
  return name;
}

}  // namespace forgeyard::workbench
