// What was written is what is read, for projects of any shape.

#include <random>

#include "model/folders/source_file.h"
#include "tests/model/support/model_fixture.h"
#include "typelib/cookies.h"

namespace forgeyard::test {

namespace {

class RoundTripTest : public ModelTest, public testing::WithParamInterface<unsigned> {
 protected:
  std::size_t pick(std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
  }
  bool chance() { return pick(2) == 0; }
  BString anyText() {
    static const std::u16string_view kLetters = u"ab.\\ \u00e9\u4e2d\U0001F600;$()";
    if (pick(8) == 0) return {};
    std::u16string text;
    for (std::size_t length = pick(pick(10) == 0 ? 3000 : 12); length > 0; --length) {
      text += kLetters[pick(kLetters.size())];
    }
    return text;
  }
  void fill(IConfiguration& configuration) {
    check(configuration.put_OutputDirectory(anyText()));
    check(configuration.put_IntermediateDirectory(anyText()));
    check(configuration.put_BuildDirty(chance()));
    check(configuration.put_UpdateFileDependencies(chance()));
    const Ref<IKVSupportCookies> cookies = query<IKVSupportCookies>(&configuration);
    for (std::size_t count = pick(4); count > 0; --count)
      check(cookies->put_Cookie(anyText() + u"x", anyText()));
  }
  void fill(CFolder& folder) {
    check(folder.put_Enabled(chance()));
    for (std::size_t count = pick(20); count > 0; --count) {
      const Ref<ISourceFile> file = addFile(folder, u"\\x" + anyText());
      std::vector<BString> names;
      for (std::size_t deps = pick(40); deps > 0; --deps) {
        names.push_back(u"\\inc\\" + BString::fromNarrow(std::to_string(pick(30))));
      }
      check(file->put_AutomaticDeps(enumerator(names).get()));
      for (std::size_t deps = pick(3); deps > 0; --deps) check(file->AddManualDep(anyText()));
      check(file->put_SourceControl(chance()));
    }
  }
  void fill(CProject& project) {
    check(project.put_Name(anyText()));
    check(project.put_SSRoot(anyText()));
    for (std::size_t count = 1 + pick(4); count > 0; --count) {
      newConfiguration(project, BString::fromNarrow("c" + std::to_string(count)));
    }
    for (std::size_t count = pick(5); count > 0; --count) addFolder(project, anyText(), anyText());
    for (const Ref<IConfiguration>& configuration : project.contents().configurations) {
      fill(*configuration);
      check(project.put_ActiveConfiguration(configuration.get()));
      for (const Ref<IComponent>& component : project.contents().components) {
        fill(static_cast<CFolder&>(*component));
      }
    }
    connectAll(project);
  }
  void connectAll(CProject& project) {
    Ref<IConnections> connections;
    check(project.get_Connections(&connections));
    const auto& components = project.contents().components;
    for (std::size_t count = components.empty() ? 0 : pick(6); count > 0; --count) {
      ignore(connections->New(components[pick(components.size())].get(),
                              components[pick(components.size())].get(), nullptr));
    }
  }

  std::mt19937 random_{GetParam()};
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Seeds, RoundTripTest, testing::Range(1u, 25u));

TEST_P(RoundTripTest, AProjectComesBackAsItWas) {
  const Ref<CProject> made = newProject();
  fill(*made);
  const std::string before = dump(*made);
  const Ref<CProject> again = reload(*made);
  EXPECT_TRUE(again->omissions().empty());
  ASSERT_EQ(dump(*again), before);
  // And nothing in it believes that it has changed.
  for (const Ref<IComponent>& component : again->contents().components) {
    EXPECT_EQ(component.as<IPersistStorage>()->IsDirty(), S_FALSE);
  }
  for (const Ref<IConfiguration>& configuration : again->contents().configurations) {
    EXPECT_EQ(configuration.as<IPersistStream>()->IsDirty(), S_FALSE);
  }
  const Ref<CProject> third = reload(*again);
  EXPECT_EQ(dump(*third), before);
}

}  // namespace forgeyard::test
