#include "engine/status_text.h"

#include <array>
#include <cstdio>
#include <utility>

namespace forgeyard {

namespace {

constexpr std::array kTexts{
    std::pair{STG_E_FILENOTFOUND, "it doesn't exist"},
    std::pair{STG_E_PATHNOTFOUND, "its directory doesn't exist"},
    std::pair{STG_E_ACCESSDENIED, "access is denied"},
    std::pair{STG_E_SHAREVIOLATION, "it is in use"},
    std::pair{STG_E_LOCKVIOLATION, "it is in use"},
    std::pair{STG_E_MEDIUMFULL, "there is no space left"},
    std::pair{STG_E_INVALIDHEADER, "it is no compound file"},
    std::pair{STG_E_DOCFILECORRUPT, "it is damaged"},
    std::pair{STG_E_READFAULT, "it can't be read"},
    std::pair{STG_E_WRITEFAULT, "it can't be written"},
    std::pair{E_OUTOFMEMORY, "there is not enough memory"},
    std::pair{E_FAIL, "it ends early, or names something that isn't there"},
};

}  // namespace

std::string statusText(HRESULT status) {
  for (const auto& [known, text] : kTexts) {
    if (known == status) return text;
  }
  char text[24];
  std::snprintf(text, sizeof text, "status 0x%08X", static_cast<unsigned>(code(status)));
  return text;
}

}  // namespace forgeyard
