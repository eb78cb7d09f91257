// A store of Chatty.
#pragma once

#include <filesystem>
#include <string>

#include "testkit/raw_store.h"

namespace kivo::testkit {

/// Returns the statement that stores a message from MyBank (direction 1 is received, -1 is sent) in
/// the thread of the modem (1) or of a chat over the internet (2).
inline std::string chattyMessage(int direction, const std::string& body, int thread = 1,
                                 const std::string& time = "1763719200") {
  return "INSERT INTO messages (uid, thread_id, sender_id, body, body_type, direction, time) "
         "VALUES (hex(randomblob(8)), " +
         std::to_string(thread) + ", 2, '" + body + "', 1, " + std::to_string(direction) + ", " +
         time + ");";
}

/// Creates the file `path` with the tables that Chatty 0.7 gives them, as far as messages need
/// them, and the messages that the statements `messages` store.
inline void makeChattyStore(const std::filesystem::path& path, const std::string& messages) {
  RawStore(path).run(R"(BEGIN;
  CREATE TABLE users (id INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT, username TEXT NOT NULL,
    alias TEXT, avatar_id INTEGER, type INTEGER NOT NULL, UNIQUE (username, type));
  CREATE TABLE accounts (id INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,
    user_id INTEGER NOT NULL REFERENCES users(id), password TEXT, enabled INTEGER DEFAULT 0,
    protocol INTEGER NOT NULL, UNIQUE (user_id, protocol));
  CREATE TABLE threads (id INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL,
    alias TEXT, avatar_id INTEGER, account_id INTEGER NOT NULL REFERENCES accounts(id),
    type INTEGER NOT NULL, encrypted INTEGER DEFAULT 0, UNIQUE (name, account_id, type));
  CREATE TABLE messages (id INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT, uid TEXT NOT NULL,
    thread_id INTEGER NOT NULL REFERENCES threads(id), sender_id INTEGER REFERENCES users(id),
    user_alias TEXT, body TEXT NOT NULL, body_type INTEGER NOT NULL, direction INTEGER NOT NULL,
    time INTEGER NOT NULL, status INTEGER, encrypted INTEGER DEFAULT 0, preview_id INTEGER,
    subject TEXT, UNIQUE (uid, thread_id, body, time));
  INSERT INTO users (username, type) VALUES ('invalid-0000000000000000', 1), ('MyBank', 1),
    ('@me:chat.example', 4);
  INSERT INTO accounts (user_id, protocol) VALUES (1, 1), (3, 4);
  INSERT INTO threads (name, account_id, type) VALUES ('MyBank', 1, 0), ('!room', 2, 1);)" +
                     messages + "COMMIT");
}

}  // namespace kivo::testkit
