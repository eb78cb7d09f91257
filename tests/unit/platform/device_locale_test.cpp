#include "platform/linux/locale/device_locale.h"

#include <optional>

#include <gtest/gtest.h>

#include "testkit/private_folders.h"

namespace kivo::linux_platform {
namespace {

using testkit::ScopedVariable;

struct Variables {
  std::optional<std::string> all = std::nullopt;
  std::optional<std::string> time = std::nullopt;
  std::optional<std::string> monetary = std::nullopt;
  std::optional<std::string> lang = std::nullopt;
};

std::string localeFor(const char* category, const Variables& variables) {
  const ScopedVariable all("LC_ALL", variables.all);
  const ScopedVariable time("LC_TIME", variables.time);
  const ScopedVariable monetary("LC_MONETARY", variables.monetary);
  const ScopedVariable lang("LANG", variables.lang);
  return deviceLocale(category);
}

TEST(ADeviceLocale, IsTheFirstVariableThatIsNotEmpty) {
  EXPECT_EQ(localeFor("LC_TIME", {"a_A", "b_B", "c_C", "d_D"}), "a_A");
  EXPECT_EQ(localeFor("LC_MONETARY", {"a_A", "b_B", "c_C", "d_D"}), "a_A");
  EXPECT_EQ(localeFor("LC_TIME", {std::nullopt, "b_B", "c_C", "d_D"}), "b_B");
  EXPECT_EQ(localeFor("LC_MONETARY", {std::nullopt, "b_B", "c_C", "d_D"}), "c_C");
  EXPECT_EQ(localeFor("LC_TIME", {"", "b_B", "c_C", "d_D"}), "b_B");
  EXPECT_EQ(localeFor("LC_TIME", {"", "", "c_C", "d_D"}), "d_D");
  EXPECT_EQ(localeFor("LC_MONETARY", {std::nullopt, std::nullopt, std::nullopt, "d_D"}), "d_D");
}

TEST(ADeviceLocale, IsEnUsPosixByDefault) {
  EXPECT_EQ(localeFor("LC_TIME", {}), "en_US_POSIX");
  EXPECT_EQ(localeFor("LC_MONETARY", {"", "", "", ""}), "en_US_POSIX");
  for (const auto* const name : {"C", "POSIX", "C.UTF-8", "C.utf8", "POSIX.UTF-8"}) {
    EXPECT_EQ(localeFor("LC_TIME", {name}), "en_US_POSIX") << name;
  }
}

TEST(ADeviceLocale, OmitsCodesetAndModifier) {
  EXPECT_EQ(localeFor("LC_TIME", {"de_DE.UTF-8"}), "de_DE");
  EXPECT_EQ(localeFor("LC_TIME", {"de_DE@euro"}), "de_DE");
  EXPECT_EQ(localeFor("LC_TIME", {"de_DE.ISO-8859-15@euro"}), "de_DE");
  EXPECT_EQ(localeFor("LC_TIME", {"ar"}), "ar");
}

TEST(ADeviceLocale, KeepsTheScriptThatAModifierNames) {
  EXPECT_EQ(localeFor("LC_TIME", {"sr_RS@latin"}), "sr_Latn_RS");
  EXPECT_EQ(localeFor("LC_TIME", {"sr_RS.UTF-8@latin"}), "sr_Latn_RS");
  EXPECT_EQ(localeFor("LC_TIME", {"uz_UZ@cyrillic"}), "uz_Cyrl_UZ");
  EXPECT_EQ(localeFor("LC_TIME", {"ks_IN@devanagari"}), "ks_Deva_IN");
}

}  // namespace
}  // namespace kivo::linux_platform
