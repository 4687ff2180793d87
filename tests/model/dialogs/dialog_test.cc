// The dialogs over configurations and connections, used as a user would.

#include <gmock/gmock.h>

#include "model/dialogs/configuration_dialogs.h"
#include "model/dialogs/connection_dialogs.h"
#include "tests/model/support/model_fixture.h"

namespace forgeyard::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A user in front of a dialog: goes by labels, as they are read.
class User {
 public:
  explicit User(IDialogModel& dialog) : dialog_(dialog) {}

  std::string title() const {
    BString value;
    check(dialog_.get_Title(&value));
    return value.narrow();
  }
  const DialogControl& at(const char* label) const { return controls()[position(label)]; }
  std::vector<std::string> items(const char* label) const {
    std::vector<std::string> result;
    for (const BString& item : at(label).items) result.push_back(item.narrow());
    return result;
  }
  void type(const char* label, const BString& text) {
    EXPECT_EQ(dialog_.SetText(position(label), text), S_OK);
  }
  HRESULT select(const char* label, std::int32_t item) { return dialog_.Select(position(label), item); }
  // Whether the dialog is over.
  bool press(const char* label) {
    bool ended = false;
    EXPECT_EQ(dialog_.Press(position(label), &ended), S_OK) << label;
    return ended;
  }
  HRESULT tryPress(const char* label) {
    bool ended = false;
    return dialog_.Press(position(label), &ended);
  }

 private:
  std::span<const DialogControl> controls() const {
    std::span<const DialogControl> result;
    check(dialog_.GetControls(&result));
    return result;
  }
  std::size_t position(const char* label) const {
    const auto all = controls();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const DialogControl& c) { return c.label.narrow() == label; });
    EXPECT_NE(found, all.end()) << label;
    return static_cast<std::size_t>(found - all.begin());
  }

  IDialogModel& dialog_;
};

class DialogTest : public ModelTest {
 protected:
  Ref<CProject> project_ = nullptr;
  void SetUp() override { project_ = newProject(); }
  void TearDown() override { project_ = nullptr; }
};

}  // namespace

TEST_F(DialogTest, ConfigurationsAreAddedAndRemoved) {
  host_->useDialog([&](IDialogModel& model) {
    User manage(model);
    EXPECT_EQ(manage.title(), "Manage Configurations");
    EXPECT_THAT(manage.items("&Configurations:"), ElementsAre("Default"));
    EXPECT_EQ(manage.at("&Configurations:").selected, 0);
    EXPECT_FALSE(manage.at("&Remove").enabled);
    EXPECT_EQ(manage.tryPress("&Remove"), E_INVALIDARG);
    host_->useDialog([&](IDialogModel& inner) {
      User add(inner);
      EXPECT_EQ(add.title(), "Add Configuration");
      EXPECT_EQ(add.at("&Configuration:").text.narrow(), "New Configuration");
      EXPECT_THAT(add.items("Copy &settings from:"), ElementsAre("Default"));
      add.type("&Configuration:", u"Default");
      EXPECT_FALSE(add.press("OK"));
      add.type("&Configuration:", u"Release");
      EXPECT_TRUE(add.press("OK"));
    });
    EXPECT_FALSE(manage.press("&Add..."));
    EXPECT_THAT(manage.items("&Configurations:"), ElementsAre("Default", "Release"));
    EXPECT_EQ(manage.select("&Configurations:", 2), E_INVALIDARG);
    EXPECT_EQ(manage.select("&Configurations:", 1), S_OK);
    host_->answer(MessageAnswer::No);
    EXPECT_FALSE(manage.press("&Remove"));
    EXPECT_EQ(manage.items("&Configurations:").size(), 2u);
    EXPECT_FALSE(manage.press("&Remove"));
    EXPECT_THAT(manage.items("&Configurations:"), ElementsAre("Default"));
    EXPECT_TRUE(manage.press("Close"));
  });
  EXPECT_EQ(project_->ManageConfigurations(), S_OK);
  const ShownMessage question{"Are you sure you wish to remove this configuration?", "Manage Configurations",
                              MessageButtons::YesNo, MessageIcon::Question};
  EXPECT_THAT(host_->messages(),
              ElementsAre(ShownMessage{"A configuration already exists with that name", "Add Configuration",
                                       MessageButtons::Ok, MessageIcon::Exclamation},
                          question, question));
  EXPECT_EQ(host_->modalDepth(), 0);
}

TEST_F(DialogTest, CancellingAddsNothing) {
  host_->useDialog([&](IDialogModel& model) { User(model).press("&Add..."); });
  EXPECT_EQ(project_->ManageConfigurations(), S_OK);
  EXPECT_THAT(host_->dialogTitles(), ElementsAre("Manage Configurations", "Add Configuration"));
  EXPECT_EQ(project_->contents().configurations.size(), 1u);
}

TEST_F(DialogTest, ConnectionsAreAddedAndRemoved) {
  addFolder(*project_, u"Source");
  addFolder(*project_, u"Compile");
  check(project_->put_Dirty(0));
  const auto dialog =
      make<ManageConnectionsDialog>(project_.get(), static_cast<IServiceLookup*>(host_.get()));
  User manage(*dialog);
  EXPECT_EQ(manage.title(), "Manage Connections");
  EXPECT_THAT(manage.items("&Connections:"), IsEmpty());
  EXPECT_FALSE(manage.at("&Remove").enabled);
  host_->useDialog([&](IDialogModel& model) {
    User add(model);
    EXPECT_EQ(add.title(), "Add Connection");
    EXPECT_THAT(add.items("&From:"), ElementsAre("Source", "Compile"));
    EXPECT_FALSE(add.press("OK")) << "the first to itself";
    EXPECT_EQ(add.select("&To:", -1), S_OK);
    EXPECT_FALSE(add.press("OK"));
    EXPECT_EQ(add.select("&To:", 1), S_OK);
    EXPECT_TRUE(add.press("OK"));
  });
  manage.press("&Add...");
  EXPECT_THAT(manage.items("&Connections:"), ElementsAre("Source -> Compile"));
  EXPECT_EQ(dirty(*project_), 1);
  EXPECT_THAT(
      host_->messages(),
      ElementsAre(
          ShownMessage{"Error adding connection.... \n\n"
                       "Either the connection would introduce a circular link, \n"
                       "the connection is already established \nor those components cannot be connected",
                       "Add Connection", MessageButtons::Ok, MessageIcon::Exclamation},
          ShownMessage{"Invalid selection", "Add Connection", MessageButtons::Ok, MessageIcon::Exclamation}));
  check(project_->put_Dirty(0));
  EXPECT_FALSE(manage.press("&Remove"));
  EXPECT_THAT(manage.items("&Connections:"), IsEmpty());
  EXPECT_EQ(dirty(*project_), 1);
  EXPECT_TRUE(manage.press("Close"));
}

}  // namespace forgeyard::test
