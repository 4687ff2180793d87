#include "hosts/console/doctor/debian_packages.h"

#include <algorithm>
#include <array>

namespace forgeyard::console {

namespace {

struct Tool {
  std::string_view name;
  std::string_view
      package;  // of the native tool; with "-" and the system's name behind it that of a cross tool
};

constexpr std::array kTools{Tool{"gcc", "gcc"}, Tool{"g++", "g++"}, Tool{"as", "binutils"},
                            Tool{"ld", "binutils"}, Tool{"objcopy", "binutils"}};

// Systems whose tools have packages under the system's whole name, beside all "...-linux-gnu...".
constexpr std::array<std::string_view, 3> kBareSystems{"arm-none-eabi", "riscv64-unknown-elf", "avr"};

bool hasPackages(std::string_view system) {
  return system.find("-linux-gnu") != system.npos ||
         std::find(kBareSystems.begin(), kBareSystems.end(), system) != kBareSystems.end();
}

}  // namespace

std::string debianPackageOf(std::string_view program) {
  if (program == "clang" || program == "clang++") return "clang";
  for (const Tool& tool : kTools) {
    if (program == tool.name) return std::string(tool.package);
    // gcc-12 is a package of its own.
    if (tool.name == "gcc" && program.starts_with("gcc-") && program.size() > 4 &&
        std::all_of(program.begin() + 4, program.end(), [](char c) { return c >= '0' && c <= '9'; }))
      return std::string(program);
    if (program.size() <= tool.name.size() + 1 || !program.ends_with(tool.name)) continue;
    std::string system(program.substr(0, program.size() - tool.name.size()));
    if (system.back() != '-') continue;
    system.pop_back();
    if (!hasPackages(system)) return "";
    // A package's name has no underscore: gcc-x86-64-linux-gnu.
    std::replace(system.begin(), system.end(), '_', '-');
    return std::string(tool.package) + "-" + system;
  }
  return "";
}

}  // namespace forgeyard::console
