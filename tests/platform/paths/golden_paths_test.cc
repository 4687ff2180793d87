#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/paths/command_line.h"
#include "platform/paths/shell_path.h"
#include "platform/text/narrow.h"
#include "tests/support/places.h"

// Every row of every table in FORGEYARD_GOLDEN/paths, for the narrow and the wide form of the function that
// the table is named for.
namespace forgeyard {
namespace {

using Row = std::map<std::string, std::string>;

std::filesystem::path goldenPaths() {
  const char* directory = std::getenv("FORGEYARD_GOLDEN");
  return std::filesystem::path(directory ? directory : places::golden()) / "paths";
}

std::string unescaped(std::string_view field) {
  static const std::map<std::string, char, std::less<>> ESCAPES = {
      {"%09", '\t'}, {"%0A", '\n'}, {"%0D", '\r'}, {"%25", '%'}};
  std::string text;
  for (std::size_t i = 0; i < field.size(); ++i) {
    const auto escape = ESCAPES.find(field.substr(i, 3));
    text += escape == ESCAPES.end() ? field[i] : escape->second;
    if (escape != ESCAPES.end()) i += 2;
  }
  return text;
}

std::vector<std::string> fieldsOf(std::string_view line) {
  std::vector<std::string> fields;
  while (true) {
    const std::size_t tab = line.find('\t');
    fields.push_back(unescaped(line.substr(0, tab)));
    if (tab == line.npos) return fields;
    line.remove_prefix(tab + 1);
  }
}

std::vector<Row> rowsOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::string line;
  std::getline(in, line);
  const std::vector<std::string> names = fieldsOf(line);
  std::vector<Row> rows;
  while (std::getline(in, line)) {
    const std::vector<std::string> fields = fieldsOf(line);
    EXPECT_EQ(fields.size(), names.size()) << file << ": " << line;
    Row row;
    for (std::size_t i = 0; i < fields.size() && i < names.size(); ++i) row[names[i]] = fields[i];
    rows.push_back(row);
  }
  return rows;
}

std::string flag(bool value) {
  return value ? "1" : "0";
}

// The functions for one kind of text, with rows in and rows of results out.
template <class Text>
struct Functions {
  static Text in(const std::string& text) {
    if constexpr (std::is_same_v<Text, std::string>) {
      return text;
    } else {
      return wideFromNarrow(text);
    }
  }
  static std::string out(std::basic_string_view<typename Text::value_type> text) {
    if constexpr (std::is_same_v<Text, std::string>) {
      return std::string(text);
    } else {
      return narrowFromWide(text);
    }
  }
  static Row optional(const std::optional<Text>& result) {
    return {{"return", flag(result.has_value())}, {"result", result ? out(*result) : ""}};
  }
  static PathKind kind(const std::string& name) {
    EXPECT_TRUE(name == "dir" || name == "file") << name;
    return name == "dir" ? PathKind::Directory : PathKind::File;
  }
  template <class Function>
  static Row inPlace(const Row& row, Function function) {
    Text path = in(row.at("path"));
    if constexpr (std::is_void_v<decltype(function(path))>) {
      function(path);
      return {{"result", out(path)}};
    } else {
      const bool done = function(path);
      return {{"return", flag(done)}, {"result", out(path)}};
    }
  }
  static Row addBackslash(const Row& row) {
    Row result = inPlace(row, [](Text& path) { return PathAddBackslashA(path, kMaxPath); });
    result["end"] = result["return"] == "1" ? std::to_string(result["result"].size()) : "-1";
    return result;
  }

  static std::map<std::string, std::function<Row(const Row&)>> table() {
    return {
        {"PathCanonicalizeA", [](const Row& row) { return optional(PathCanonicalizeA(in(row.at("path")))); }},
        {"PathMatchSpecA",
         [](const Row& row) {
           return Row{{"return", flag(PathMatchSpecA(in(row.at("file")), in(row.at("spec"))))}};
         }},
        {"PathIsRelativeA",
         [](const Row& row) {
           return Row{{"return", flag(PathIsRelativeA(in(row.at("path"))))}};
         }},
        {"PathAddBackslashA", addBackslash},
        {"PathFindFileNameA",
         [](const Row& row) {
           const Text path = in(row.at("path"));
           return Row{{"result", out(PathFindFileNameA(path))}};
         }},
        {"PathFindExtensionA",
         [](const Row& row) {
           const Text path = in(row.at("path"));
           return Row{{"result", out(PathFindExtensionA(path))}};
         }},
        {"PathRemoveExtensionA",
         [](const Row& row) { return inPlace(row, [](Text& path) { PathRemoveExtensionA(path); }); }},
        {"PathRemoveFileSpecA",
         [](const Row& row) { return inPlace(row, [](Text& path) { return PathRemoveFileSpecA(path); }); }},
        {"PathStripPathA",
         [](const Row& row) { return inPlace(row, [](Text& path) { PathStripPathA(path); }); }},
        {"PathMakePrettyA",
         [](const Row& row) { return inPlace(row, [](Text& path) { return PathMakePrettyA(path); }); }},
        {"PathRelativePathToA",
         [](const Row& row) {
           return optional(PathRelativePathToA(in(row.at("from")), kind(row.at("from_kind")),
                                               in(row.at("to")), kind(row.at("to_kind"))));
         }},
    };
  }
};

Row commandLine(const Row& row) {
  const std::vector<std::string> arguments = CommandLineToArgvW(row.at("command_line"));
  std::string joined;
  for (const std::string& argument : arguments) {
    if (&argument != &arguments.front()) joined += '\x1F';
    joined += argument;
  }
  return {{"count", std::to_string(arguments.size())}, {"arguments", joined}};
}

void expectRow(const Row& row, const Row& actual, const char* form) {
  std::string description = form;
  for (const auto& [name, value] : row)
    description.append("  ").append(name).append("=[").append(value).append("]");
  for (const auto& [name, value] : actual) EXPECT_EQ(value, row.at(name)) << description;
}

class GoldenPaths : public testing::TestWithParam<std::string> {};

TEST_P(GoldenPaths, HoldInEveryRow) {
  auto narrow = Functions<std::string>::table();
  narrow["CommandLineToArgvW"] = commandLine;
  auto wide = Functions<std::u16string>::table();
  ASSERT_TRUE(narrow.contains(GetParam())) << "no function is tested under this name";
  const std::vector<Row> rows = rowsOf(goldenPaths() / (GetParam() + ".tsv"));
  EXPECT_FALSE(rows.empty());
  for (const Row& row : rows) {
    expectRow(row, narrow[GetParam()](row), "narrow");
    if (wide.contains(GetParam())) expectRow(row, wide[GetParam()](row), "wide");
  }
}

std::vector<std::string> tables() {
  std::vector<std::string> names;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(goldenPaths(), missing)) {
    if (entry.path().extension() == ".tsv") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

INSTANTIATE_TEST_SUITE_P(Table, GoldenPaths, testing::ValuesIn(tables()),
                         [](const auto& table) { return table.param; });

TEST(GoldenPathTables, ExistForEveryFunction) {
  const std::vector<std::string> names = tables();
  for (const auto& [name, function] : Functions<std::string>::table()) {
    EXPECT_EQ(std::count(names.begin(), names.end(), name), 1) << name << " in " << goldenPaths();
  }
}

}  // namespace
}  // namespace forgeyard
