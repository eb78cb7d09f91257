// kivo-intents inside a process that sets the locale of the environment in C and in C++, as a host
// may. Ends with status 70 when the locale does not exist.
#include <clocale>
#include <locale>
#include <stdexcept>

#include "intents/expense_intents_extension.h"

int main(int argc, char** argv) {
  if (std::setlocale(LC_ALL, "") == nullptr) return 70;
  try {
    std::locale::global(std::locale(""));
  } catch (const std::runtime_error&) {
    return 70;
  }
  return kivo::ExpenseIntentsExtension::main(argc, argv);
}
