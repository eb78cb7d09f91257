// How the commands on the open book are called, for sentences that advise one.
#pragma once

#include <string>
#include <string_view>

namespace kivo::book {

/// Says that the program `program` has the commands, and that `--book` names the book `named` among
/// several, or NAME, as the sentences say ID; empty when the program has one book. Until it is
/// called that is kivo-ledger and one book. Not thread-safe: call it where no other thread writes a
/// sentence.
void nameBookCommands(std::string program, std::string_view named);

/// Returns the name of the program that has the commands.
const std::string& bookProgram();

/// Returns the line that calls the command `words` on the open book for a shell: for "edit 7" such
/// as "kivo-ledger edit 7", or "kivo-server edit 7 --book 'Our house'".
std::string bookCommand(std::string_view words);

}  // namespace kivo::book
