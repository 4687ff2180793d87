#include "hosts/console/services/standard_input.h"

#include <iostream>
#include <iterator>

namespace forgeyard::console {

std::string readStandardInput() {
  return std::string(std::istreambuf_iterator<char>(std::cin), {});
}

}  // namespace forgeyard::console
