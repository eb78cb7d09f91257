#include "platform/linux/app_intents/search_provider.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>
#include <vector>

#include "platform/linux/app_intents/shortcut_search.h"
#include "platform/linux/bus/intents_interface.h"
#include "platform/linux/foundation/complaint.h"

namespace kivo::linux_platform {
namespace {

using Texts = std::vector<std::string>;

constexpr BusObject searchProvider{intents_interface::object.service,
                                   "/app/kivo/expenses/SearchProvider",
                                   "org.gnome.Shell.SearchProvider2"};

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
    icon.text("themed");  // the kind of icon that is given by names
    icon.variant("as", [&icons](BusWriter& names) { names.texts(icons); });
  });
}

void appendMeta(BusWriter& meta, const std::string& intent, const ShownShortcut& shown) {
  meta.textEntry("id", intent);
  meta.textEntry("name", shown.title);
  meta.textEntry("description", shown.description);
  meta.variantEntry("icon", "(sv)",
                    [&shown](BusWriter& variant) { appendIcons(variant, shown.icons); });
}

}  // namespace

SearchProvider::SearchProvider(DBusConnection* bus, const platform::AppIntentsExtension& extension,
                               std::function<void()> onCall)
    : extension_(extension), onCall_(std::move(onCall)) {
  serveObject(bus, searchProvider, methods());
}

std::vector<BusMethod> SearchProvider::methods() {
  const auto with = [this](void (SearchProvider::*answer)(BusReader&, BusAnswer&)) {
    return [this, answer](BusReader arguments, BusAnswer way) {
      onCall_();
      (this->*answer)(arguments, way);
    };
  };
  return {{.name = "GetInitialResultSet",
           .takes = {{"terms", "as"}},
           .gives = {{"results", "as"}},
           .perform = with(&SearchProvider::answerInitial)},
          {.name = "GetSubsearchResultSet",
           .takes = {{"previous_results", "as"}, {"terms", "as"}},
           .gives = {{"results", "as"}},
           .perform = with(&SearchProvider::answerSubsearch)},
          {.name = "GetResultMetas",
           .takes = {{"identifiers", "as"}},
           .gives = {{"metas", "aa{sv}"}},
           .perform = with(&SearchProvider::answerMetas)},
          {.name = "ActivateResult",
           .takes = {{"identifier", "s"}, {"terms", "as"}, {"timestamp", "u"}},
           .gives = {},
           .perform = with(&SearchProvider::answerActivate)},
          {.name = "LaunchSearch",
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
    throw BusRefusal(DBUS_ERROR_INVALID_ARGS, "there is no such result");
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
  complain(program_invocation_short_name, noTerminalWindow);
  throw BusRefusal(DBUS_ERROR_FAILED, noTerminalWindow);
}

}  // namespace kivo::linux_platform
