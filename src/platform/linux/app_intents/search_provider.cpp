#include "platform/linux/app_intents/search_provider.h"

#include <algorithm>
#include <filesystem>
#include <utility>
#include <vector>

#include "platform/linux/app_intents/shortcut_search.h"
#include "platform/linux/bus/search_interface.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo::linux_platform {
namespace {

using Texts = std::vector<std::string>;

// The elements of `before` that `terms` still match.
Texts stillFound(const platform::AppIntentsExtension& extension, Texts before, const Texts& terms) {
  const Texts found = intentsFound(extension, terms);
  std::erase_if(before, [&found](const std::string& intent) {
    return std::find(found.begin(), found.end(), intent) == found.end();
  });
  return before;
}

void answerTexts(BusAnswer& answer, const Texts& texts) {
  answer.give([&texts](BusWriter& reply) { reply.texts(texts); });
}

void appendIcons(BusWriter& variant, const Texts& icons) {
  variant.structure([&icons](BusWriter& icon) {
    icon.text(search_interface::themedIcon);
    icon.variant("as", [&icons](BusWriter& names) { names.texts(icons); });
  });
}

void appendMeta(BusWriter& meta, const std::string& intent, const ShownShortcut& shown) {
  meta.textEntry(search_interface::identifier, intent);
  meta.textEntry(search_interface::name, shown.title);
  meta.textEntry(search_interface::description, shown.description);
  meta.variantEntry(search_interface::icon, "(sv)",
                    [&shown](BusWriter& variant) { appendIcons(variant, shown.icons); });
}

}  // namespace

SearchProvider::SearchProvider(DBusConnection* bus, const platform::AppIntentsExtension& extension,
                               std::function<void()> onCall)
    : extension_(extension), onCall_(std::move(onCall)) {
  serveObject(bus, search_interface::object, methods());
}

std::vector<BusMethod> SearchProvider::methods() {
  const auto with = [this](void (SearchProvider::*answer)(BusReader&, BusAnswer&)) {
    return [this, answer](BusReader arguments, BusAnswer way) {
      onCall_();
      (this->*answer)(arguments, way);
    };
  };
  return {{.name = search_interface::getInitialResultSet,
           .takes = {{"terms", "as"}},
           .gives = {{"results", "as"}},
           .perform = with(&SearchProvider::answerInitial)},
          {.name = search_interface::getSubsearchResultSet,
           .takes = {{"previous_results", "as"}, {"terms", "as"}},
           .gives = {{"results", "as"}},
           .perform = with(&SearchProvider::answerSubsearch)},
          {.name = search_interface::getResultMetas,
           .takes = {{"identifiers", "as"}},
           .gives = {{"metas", "aa{sv}"}},
           .perform = with(&SearchProvider::answerMetas)},
          {.name = search_interface::activateResult,
           .takes = {{"identifier", "s"}, {"terms", "as"}, {"timestamp", "u"}},
           .gives = {},
           .perform = with(&SearchProvider::answerActivate)},
          {.name = search_interface::launchSearch,
           .takes = {{"terms", "as"}, {"timestamp", "u"}},
           .gives = {},
           .perform = with(&SearchProvider::answerLaunch)}};
}

void SearchProvider::answerInitial(BusReader& arguments, BusAnswer& answer) {
  answerTexts(answer, intentsFound(extension_, arguments.texts()));
}

void SearchProvider::answerSubsearch(BusReader& arguments, BusAnswer& answer) {
  Texts before = arguments.texts();
  answerTexts(answer, stillFound(extension_, std::move(before), arguments.texts()));
}

void SearchProvider::answerMetas(BusReader& arguments, BusAnswer& answer) {
  const Texts intents = arguments.texts();
  answer.give([&](BusWriter& reply) {
    reply.array("a{sv}", [&](BusWriter& metas) {
      for (const std::string& intent : intents) {
        const auto shown = shownShortcut(extension_, intent);
        if (!shown) continue;
        metas.array("{sv}", [&](BusWriter& meta) { appendMeta(meta, intent, *shown); });
      }
    });
  });
}

void SearchProvider::answerActivate(BusReader& arguments, BusAnswer& answer) {
  const std::string intent(*arguments.text());
  if (!shownShortcut(extension_, intent)) {
    throw BusRefusal(search_interface::invalidArguments, "there is no such result");
  }
  open({"perform", intent});
  answer.give();
}

void SearchProvider::answerLaunch(BusReader&, BusAnswer& answer) {
  open({"catalog"});
  answer.give();
}

// The terminal asks for the values, so that no part of a message is ever an argument.
void SearchProvider::open(Texts arguments) {
  arguments.insert(arguments.begin(), std::filesystem::read_symlink("/proc/self/exe").string());
  if (windows_.open(arguments)) return;
  complain("kivo-intents", noTerminalWindow);
  throw BusRefusal(search_interface::failed, noTerminalWindow);
}

}  // namespace kivo::linux_platform
