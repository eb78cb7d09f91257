#include "platform/linux/app_intents/search_provider.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <utility>
#include <vector>

#include <systemd/sd-bus.h>

#include "platform/linux/app_intents/search_wire.h"
#include "platform/linux/app_intents/shortcut_search.h"
#include "platform/linux/process/bus_names.h"
#include "platform/linux/process/command_line.h"

namespace kivo::linux_platform {
namespace {

using Texts = std::vector<std::string>;

// Those of `before` that `terms` still find.
Texts stillFound(const platform::AppIntentsExtension& extension, Texts before, const Texts& terms) {
  const Texts found = intentsFound(extension, terms);
  std::erase_if(before, [&found](const std::string& intent) {
    return std::find(found.begin(), found.end(), intent) == found.end();
  });
  return before;
}

int readTexts(sd_bus_message* call, Texts& texts) {
  char** read = nullptr;
  const int code = sd_bus_message_read_strv(call, &read);
  for (char** text = read; text != nullptr && *text != nullptr; ++text) {
    texts.emplace_back(*text);
    std::free(*text);
  }
  std::free(read);
  return code;
}

int appendTexts(sd_bus_message* reply, const Texts& texts) {
  int code = sd_bus_message_open_container(reply, SD_BUS_TYPE_ARRAY, "s");
  for (const std::string& text : texts) {
    if (code >= 0) code = sd_bus_message_append(reply, "s", text.c_str());
  }
  return code >= 0 ? sd_bus_message_close_container(reply) : code;
}

int appendIcons(sd_bus_message* reply, const Texts& icons) {
  int code = sd_bus_message_open_container(reply, SD_BUS_TYPE_DICT_ENTRY, "sv");
  if (code >= 0) code = sd_bus_message_append(reply, "s", search_wire::icon);
  if (code >= 0) code = sd_bus_message_open_container(reply, SD_BUS_TYPE_VARIANT, "(sv)");
  if (code >= 0) code = sd_bus_message_open_container(reply, SD_BUS_TYPE_STRUCT, "sv");
  if (code >= 0) code = sd_bus_message_append(reply, "s", search_wire::themedIcon);
  if (code >= 0) code = sd_bus_message_open_container(reply, SD_BUS_TYPE_VARIANT, "as");
  if (code >= 0) code = appendTexts(reply, icons);
  for (int open = 0; code >= 0 && open < 4; ++open) code = sd_bus_message_close_container(reply);
  return code;
}

int appendMeta(sd_bus_message* reply, const std::string& intent, const ShownShortcut& shown) {
  int code = sd_bus_message_open_container(reply, SD_BUS_TYPE_ARRAY, "{sv}");
  if (code >= 0) {
    code = sd_bus_message_append(reply, "{sv}{sv}{sv}", search_wire::identifier, "s",
                                 intent.c_str(), search_wire::name, "s", shown.title.c_str(),
                                 search_wire::description, "s", shown.description.c_str());
  }
  if (code >= 0) code = appendIcons(reply, shown.icons);
  return code >= 0 ? sd_bus_message_close_container(reply) : code;
}

int appendMetas(sd_bus_message* reply, const platform::AppIntentsExtension& extension,
                const Texts& intents) {
  int code = sd_bus_message_open_container(reply, SD_BUS_TYPE_ARRAY, "a{sv}");
  for (const std::string& intent : intents) {
    const auto shown = shownShortcut(extension, intent);
    if (code >= 0 && shown) code = appendMeta(reply, intent, *shown);
  }
  return code >= 0 ? sd_bus_message_close_container(reply) : code;
}

// Answers `call` with what `append` writes.
template <typename Append>
int answer(sd_bus_message* call, const Append& append) {
  sd_bus_message* reply = nullptr;
  int code = sd_bus_message_new_method_return(call, &reply);
  if (code >= 0) code = append(reply);
  if (code >= 0) code = sd_bus_send(nullptr, reply, nullptr);
  sd_bus_message_unref(reply);
  return code;
}

}  // namespace

// As the bus library calls them: a negative code, its own or that of `error`, refuses the call.
struct SearchProvider::Members {
  static SearchProvider& called(void* provider) {
    auto& self = *static_cast<SearchProvider*>(provider);
    self.onCall_();
    return self;
  }

