#include "platform/linux/app_intents/search_provider.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <utility>
#include <vector>

#include <sdbus-c++/sdbus-c++.h>

#include "platform/linux/app_intents/search_wire.h"
#include "platform/linux/app_intents/shortcut_search.h"
#include "platform/linux/process/bus_names.h"
#include "platform/linux/process/command_line.h"

namespace kivo::linux_platform {
namespace {

using Texts = std::vector<std::string>;
using Meta = std::map<std::string, sdbus::Variant>;

// Those of `before` that `terms` still find.
Texts stillFound(const platform::AppIntentsExtension& extension, Texts before, const Texts& terms) {
  const Texts found = intentsFound(extension, terms);
  std::erase_if(before, [&found](const std::string& intent) {
    return std::find(found.begin(), found.end(), intent) == found.end();
  });
  return before;
}

Meta metaOf(const std::string& intent, const ShownShortcut& shown) {
  return {{search_wire::identifier, intent},
          {search_wire::name, shown.title},
          {search_wire::description, shown.description},
          {search_wire::icon,
           sdbus::make_struct(std::string(search_wire::themedIcon), sdbus::Variant(shown.icons))}};
}

std::vector<Meta> metasOf(const platform::AppIntentsExtension& extension, const Texts& intents) {
  std::vector<Meta> metas;
  for (const std::string& intent : intents) {
    if (const auto shown = shownShortcut(extension, intent)) {
      metas.push_back(metaOf(intent, *shown));
    }
  }
  return metas;
}

}  // namespace

SearchProvider::SearchProvider(sdbus::IConnection& connection,
                               const platform::AppIntentsExtension& extension,
                               const std::function<void()>& onCall)
    : extension_(extension), object_(sdbus::createObject(connection, bus_names::search.path)) {
  answerQuestions(onCall);
  followChoices(onCall);
  object_->finishRegistration();
}

SearchProvider::~SearchProvider() = default;

void SearchProvider::answerQuestions(const std::function<void()>& onCall) {
  const char* const interface = bus_names::search.interface;
  object_->registerMethod(search_wire::getInitialResultSet)
      .onInterface(interface)
      .withInputParamNames("terms")
      .withOutputParamNames("results")
      .implementedAs([this, onCall](const Texts& terms) {
        onCall();
        return intentsFound(extension_, terms);
      });
  object_->registerMethod(search_wire::getSubsearchResultSet)
      .onInterface(interface)
      .withInputParamNames("previous_results", "terms")
      .withOutputParamNames("results")
      .implementedAs([this, onCall](const Texts& before, const Texts& terms) {
        onCall();
        return stillFound(extension_, before, terms);
      });
  object_->registerMethod(search_wire::getResultMetas)
      .onInterface(interface)
      .withInputParamNames("identifiers")
      .withOutputParamNames("metas")
      .implementedAs([this, onCall](const Texts& intents) {
        onCall();
        return metasOf(extension_, intents);
      });
}

void SearchProvider::followChoices(const std::function<void()>& onCall) {
  const char* const interface = bus_names::search.interface;
  object_->registerMethod(search_wire::activateResult)
      .onInterface(interface)
      .withInputParamNames("identifier", "terms", "timestamp")
      .implementedAs([this, onCall](const std::string& intent, const Texts&, std::uint32_t) {
        onCall();
        activate(intent);
      });
  object_->registerMethod(search_wire::launchSearch)
      .onInterface(interface)
      .withInputParamNames("terms", "timestamp")
      .implementedAs([this, onCall](const Texts&, std::uint32_t) {
        onCall();
        open({"catalog"});
      });
}

void SearchProvider::activate(const std::string& intent) {
  if (!shownShortcut(extension_, intent)) {
    throw sdbus::Error(search_wire::invalidArguments, "there is no such result");
  }
  open({"perform", intent});
}

// The values are asked for there: nothing of a message is ever an argument.
void SearchProvider::open(Texts arguments) {
  arguments.insert(arguments.begin(), std::filesystem::read_symlink("/proc/self/exe").string());
  if (windows_.open(arguments)) return;
  const char* const complaint = "no terminal can be opened; the variable TERMINAL can name one";
  complain("kivo-intents", complaint);
  throw sdbus::Error(search_wire::failed, complaint);
}

}  // namespace kivo::linux_platform
