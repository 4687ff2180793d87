#pragma once

#include <string>

namespace forgeyard::console {

// "process 4711 (forgeyard)" where the system tells who has the file locked; else empty.
std::string lockHolder(const std::string& file);

// The sentence for a file that can't be opened because somebody has it.
std::string inUse(const std::string& file);

}  // namespace forgeyard::console