  static int end(sd_bus_message* call, const std::optional<Failure>& failure, sd_bus_error* error) {
    return failure ? sd_bus_error_set(error, failure->name, failure->words)
                   : sd_bus_reply_method_return(call, nullptr);
  }

  static int initial(sd_bus_message* call, void* provider, sd_bus_error*) {
    const SearchProvider& self = called(provider);
    Texts terms;
    if (const int code = readTexts(call, terms); code < 0) return code;
    const Texts found = intentsFound(self.extension_, terms);
    return answer(call, [&](sd_bus_message* reply) { return appendTexts(reply, found); });
  }

  static int subsearch(sd_bus_message* call, void* provider, sd_bus_error*) {
    const SearchProvider& self = called(provider);
    Texts before;
    Texts terms;
    int code = readTexts(call, before);
    if (code >= 0) code = readTexts(call, terms);
    if (code < 0) return code;
    const Texts found = stillFound(self.extension_, std::move(before), terms);
    return answer(call, [&](sd_bus_message* reply) { return appendTexts(reply, found); });
  }

  static int metas(sd_bus_message* call, void* provider, sd_bus_error*) {
    const SearchProvider& self = called(provider);
    Texts intents;
    if (const int code = readTexts(call, intents); code < 0) return code;
    return answer(
        call, [&](sd_bus_message* reply) { return appendMetas(reply, self.extension_, intents); });
  }

  static int activate(sd_bus_message* call, void* provider, sd_bus_error* error) {
    SearchProvider& self = called(provider);
    const char* intent = nullptr;
    if (const int code = sd_bus_message_read(call, "s", &intent); code < 0) return code;
    return end(call, self.activate(intent), error);
  }

  static int launch(sd_bus_message* call, void* provider, sd_bus_error* error) {
    return end(call, called(provider).open({"catalog"}), error);
  }

  static const sd_bus_vtable table[];
};

const sd_bus_vtable SearchProvider::Members::table[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD_WITH_NAMES(search_wire::getInitialResultSet, "as", SD_BUS_PARAM(terms), "as",
                             SD_BUS_PARAM(results), initial, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_NAMES(search_wire::getSubsearchResultSet, "asas",
                             SD_BUS_PARAM(previous_results) SD_BUS_PARAM(terms), "as",
                             SD_BUS_PARAM(results), subsearch, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_NAMES(search_wire::getResultMetas, "as", SD_BUS_PARAM(identifiers), "aa{sv}",
                             SD_BUS_PARAM(metas), metas, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_NAMES(search_wire::activateResult, "sasu",
                             SD_BUS_PARAM(identifier) SD_BUS_PARAM(terms) SD_BUS_PARAM(timestamp),
                             "", , activate, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_NAMES(search_wire::launchSearch, "asu",
                             SD_BUS_PARAM(terms) SD_BUS_PARAM(timestamp), "", , launch,
                             SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END};

SearchProvider::SearchProvider(sd_bus* bus, const platform::AppIntentsExtension& extension,
                               std::function<void()> onCall)
    : extension_(extension), onCall_(std::move(onCall)) {
  const BusObject& search = bus_names::search;
  if (sd_bus_add_object_vtable(bus, nullptr, search.path, search.interface, Members::table, this) <
      0) {
    throw std::runtime_error("the session bus cannot be used");
  }
}

std::optional<SearchProvider::Failure> SearchProvider::activate(const std::string& intent) {
  if (!shownShortcut(extension_, intent)) {
    return Failure{search_wire::invalidArguments, "there is no such result"};
  }
  return open({"perform", intent});
}

// The values are asked for there: nothing of a message is ever an argument.
std::optional<SearchProvider::Failure> SearchProvider::open(Texts arguments) {
  arguments.insert(arguments.begin(), std::filesystem::read_symlink("/proc/self/exe").string());
  if (windows_.open(arguments)) return std::nullopt;
  const char* const complaint = "no terminal can be opened; the variable TERMINAL can name one";
  complain("kivo-intents", complaint);
  return Failure{search_wire::failed, complaint};
}

}  // namespace kivo::linux_platform
