// Provides ICU's data when ICU's code is linked statically: loads the system's libicudata and
// passes it to ICU before main. Linking to the 31 MB from a position-independent program would copy
// them at each start, and including them would make each program as large.
#include <cstdint>

#include <dlfcn.h>
#include <unicode/udata.h>
#include <unicode/uvernum.h>

namespace {

#define KIVO_TEXT_OF(name) #name
#define KIVO_NAME(name) KIVO_TEXT_OF(name)

// An empty archive in the layout of ICU's data files.
struct EmptyArchive {
  std::uint16_t headerSize = 32;
  std::uint8_t magic[2] = {0xda, 0x27};
  UDataInfo info = {sizeof(UDataInfo), 0, U_IS_BIG_ENDIAN,      U_CHARSET_FAMILY,
                    U_SIZEOF_UCHAR,    0, {'T', 'o', 'C', 'P'}, {1, 0, 0, 0},
                    {0, 0, 0, 0}};
  std::uint8_t padding[8] = {};
  std::uint32_t entries = 0;
};

// Without the data ICU knows no locales, and amounts are printed as plain decimals.
[[maybe_unused]] const bool handed = [] {
  void* const library = dlopen("libicudata.so." U_ICU_VERSION_SHORT, RTLD_NOW | RTLD_LOCAL);
  const void* const data =
      library == nullptr ? nullptr : dlsym(library, KIVO_NAME(U_ICUDATA_ENTRY_POINT));
  UErrorCode status = U_ZERO_ERROR;
  if (data != nullptr) udata_setCommonData(data, &status);
  return U_SUCCESS(status) != 0;
}();

}  // namespace

// The symbol by which ICU's code refers to its data.
extern "C" const EmptyArchive U_ICUDATA_ENTRY_POINT = {};
