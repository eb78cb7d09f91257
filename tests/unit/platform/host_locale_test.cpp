// The platform's texts do not change when the host process sets its own locale in C or C++.
#include <clocale>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <locale>

#include <gtest/gtest.h>

#include "platform/foundation/date_formatter.h"
#include "platform/foundation/iso8601_date_formatter.h"
#include "platform/foundation/json_decoder.h"
#include "platform/foundation/json_encoder.h"
#include "platform/foundation/number_formatter.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/process/child_process.h"
#include "testkit/private_folders.h"

namespace kivo::platform {
namespace {

struct CommaPunctuation : std::numpunct<char> {
  [[nodiscard]] char do_decimal_point() const override { return ','; }
  [[nodiscard]] char do_thousands_sep() const override { return '.'; }
  [[nodiscard]] std::string do_grouping() const override { return "\3"; }
};

void expectTheUsualTexts() {
  EXPECT_EQ(doubleText(1234567.5), "1234567.5");
  EXPECT_EQ(doubleFromText("1234567.5"), 1234567.5);
  EXPECT_EQ(doubleFromText("1234567,5"), std::nullopt);
  EXPECT_EQ(integerText(1234567), "1234567");
  EXPECT_EQ(integerFromText("1234567"), 1234567);

  JSONEncoder object;
  object.encodeDouble("d", 1234567.5);
  object.encodeInteger("i", 1234567);
  EXPECT_EQ(object.text(), R"({"d":1234567.5,"i":1234567})");
  const auto decoded = JSONDecoder::object(R"({"d":1234567.5,"e":12.5e-1,"i":1234567})");
  EXPECT_EQ(decoded.decodeDouble("d"), 1234567.5);
  EXPECT_EQ(decoded.decodeDouble("e"), 1.25);
  EXPECT_EQ(decoded.decodeInteger("i"), 1234567);

  const auto moment = ISO8601DateFormatter::date("2026-01-31T09:05:07Z");
  ASSERT_TRUE(moment);
  EXPECT_EQ(ISO8601DateFormatter::string(*moment), "2026-01-31T09:05:07Z");
  EXPECT_EQ(DateFormatter{.dateFormat = "yyyy-MM-dd"}.string(*moment), "2026-01-31");
  EXPECT_EQ(NumberFormatter{.currencyCode = "USD"}.string(1234.5), "$1,234.50");
}

/// Makes the C library's locale "arabic" in `folder`, whose decimal point is two bytes long.
void compileLocale(const std::filesystem::path& folder) {
  std::ofstream characters(folder / "characters");
  characters << "<escape_char> /\n<code_set_name> TWO\n<mb_cur_max> 2\nCHARMAP\n" << std::hex;
  for (int c = 0; c < 128; ++c) {
    characters << "<U00" << c / 16 << c % 16 << "> /x" << c / 16 << c % 16 << "\n";
  }
  characters << "<U066B> /xd9/xab\nEND CHARMAP\n";
  characters.close();
  std::ofstream(folder / "source")
      << "LC_NUMERIC\ndecimal_point \"<U066B>\"\nthousands_sep \".\"\ngrouping 3;3\n"
         "END LC_NUMERIC\n";
  linux_platform::runProgram(
      {.program = "localedef",
       .arguments = {"-c", "-f", (folder / "characters").string(), "-i",
                     (folder / "source").string(), (folder / "arabic").string()}});
}

class TheLocaleOfTheHostProcess : public testing::Test {
 private:
  testkit::PrivateFolders folders_;
};

TEST_F(TheLocaleOfTheHostProcess, DoesNotMatterWhenSetInCpp) {
  const std::locale before =
      std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
  expectTheUsualTexts();
  std::locale::global(before);
}

TEST_F(TheLocaleOfTheHostProcess, DoesNotMatterWhenSetInC) {
  const testkit::TemporaryFolder folder;
  compileLocale(folder.path());
  const testkit::ScopedVariable path("LOCPATH", folder.path().string());
  ASSERT_NE(std::setlocale(LC_ALL, "arabic"), nullptr);
  char sample[16];
  std::snprintf(sample, sizeof sample, "%.1f", 1.5);
  EXPECT_STREQ(sample, "1\u066B5");
  expectTheUsualTexts();
  EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "arabic");
  std::setlocale(LC_ALL, "C");
}

}  // namespace
}  // namespace kivo::platform
