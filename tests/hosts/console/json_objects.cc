#include "tests/hosts/console/json_objects.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <string>

#include "tests/support/places.h"

namespace forgeyard::console {

namespace {

std::set<std::string> quotedIn(const std::string& text) {
  std::set<std::string> words;
  for (std::size_t at = 0; (at = text.find('`', at)) != text.npos;) {
    const std::size_t end = text.find('`', at + 1);
    if (end == text.npos) break;
    words.insert(text.substr(at + 1, end - at - 1));
    at = end + 1;
  }
  return words;
}

// By type: all words that its row of the description marks.
std::map<std::string, std::set<std::string>> documentedFields() {
  std::map<std::string, std::set<std::string>> result;
  std::ifstream file(places::docs() + "/output.md");
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with("| `")) continue;
    const std::string type = line.substr(3, line.find('`', 3) - 3);
    result[type].merge(quotedIn(line.substr(5 + type.size())));
  }
  return result;
}

void expectDocumented(const Json& object) {
  static const auto documented = documentedFields();
  const auto row = documented.find(object.at("type").get<std::string>());
  ASSERT_NE(row, documented.end()) << object;
  for (const auto& [name, value] : object.items()) {
    if (name == "type") continue;
    EXPECT_TRUE(row->second.contains(name)) << name << " in " << object;
  }
}

}  // namespace

std::vector<Json> objectsOf(const e2e::Outcome& outcome) {
  std::vector<Json> objects;
  for (const std::string& line : outcome.lines()) {
    EXPECT_TRUE(line.starts_with("{\"type\":\"")) << line;
    objects.push_back(Json::parse(line, nullptr, false));
    EXPECT_FALSE(objects.back().is_discarded()) << line;
    if (!objects.back().is_discarded()) expectDocumented(objects.back());
  }
  EXPECT_EQ(outcome.errors, "");
  EXPECT_FALSE(objects.empty());
  if (!objects.empty()) {
    EXPECT_EQ(objects.back().value("type", ""), "result");
    EXPECT_EQ(objects.back().value("exit_code", -1), outcome.exitCode);
  }
  return objects;
}

std::vector<Json> ofType(const std::vector<Json>& objects, std::string_view type) {
  std::vector<Json> result;
  for (const Json& object : objects) {
    if (object.value("type", "") == type) result.push_back(object);
  }
  return result;
}

}  // namespace forgeyard::console
