
#include "recording/template_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/foundation/failure.h"
#include "recognition/templates/teaching.h"
#include "testkit/private_folders.h"

namespace kivo::recording {

using money::Kind;
using money::Money;
using recognition::MessageTemplate;
using recognition::Outcome;
using recognition::Reading;

namespace {

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class ATemplateFile : public testing::Test {
 protected:
  [[nodiscard]] fs::path file() const {
    return folders_.home() / "config" / "kivo" / "templates.toml";
  }
  void write(const std::string& text) const {
    fs::create_directories(file().parent_path());
    std::ofstream(file(), std::ios::binary) << text;
  }
  [[nodiscard]] std::string text() const {
    std::ostringstream text;
    text << std::ifstream(file(), std::ios::binary).rdbuf();
    return text.str();
  }
  // The sentence of the failure; "none" when `act` does not fail.
  static std::string failureOf(const std::function<void()>& act) {
    try {
      act();
      return "none";
    } catch (const linux_platform::Failure& failure) {
      return failure.what();
    }
  }
  static std::string failureOfReading() {
    return failureOf([] { TemplateFile::read(); });
  }
  static std::string failureOfAdding(const MessageTemplate& one) {
    return failureOf([&] { TemplateFile::add(one); });
  }
  // The error without the path in front.
  [[nodiscard]] std::string errorOf(const std::string& text) const {
    write(text);
    const std::string error = failureOfReading();
    const std::string before = file().string() + ": ";
    EXPECT_THAT(error, StartsWith(before));
    return error.substr(std::min(error.size(), before.size()));
  }
  static MessageTemplate taught(const std::string& message) {
    return recognition::teach(message, {.kind = Kind::expense, .amount = "5"}, "EGP");
  }
  static std::string oneTemplate(const std::string& text) {
    return "[[template]]\ntext = '" + text + "'\nkind = 'expense'\n";
  }

  testkit::PrivateFolders folders_;
};

TEST_F(ATemplateFile, HasNoTemplatesWhenItIsMissing) {
  EXPECT_THAT(TemplateFile::read(), IsEmpty());
}

TEST_F(ATemplateFile, GivesBackWhatWasAdded) {
  const MessageTemplate one = taught("\"Zap\" 'x' \\n {y} 🛒 زاب 5 EGP");
  TemplateFile::add(one);
  TemplateFile::add(taught("Zip 5"));
  const auto templates = TemplateFile::read();
  ASSERT_THAT(templates, SizeIs(2));
  EXPECT_TRUE(templates[0].readsAs(one));
  EXPECT_EQ(templates[1].text, "Zip {amount}");
}

TEST_F(ATemplateFile, IsReadableText) {
  TemplateFile::add(taught("Zap 5 EGP زاب"));
  EXPECT_THAT(text(), StartsWith("# Messages that Kivo was taught to read."));
  EXPECT_THAT(text(), EndsWith("\n[[template]]\n"
                               "text = \"Zap {amount} EGP زاب\"\n"
                               "kind = \"expense\"\n"
                               "currency = \"EGP\"\n"));
}

TEST_F(ATemplateFile, KeepsControlCharactersOfAMessage) {
  const MessageTemplate one = taught(std::string("Zap \x01\x00\x7f 5 EGP", 14));
  TemplateFile::add(one);
  ASSERT_THAT(TemplateFile::read(), SizeIs(1));
  EXPECT_TRUE(TemplateFile::read()[0].readsAs(one));
}

TEST_F(ATemplateFile, IsPrivate) {
  TemplateFile::add(taught("Zap 5"));
  struct stat found {};
  ASSERT_EQ(stat(file().c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777U, 0600U);
}

TEST_F(ATemplateFile, KeepsCommentsAndLayout) {
  const std::string mine = "# mine\r\n[[template]] # yes\r\n  kind='none'\r\n  text='News'";
  write(mine);
  TemplateFile::add(taught("Zap 5"));
  EXPECT_THAT(text(), StartsWith(mine + "\n\n[[template]]\n"));
  EXPECT_THAT(TemplateFile::read(), SizeIs(2));
}

TEST_F(ATemplateFile, KeepsASymbolicLinkToIt) {
  const fs::path real = folders_.home() / "elsewhere.toml";
  std::ofstream(real) << oneTemplate("Zip {amount}");
  fs::create_directories(file().parent_path());
  fs::create_symlink(real, file());
  TemplateFile::add(taught("Zap 5"));
  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_THAT(TemplateFile::read(), SizeIs(2));
}

TEST_F(ATemplateFile, StaysAsItIsWhenItIsDamaged) {
  for (const std::string damaged : {"[[template]]\ntext = 'Zap\n", "template = []\n"}) {
    write(damaged);
    EXPECT_THAT(failureOfAdding(taught("Zap 5")), StartsWith(file().string() + ": "));
    EXPECT_EQ(text(), damaged);
  }
}

TEST_F(ATemplateFile, NamesTheLineThatIsWrong) {
  const std::string first = oneTemplate("Zip {amount}");  // three lines
  EXPECT_EQ(errorOf(first + "[[template]]\ntext = 'Zap\n"), "line 5: this is not valid TOML");
  EXPECT_EQ(
      errorOf(first + "[[template]]\nkind = 'expense'\ntext = 'Zap {sum}'\n"),
      "line 6: {amount}, {payee} and {any} are all placeholders; a brace itself is written {{");
  EXPECT_EQ(errorOf(first + oneTemplate("Zap {any}{amount}")),
            "line 5: two placeholders touch; there must be text between them");
  EXPECT_EQ(errorOf(first + oneTemplate("Zap {any}")),
            "line 5: {amount} is missing; without it kind must be none");
  EXPECT_EQ(errorOf(first + "[[template]]\ntext = 'Zap {amount}'\nkind = 'gift'\n"),
            "line 6: kind must be expense, income, transfer or none");
  EXPECT_EQ(errorOf(first + "[[template]]\ntext = 'Zap {amount}'\n"),
            "line 4: kind must be expense, income, transfer or none");
  EXPECT_EQ(errorOf(first + "[[template]]\nkind = 'none'\n"), "line 4: a template needs a text");
  EXPECT_EQ(errorOf(first + oneTemplate("Zap {amount}") + "currency = 'E£'\n"),
            "line 7: currency must be a code such as EGP");
  EXPECT_EQ(errorOf(first + oneTemplate("Zap {amount}") + "colour = 'red'\n"),
            "line 7: unknown key; a template has text, kind, currency, description and category");
  EXPECT_EQ(errorOf(first + oneTemplate("Zap {amount}") + "category = 7\n"),
            "line 7: this must be a text in quotes");
  EXPECT_EQ(errorOf("templates = 1\n" + first), "line 1: only [[template]] may be here");
  EXPECT_EQ(errorOf("[template]\ntext = 'Zap'\n"), "line 1: only [[template]] may be here");
  EXPECT_EQ(errorOf("template = [\n1]\n"), "line 2: only [[template]] may be here");
}

TEST_F(ATemplateFile, IsRefusedWhenItsKeysHaveDots) {
  std::string deep = "a";
  for (int part = 0; part < 100'000; ++part) deep += ".a";
  const std::string words = "a dot is allowed only within quotes";
  EXPECT_EQ(errorOf(deep + " = 1\n"), "line 1: " + words);
  EXPECT_EQ(errorOf("# 1.\n[" + deep + "]\n"), "line 2: " + words);
  EXPECT_EQ(errorOf("template = [{ text = '.', " + deep + " = 1 }]\n"), "line 1: " + words);
  EXPECT_EQ(errorOf("a = \"\"\".\n\\\"\"\".\"\"\"\"\"\n" + deep + " = ''\n"), "line 3: " + words);
  EXPECT_EQ(errorOf("a = '''.''''\n" + deep + " = ''\n"), "line 2: " + words);
  EXPECT_EQ(errorOf("a = '\\'\n" + deep + " = ''\n"), "line 2: " + words);
  EXPECT_EQ(errorOf("a = 'no end\n" + deep + " = ''\n"), "line 2: " + words);
}

TEST_F(ATemplateFile, HasDotsWithinQuotesAndComments) {
  write(
      "# 1.\n[[template]] # 2.\ntext = 'Zap. {any}' # 'no end.\n\"kind\" = \"none\"\n"
      "description = '''Zap's \"Z.''''\ncategory = \"\"\"\\\"\"\\\\.\"\"\"\n");
  const auto templates = TemplateFile::read();
  ASSERT_THAT(templates, SizeIs(1));
  EXPECT_EQ(templates[0].description, "Zap's \"Z.'");
  EXPECT_EQ(templates[0].category, "\"\"\\.");
}

TEST_F(ATemplateFile, IsRefusedWhenItBelongsToAnotherUser) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
  write(oneTemplate("Zap {amount}"));
  ASSERT_EQ(chown(file().c_str(), 65534, 65534), 0);
  EXPECT_EQ(failureOfReading(), file().string() + ": it belongs to another user");
  EXPECT_EQ(failureOfAdding(taught("Zap 5")), file().string() + ": it belongs to another user");
}

TEST_F(ATemplateFile, IsRefusedWhenItIsTooLargeOrNoFile) {
  EXPECT_EQ(errorOf(std::string((1 << 20) + 1, '#')), "it cannot be read");
  fs::remove(file());
  fs::create_directories(file());
  EXPECT_EQ(failureOfReading(), file().string() + ": it cannot be read");
  EXPECT_EQ(failureOfAdding(taught("Zap 5")), file().string() + ": it cannot be read");
}

TEST_F(ATemplateFile, DoesNotGrowBeyondWhatIsRead) {
  const std::string large = "#" + std::string((1 << 20) - 10, 'x') + "\n";
  write(large);
  EXPECT_EQ(failureOfAdding(taught("Zap 5")),
            file().string() + ": nothing can be added at its end");
  EXPECT_EQ(text(), large);
}

TEST_F(ATemplateFile, TakesDescriptionAndCategory) {
  write(oneTemplate("Zap {amount}") +
        "currency = 'KWD'\ndescription = 'Rent'\ncategory = 'Home'\n");
  const Reading reading = TemplateFile::reader()("Zap 1.500", "KWD");
  EXPECT_EQ(reading.amount, (Money{1500, "KWD"}));
  EXPECT_EQ(reading.description, "Rent");
  EXPECT_EQ(reading.category, "Home");
}

TEST_F(ATemplateFile, IsReadForEachMessage) {
  const MessageReader reader = TemplateFile::reader();
  EXPECT_EQ(reader("Zap 5", "EGP").outcome, Outcome::notATransaction);
  write(oneTemplate("Zap {amount}"));
  EXPECT_EQ(reader("Zap 5", "EGP").outcome, Outcome::transaction);
  fs::remove(file());
  EXPECT_EQ(reader("Zap 5", "EGP").outcome, Outcome::notATransaction);
}

TEST_F(ATemplateFile, LeavesMessagesToTheRulesWhenItIsDamaged) {
  const MessageReader reader = TemplateFile::reader();
  const std::string message = "Your card ending 4821 was charged EGP 150.00 at Carrefour City.";
  write("zzz secret");
  testing::internal::CaptureStderr();
  EXPECT_EQ(reader(message, "EGP"), recognition::read(message, "EGP"));
  EXPECT_EQ(reader(message, "EGP"), recognition::read(message, "EGP"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "kivo-ledger: " + file().string() +
                ": line 1: this is not valid TOML; messages are read without templates\n");
  write(oneTemplate("Zap {sum}"));
  testing::internal::CaptureStderr();
  reader(message, "EGP");
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr(": line 2: {amount}, "));
}

}  // namespace
}  // namespace kivo::recording
