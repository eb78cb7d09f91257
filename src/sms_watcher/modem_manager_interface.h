// The D-Bus interfaces of ModemManager for text messages.
#pragma once

#include <cstdint>

namespace kivo::modem_manager_interface {

inline constexpr const char* service = "org.freedesktop.ModemManager1";
inline constexpr const char* path = "/org/freedesktop/ModemManager1";

inline constexpr const char* objectManager = "org.freedesktop.DBus.ObjectManager";
inline constexpr const char* getManagedObjects = "GetManagedObjects";
inline constexpr const char* interfacesAdded = "InterfacesAdded";

inline constexpr const char* properties = "org.freedesktop.DBus.Properties";
inline constexpr const char* getAll = "GetAll";
inline constexpr const char* propertiesChanged = "PropertiesChanged";

inline constexpr const char* messaging = "org.freedesktop.ModemManager1.Modem.Messaging";
inline constexpr const char* list = "List";
inline constexpr const char* added = "Added";

inline constexpr const char* sms = "org.freedesktop.ModemManager1.Sms";
inline constexpr const char* state = "State";
inline constexpr const char* pduType = "PduType";
inline constexpr const char* number = "Number";
inline constexpr const char* text = "Text";
inline constexpr const char* timestamp = "Timestamp";

// A message of several parts stays in the state "receiving" until all parts have arrived.
inline constexpr std::uint32_t stateReceived = 3;

// Messages delivered by the network, in the two families of PDU types.
inline constexpr std::uint32_t pduDeliver = 1;
inline constexpr std::uint32_t pduCdmaDeliver = 32;

}  // namespace kivo::modem_manager_interface
