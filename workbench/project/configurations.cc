#include "workbench/project/configurations.h"

#include "typelib/cookies.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"
#include "workbench/project/collections.h"

namespace forgeyard::workbench {

std::string nameOf(IConfiguration& configuration) {
  BString name;
  check(configuration.get_Name(&name));
  return name.narrow();
}

std::vector<Ref<IConfiguration>> configurationsOf(IProject& project) {
  Ref<IConfigurations> configurations;
  check(project.get_Configurations(&configurations));
  return elementsOf<IConfiguration>(*configurations);
}

Ref<IConfiguration> findConfiguration(IProject& project, const std::string& name) {
  std::vector<std::string> names;
  for (const auto& configuration : configurationsOf(project)) {
    names.push_back(nameOf(*configuration));
    if (names.back() == name) return configuration;
  }
  throw Failure("There is no configuration " + name + "." + suggestion(name, names, "configurations"));
}

ActiveFor::ActiveFor(IProject& project, const Ref<IConfiguration>& configuration) : project_(project) {
  check(project_.get_ActiveConfiguration(&before_));
  if (before_ != configuration) check(project_.put_ActiveConfiguration(configuration.get()));
}

ActiveFor::~ActiveFor() {
  Ref<IConfiguration> now;
  ignore(project_.get_ActiveConfiguration(&now));
  if (before_ && before_ != now) ignore(project_.put_ActiveConfiguration(before_.get()));
}

std::string targetOf(IConfiguration& configuration) {
  const Ref<IKVSupportCookies> cookies = query<IKVSupportCookies>(&configuration);
  BString target;
  if (cookies) check(cookies->get_Cookie(u"Target", &target));
  return target.narrow();
}

}  // namespace forgeyard::workbench
