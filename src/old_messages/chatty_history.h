// Reads the store of Chatty, the SMS program of Phosh.
#pragma once

#include <filesystem>
#include <optional>

#include "old_messages/old_message.h"

namespace kivo::old_messages {

/// Returns the path of the user's store, ~/.purple/chatty/db/chatty-history.db; nullopt without
/// HOME.
std::optional<std::filesystem::path> chattyStore();

/// Opens the store at `path` for reading only and calls `use` for each received SMS, in the order
/// in which Chatty stored them; messages of chats over the internet are left out. Chatty may run
/// meanwhile. Throws BrokenFile when a part of the file cannot be read, and OtherFile when it is no
/// store of Chatty 0.7 or later.
void readChatty(const std::filesystem::path& path, const MessageUse& use);

}  // namespace kivo::old_messages
