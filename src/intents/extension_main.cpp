// The entry point of kivo-intents.
#include "intents/expense_intents_extension.h"

int main(int argc, char** argv) { return kivo::ExpenseIntentsExtension::main(argc, argv); }
