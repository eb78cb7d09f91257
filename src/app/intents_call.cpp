#include "app/intents_call.h"

#include <gio/gio.h>

#include "app/app_window.h"
#include "platform/foundation/number_text.h"

namespace kivo::app {
namespace {

constexpr const char* busName = "app.kivo.expenses.Intents";
constexpr const char* path = "/app/kivo/expenses/Intents";
constexpr const char* interface = "app.kivo.Intents1";
// A run waits for its backend for 15 s, and sends three kept texts after it.
constexpr int timeoutInMilliseconds = 90'000;

void answered(GObject* source, GAsyncResult* result, gpointer data) noexcept {
  auto& window = *static_cast<AppWindow*>(data);
  GError* error = nullptr;
  GVariant* answer = g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error);
  if (answer != nullptr) {
    const char* dialog = nullptr;
    g_variant_get(answer, "(&s)", &dialog);
    window.tell(dialog);
    g_variant_unref(answer);
  } else {
    g_dbus_error_strip_remote_error(error);
    window.tellFailure("Not Added", error->message);
    g_error_free(error);
  }
}

}  // namespace

void performAddExpense(AppWindow& window, const money::Money& amount, const std::string& merchant) {
  GError* error = nullptr;
  GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error);
  if (bus == nullptr) {
    window.tellFailure("Not Added", error->message);
    g_error_free(error);
    return;
  }
  const double sum = platform::doubleFromText(amountText(amount)).value();
  GVariantBuilder parameters;
  g_variant_builder_init(&parameters, G_VARIANT_TYPE("a{sv}"));
  g_variant_builder_add(&parameters, "{sv}", "amount", g_variant_new_double(sum));
  g_variant_builder_add(&parameters, "{sv}", "merchant", g_variant_new_string(merchant.c_str()));
  g_dbus_connection_call(bus, busName, path, interface, "Perform",
                         g_variant_new("(sa{sv})", "AddExpenseIntent", &parameters),
                         G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, timeoutInMilliseconds,
                         nullptr, answered, &window);
  g_object_unref(bus);
}

}  // namespace kivo::app
