#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "typelib/records.h"

namespace forgeyard::workbench {

// A text that holds no records; what() is a whole clause with the place.
class JsonFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct ReadJson {
  RecordNode records;  // each value with its line
  // What was left out when the text was made.
  std::vector<LoadOmission> leftOut;
};

// The way back from recordsAsJson(). A component may have either of "clsid" and "kind". Throws JsonFault; the
// form of the records is for the module to judge.
ReadJson readJson(std::string_view text);

// The fault of a value, as a clause: where, what and which key may be meant.
std::string faultText(const RecordFault& fault);

}  // namespace forgeyard::workbench
