// dump and restore: projects as text and back.

#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>

#include "tests/hosts/console/console_sandbox.h"
#include "tests/hosts/console/project_builder.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;
using namespace std::string_literals;

class Restore : public ConsoleSandbox {
 protected:
  // The text of a file, of which that file comes back.
  std::string mustComeBack(const std::string& file) const {
    const Outcome dumped = forgeyard({"dump", file});
    put("text.json", dumped.output);
    const Outcome restored = forgeyard({"restore", "-y", "text.json", "back"});
    EXPECT_EQ(restored.exitCode, 0) << restored.errors << dumped.output;
    EXPECT_EQ(contentsOf(path("back")), contentsOf(std::filesystem::path(directory()) / file))
        << dumped.output;
    EXPECT_EQ(forgeyard({"dump", "back"}).output, dumped.output);
    return dumped.output;
  }
};

TEST_F(Restore, ReferenceFilesComeBackByteForByte) {
  for (const std::filesystem::path& file : referenceProjects()) mustComeBack(file);
}

TEST_F(Restore, EveryKindOfComponentAndLeftOverBytesComeBack) {
  makeProject();
  must({"component", "add", "asm", "asm"});
  must({"component", "add", "linker", "linker"});
  must({"set", "link", "Command=a long command that a short one takes the place of"});
  must({"set", "link", "Command=x"});
  EXPECT_THAT(mustComeBack("p.nqp"), HasSubstr("\"rest\": ["));
  EXPECT_THAT(shown({"dump", "--diff"}), testing::Not(HasSubstr("\"rest\"")));
}

TEST_F(Restore, WhatIsNoRecordComesBackAsBytes) {
  const std::string one = "\1\0\0\0"s;
  const std::string config = "\3\0\0\0\1\0\0\0A\0\0\0\0\0\0\0\0\0"s;  // version, name, two directories
  const struct {
    const char* name;
    const char* stream;
    std::string bytes;
    const char* words;  // in the text
  } rows[] = {
      {"an unknown stream", "Notes", "\1\2\xFF", "\"0102FF\""},
      {"an unknown stream of a component", "Component0/Notes", std::string(100, 'x'), "\"78787878"},
      {"an empty one", "Notes", "", "\"bytes\": []"},
      {"a stream that ends at once", "Settings", "", "\"bytes\": []"},
      {"a record that breaks off", "Connections", "\0\0\0\0\2\0\0\0"s + std::string(14, '\1'),
       "\"count\": 2"},
      {"versions that nobody reads", "Connections", "\7\0\0\0\1\0\0\0\5\0\0\0"s + std::string(8, '\0'),
       "\"version\": 7"},
      {"a great count", "Configurations", "\xFF\xFF\xFF\xFF"s, "\"count\": 4294967295"},
      {"no active configuration", "Configurations", one + config + "\0\0\0\0\1\1"s, "\"active\": null"},
      {"a byte for a flag", "Configurations", one + config + "\0\0\0\0\2\1\0\0\0\0"s, "\"BuildDirty\": 2"},
      {"a cookie without its end", "Configurations",
       one + config + "\1\0\0\0\2\0\0\0A\0\0\0\0\0\1\1\0\0\0\0"s, "\"bytes\": ["},
      {"a name of half a character", "Component1/FolderSettings",
       "\0\0\0\0\3\0\0\0A\0\x3D\xD8%\0\0\0\0\0\1\0\0\0"s, "{\"escaped\": \"A%D83D%0025\"}"},
  };
  for (const auto& row : rows) {
    std::filesystem::remove(path("p.nqp"));
    makeProject();
    replaceStream(path("p.nqp"), row.stream, row.bytes);
    EXPECT_THAT(mustComeBack("p.nqp"), HasSubstr(row.words)) << row.name;
  }
}

TEST_F(Restore, AMissingStreamStaysMissing) {
  makeProject();
  std::string text = shown({"dump"});
  nlohmann::ordered_json json = nlohmann::ordered_json::parse(text);
  json.erase("settings");
  json["streams"] = {{{"name", "Settings"}, {"missing", true}}};
  put("less.json", json.dump());
  must({"restore", "less.json", "less.nqp"});
  EXPECT_FALSE(contentsOf(path("less.nqp")).contains("/Settings"));
  mustComeBack("less.nqp");
}

