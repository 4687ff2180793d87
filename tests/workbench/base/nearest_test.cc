#include "workbench/base/nearest.h"

#include <gtest/gtest.h>

namespace forgeyard::workbench {
namespace {

const std::vector<std::string> kNames{"build", "rebuild", "clean", "OptimisationLevel", "Größe", "a"};

TEST(Nearest, FindsWhatAUserMeant) {
  const struct {
    const char* wanted;
    const char* found;  // null: nothing
  } table[] = {
      {"buidl", "build"},     {"bild", "build"},       {"biuld", "build"},
      {"rebiuld", "rebuild"}, {"Clean", "clean"},      {"optimizationlevel", "OptimisationLevel"},
      {"größe", "Größe"},     {"xyz", nullptr},        {"c", nullptr},
      {"", nullptr},          {"cleanup it", nullptr},
  };
  for (const auto& row : table) {
    const auto found = nearest(row.wanted, kNames);
    EXPECT_EQ(found.value_or("(nothing)"), row.found ? row.found : "(nothing)") << row.wanted;
  }
}

TEST(Nearest, SuggestionTellsWhatThereIsWhenNothingIsNear) {
  const std::vector<std::string> few{"mips", "native"};
  EXPECT_EQ(suggestion("x86", few, "targets"), " The targets: mips and native.");
  EXPECT_EQ(suggestion("nativ", few, "targets"), " Did you mean native?");
  EXPECT_EQ(suggestion("x86", {}, "targets"), " There are no targets.");
  EXPECT_EQ(suggestion("x86", std::vector<std::string>(50, "long"), "targets"), "") << "too many to list";
}

}  // namespace
}  // namespace forgeyard::workbench
