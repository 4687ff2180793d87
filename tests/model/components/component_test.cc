// The collection of components: numbers, elements, the making of new ones.

#include <gmock/gmock.h>

#include "model/components/components.h"
#include "tests/model/support/model_fixture.h"
#include "typelib/classes.h"

namespace forgeyard::test {

namespace {

class ComponentTest : public ModelTest {
 protected:
  static Ref<IComponents> all(CProject& project) {
    Ref<IComponents> components;
    check(project.get_Components(&components));
    return components;
  }
  static std::int32_t idOf(IComponent* component) {
    std::int32_t id = -1;
    check(component->get_Id(&id));
    return id;
  }
};

}  // namespace

TEST_F(ComponentTest, NumbersAreNeverUsedTwice) {
  const Ref<CProject> project = newProject();
  for (int i = 0; i < 3; ++i) EXPECT_EQ(idOf(addFake(*project).get()), i);
  check(project->DeleteComponent(project->contents().components[2].get()));
  EXPECT_EQ(idOf(addFake(*project).get()), 3);
  const Ref<CProject> again = reload(*project);
  EXPECT_EQ(idOf(addFake(*again).get()), 4);
}

TEST_F(ComponentTest, ItemGoesByIdAndNotByPosition) {
  const Ref<CProject> project = newProject();
  for (int i = 0; i < 3; ++i) addFake(*project);
  check(project->DeleteComponent(project->contents().components[0].get()));
  Ref<IDispatch> found;
  EXPECT_EQ(all(*project)->get_Item(Variant(2), &found), S_OK);
  EXPECT_EQ(idOf(found.as<IComponent>().get()), 2);
  const Variant refused[] = {Variant(0), Variant(3), Variant(-1), Variant(2u), Variant(BString(u"2")),
                             Variant()};
  for (const Variant& id : refused) {
    EXPECT_EQ(all(*project)->get_Item(id, &found), E_FAIL);
    EXPECT_FALSE(found);
  }
}

TEST_F(ComponentTest, ANewOneIsAskedForAndMayBeCancelled) {
  const Ref<CProject> project = newProject();
  check(project->put_Dirty(0));
  const auto made = make<FakeComponent>();
  made->addAnswer = 0;
  EXPECT_EQ(all(*project)->New(static_cast<IComponent*>(made.get())), S_OK);
  EXPECT_TRUE(project->contents().components.empty());
  EXPECT_EQ(project->contents().settings.nextComponentId, 0);
  EXPECT_EQ(dirty(*project), 0);

  const Ref<NotifySink> sink = listen(static_cast<IProject*>(project.get()));
  made->addAnswer = 1;
  EXPECT_EQ(all(*project)->New(static_cast<IComponent*>(made.get())), S_OK);
  EXPECT_EQ(project->contents().components.size(), 1u);
  EXPECT_EQ(sink->count(kProjectComponents), 1);
  EXPECT_EQ(dirty(*project), 1);
  Ref<IUnknown> settings;
  EXPECT_EQ(made->get_Setting(project->contents().active.get(), &settings), S_OK)
      << "one for each configuration";
}

TEST_F(ComponentTest, NothingIsAddedToAProjectThatIsNotLoaded) {
  const Ref<CProject> project = ModelTest::project();
  const auto made = make<FakeComponent>();
  EXPECT_EQ(all(*project)->Add(static_cast<IComponent*>(made.get())), E_FAIL);
  EXPECT_EQ(project->contents().settings.nextComponentId, 0);
}

TEST_F(ComponentTest, TheElementIsNamedByNumberAndCarriesTheClass) {
  const Ref<CProject> project = newProject();
  addFolder(*project, u"f");
  addFake(*project);
  check(project->ProjectSave());
  check(project->ProjectClose());
  Ref<IStorage> root;
  check(StgOpenStorage(path("demo.nqp"), STGM_READ | STGM_SHARE_EXCLUSIVE | STGM_TRANSACTED, &root));
  Ref<IEnumSTATSTG> elements;
  check(root->EnumElements(&elements));
  std::vector<std::pair<std::string, Guid>> found;
  STATSTG element;
  while (elements->Next(1, &element, nullptr) == S_OK) {
    if (element.type == StgType::Storage) found.emplace_back(element.name.narrow(), element.clsid);
  }
  EXPECT_THAT(found, testing::ElementsAre(std::pair("Component0", CLSID_Folder),
                                          std::pair("Component1", FakeComponent::clsid)));
}

TEST_F(ComponentTest, DeleteTakesItOffTheListAlone) {
  const Ref<CProject> project = newProject();
  const Ref<FakeComponent> a = addFake(*project);
  const Ref<FakeComponent> b = addFake(*project);
  connect(*project, a.get(), b.get());
  EXPECT_EQ(all(*project)->Delete(static_cast<IComponent*>(a.get())), S_OK);
  std::int32_t count = -1;
  check(all(*project)->get_Count(&count));
  EXPECT_EQ(count, 1);
  EXPECT_EQ(b->sourceCount(), 1u);
  // Its element stays in the file.
  EXPECT_EQ(reload(*project)->contents().components.size(), 2u);
  check(a->Close());
}

TEST_F(ComponentTest, AnEnumeratorWalksACopy) {
  const Ref<CProject> project = newProject();
  addFake(*project);
  Ref<IUnknown> walk;
  check(all(*project)->get__NewEnum(&walk));
  addFake(*project);
  int seen = 0;
  forEach(walk.as<IEnumVARIANT>(), [&](const Variant& value) {
    EXPECT_EQ(value.type(), VARTYPE::VT_DISPATCH);
    ++seen;
  });
  EXPECT_EQ(seen, 1);
}

}  // namespace forgeyard::test