// Each row spoils the text of a project in one place.
TEST_F(Restore, WrongTextIsAnsweredWithPlaceAndReason) {
  makeProject();
  const std::string text = shown({"dump"});
  const struct {
    std::string from;
    std::string to;
    std::vector<std::string> words;
  } rows[] = {
      {"{", "[", {"line 2"}},
      {text, "", {"line 1"}},
      {text, "[]", {"a project is an object"}},
      {"\"Extension\": \"c\"",
       "\"Extensoin\": \"c\"",
       {"components[0]", "\"Extension\" is missing", "Extensoin"}},
      {"\"Extension\": \"c\"",
       "\"Extension\": \"c\",\n\"Extent\": 1",
       {"line 43", "components[0].Extent", "no such key"}},
      {"\"RunOnce\": 0",
       "\"RunOnce\": 0, \"RunOnse\": 0",
       {"settings[0].RunOnse", "Did you mean \"RunOnce\"?"}},
      {"\"Extension\": \"c\"",
       "\"Extension\": 7",
       {"components[0].Extension", "a text belongs here, not a number"}},
      {"\"Id\": 0", "\"Id\": 4294967296", {"components[0].Id", "not between"}},
      {"\"Id\": 0", "\"Id\": 1.5", {"1.5 is no whole number"}},
      {"\"Id\": 0", "\"Id\": 0, \"Id\": 1", {"\"Id\" stands here twice"}},
      {"\"BuildDirty\": true", "\"BuildDirty\": 256", {"configurations[0].BuildDirty", "255"}},
      {"\"version\": 3", "\"version\": 0", {"configurations[0].cookies", "version 0"}},
      {"\"kind\": \"cc\"", "\"kind\": \"ccc\"", {"line 78", "ccc", "Did you mean cc?"}},
      {"\"kind\": \"cc\"", "\"kind\": \"asm\"", {"different things"}},
      {"\"element\": \"Component1\"", "\"element\": \"COMPONENT0\"", {"components[1].element", "already"}},
      {"\"element\": \"Component1\"", "\"element\": \"a/b\"", {"components[1].element", "name"}},
      {"\"connections\": [", "\"connections\": [ 5,", {"connections[0]", "an object belongs here"}},
      {"\"active\": \"Default\",", "", {"\"active\" is missing"}},
  };
  for (const auto& row : rows) {
    std::string wrong = text;
    const std::size_t at = wrong.find(row.from);
    ASSERT_NE(at, wrong.npos) << row.from;
    wrong.replace(at, row.from.size(), row.to);
    put("wrong.json", wrong);
    const std::string errors = refused({"restore", "wrong.json", "made.nqp"});
    EXPECT_THAT(errors, HasSubstr("wrong.json, ")) << row.to;
    for (const std::string& words : row.words) EXPECT_THAT(errors, HasSubstr(words)) << row.to;
    EXPECT_FALSE(exists("made.nqp")) << row.to;
  }
  put("deep.json", std::string(100000, '['));
  EXPECT_THAT(refused({"restore", "deep.json", "made.nqp"}), HasSubstr("deep"));
}

TEST_F(Restore, FilesAreReplacedOnlyWhenAsked) {
  makeProject();
  put("text.json", shown({"dump"}));
  must({"config", "add", "More"});
  EXPECT_THAT(refused({"restore", "text.json", "p.nqp"}), HasSubstr("exists already"));
  must({"-y", "restore", "text.json", "p.nqp"});
  EXPECT_EQ(shown({"dump"}), content("text.json"));
  EXPECT_THAT(refused({"restore", "none.json", "q.nqp"}), HasSubstr("none.json can't be read"));
  EXPECT_THAT(refused({"restore", "text.json", "none/q.nqp"}), HasSubstr("no directory"));
}

TEST_F(Restore, WorksInAPipe) {
  makeProject();
  e2e::Start shell = start({});
  const std::string program = shell.command.front();
  shell.command = {"/bin/sh", "-c", program + " dump - < p.nqp | " + program + " restore - - > q"};
  const Outcome piped = e2e::RunningProgram(shell).finish();
  EXPECT_EQ(piped.exitCode, 0) << piped.errors;
  EXPECT_EQ(contentsOf(path("q")), contentsOf(path("p.nqp")));
}

}  // namespace
}  // namespace forgeyard::console
