#include "app/payment_places.h"

#include <string>
#include <utility>

#include <gtk/gtk.h>

namespace kivo::app {

// GObject makes and frees the memory, so the rows are a pointer.
struct PaymentPlaces {
  GObject parent;
  std::vector<book::EntryPlace>* rows;
};

namespace {

struct PaymentPlacesClass {
  GObjectClass parent;
};

PaymentPlaces& self(gpointer object) { return *static_cast<PaymentPlaces*>(object); }

GType itemType(GListModel*) { return GTK_TYPE_STRING_OBJECT; }

guint itemCount(GListModel* model) { return static_cast<guint>(self(model).rows->size()); }

gpointer itemAt(GListModel* model, guint position) {
  const auto& rows = *self(model).rows;
  if (position >= rows.size()) return nullptr;
  return gtk_string_object_new(std::to_string(rows[position].id).c_str());
}

void beList(gpointer interface, gpointer) {
  auto& list = *static_cast<GListModelInterface*>(interface);
  list.get_item_type = itemType;
  list.get_n_items = itemCount;
  list.get_item = itemAt;
}

void begin(GTypeInstance* instance, gpointer) {
  self(instance).rows = new std::vector<book::EntryPlace>;
}

gpointer parentClass = nullptr;

void end(GObject* object) {
  delete self(object).rows;
  G_OBJECT_CLASS(parentClass)->finalize(object);
}

void beClass(gpointer objectClass, gpointer) {
  parentClass = g_type_class_peek_parent(objectClass);
  G_OBJECT_CLASS(objectClass)->finalize = end;
}

GType type() {
  static const GType made = [] {
    const GType id = g_type_register_static_simple(G_TYPE_OBJECT, "KivoPaymentPlaces",
                                                   sizeof(PaymentPlacesClass), beClass,
                                                   sizeof(PaymentPlaces), begin, GTypeFlags());
    const GInterfaceInfo list{beList, nullptr, nullptr};
    g_type_add_interface_static(id, G_TYPE_LIST_MODEL, &list);
    return id;
  }();
  return made;
}

}  // namespace

PaymentPlaces* newPaymentPlaces() {
  return static_cast<PaymentPlaces*>(g_object_new(type(), nullptr));
}

void setPlaces(PaymentPlaces* places, std::vector<book::EntryPlace> rows) {
  const auto before = static_cast<guint>(places->rows->size());
  *places->rows = std::move(rows);
  g_list_model_items_changed(G_LIST_MODEL(places), 0, before,
                             static_cast<guint>(places->rows->size()));
}

const std::vector<book::EntryPlace>& rowsOf(const PaymentPlaces* places) { return *places->rows; }

}  // namespace kivo::app
