#include "workbench/base/failure.h"

#include <array>
#include <cstdio>

#include "typelib/buildtool.h"

namespace forgeyard::workbench {

namespace {

struct Words {
  HRESULT status;
  const char* text;
};

constexpr std::array kWords{
    Words{E_FAIL, "no reason is given"},
    Words{E_NOTIMPL, "this part is not built yet"},
    Words{E_POINTER, "an object is missing"},
    Words{E_INVALIDARG, "the value is not allowed"},
    Words{E_UNEXPECTED, "it can't be done in this state"},
    Words{DISP_E_MEMBERNOTFOUND, "there is no such member"},
    Words{DISP_E_UNKNOWNNAME, "there is no such member"},
    Words{DISP_E_PARAMNOTFOUND, "it is missing"},
    Words{DISP_E_TYPEMISMATCH, "a value of another type is needed"},
    Words{DISP_E_OVERFLOW, "the number is out of range"},
    Words{DISP_E_BADPARAMCOUNT, "there are too many arguments"},
    Words{E_BUILDING, "a build is going on"},
    Words{E_OUTOFMEMORY, "there is not enough memory"},
    Words{E_NOINTERFACE, "the object does not have the interface that is needed"},
    Words{REGDB_E_CLASSNOTREG, "the class is not registered"},
    Words{CLASS_E_CLASSNOTAVAILABLE, "the module does not have the class"},
    Words{STG_E_FILENOTFOUND, "there is no such file"},
    Words{STG_E_PATHNOTFOUND, "there is no such directory"},
    Words{STG_E_ACCESSDENIED, "permission denied"},
    Words{STG_E_INSUFFICIENTMEMORY, "there is not enough memory"},
    Words{STG_E_WRITEFAULT, "the disk reports an error in writing"},
    Words{STG_E_READFAULT, "the disk reports an error in reading"},
    Words{STG_E_SHAREVIOLATION, "another process has it open"},
    Words{STG_E_LOCKVIOLATION, "it can't be locked"},
    Words{STG_E_FILEALREADYEXISTS, "it exists already"},
    Words{STG_E_MEDIUMFULL, "there is no space left on the disk"},
    Words{STG_E_INVALIDHEADER, "it is not a project file"},
    Words{STG_E_INVALIDNAME, "the name can't be used"},
    Words{STG_E_NOTCURRENT, "another program has changed the file meanwhile"},
    Words{STG_E_DOCFILECORRUPT, "the file is damaged"},
};

}  // namespace

std::string describe(HRESULT status) {
  for (const Words& words : kWords) {
    if (words.status == status) return words.text;
  }
  std::array<char, 32> number{};
  std::snprintf(number.data(), number.size(), "status 0x%08X", static_cast<unsigned>(code(status)));
  return number.data();
}

void require(HRESULT status, const std::string& what) {
  if (failed(status)) throw Failure(what + ": " + describe(status) + ".");
}

}  // namespace forgeyard::workbench
