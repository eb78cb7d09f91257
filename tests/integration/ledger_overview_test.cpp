// The summary and the report of the real program kivo-ledger.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "book/current_day.h"
#include "platform/linux/process/child_process.h"
#include "testkit/private_ledger.h"
#include "testkit/raw_store.h"

namespace kivo::testkit {
namespace {

namespace fs = std::filesystem;
using linux_platform::ProgramResult;
using testing::HasSubstr;

class AnOverview : public testing::Test {
 protected:
  ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo-ledger",
                                       .arguments = std::move(arguments),
                                       .environment = {{"PATH", tools().string()}}});
  }
  // A book with a purchase of 150.00 EGP on 2026-11-21.
  void book() {
    const auto server = ledger_.start();
    ASSERT_EQ(ledger_.post("KEY-1").status(), 200);
  }
  // The only folder of programs.
  [[nodiscard]] fs::path tools() const {
    fs::path folder = ledger_.folders().home() / "tools";
    fs::create_directories(folder);
    return folder;
  }
  void installOpener(const std::string& script) const {
    const fs::path opener = tools() / "xdg-open";
    std::ofstream(opener) << "#!/bin/sh\n" << script << '\n';
    fs::permissions(opener, fs::perms::owner_all);
  }
  [[nodiscard]] fs::path page() const {
    return ledger_.folders().home() / "run" / "kivo" / "report.html";
  }
  static unsigned modeOf(const fs::path& path) {
    struct stat found {};
    EXPECT_EQ(lstat(path.c_str(), &found), 0) << path;
    return found.st_mode & 07777U;
  }
  static std::string contentOf(const fs::path& path) {
    std::ifstream stream(path);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  static std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
      names.push_back(entry.path().filename());
    }
    return names;
  }

  PrivateLedger ledger_;
};

TEST_F(AnOverview, SumsUpAMonth) {
  book();
  const ProgramResult shown = run({"summary", "--month", "2026-11"});
  EXPECT_EQ(shown.status, 0);
  EXPECT_THAT(shown.output, HasSubstr("150.00  0.00  Spent\n"));
  EXPECT_THAT(shown.output, HasSubstr("150.00  1x  Carrefour City\n"));
  EXPECT_THAT(shown.output, testing::Not(HasSubstr("\x1b")));
  const auto json = nlohmann::json::parse(run({"summary", "--month", "2026-11", "--json"}).output);
  EXPECT_EQ(json["expense"], "150.00");
  EXPECT_EQ(json["currency"], "EGP");
  EXPECT_EQ(json["payees"][0]["description"], "Carrefour City");
  EXPECT_EQ(run({"summary", "--month", "2026-09"}).output,
            "Nothing is booked in September 2026.\n");
}

TEST_F(AnOverview, SumsUpAYear) {
  book();
  const ProgramResult shown = run({"summary", "--year", "2026"});
  EXPECT_EQ(shown.status, 0);
  EXPECT_THAT(shown.output, HasSubstr(" 150.00  0.00  Spent\n"));
  EXPECT_THAT(shown.output, HasSubstr("-150.00  0.00  Saved\n"));
  const auto json = nlohmann::json::parse(run({"summary", "--year", "2026", "--json"}).output);
  EXPECT_EQ(json["saving"], "-150.00");
  EXPECT_EQ(json["months"][10]["expense"], "150.00");
  EXPECT_EQ(json["categories"][0]["months"][10], "150.00");
  EXPECT_EQ(json["payees"][0]["previous"], "0.00");
  EXPECT_EQ(run({"summary", "--year", "2024"}).output, "Nothing is booked in 2024.\n");
}

TEST_F(AnOverview, WritesAReportOfAYear) {
  book();
  const ProgramResult written = run({"report", "--year", "2026", "--no-open"});
  EXPECT_EQ(written.status, 0) << written.errors;
  EXPECT_THAT(contentOf(page()), HasSubstr("<title>Kivo: 2026</title>"));
  EXPECT_THAT(contentOf(page()), HasSubstr("<bdi>Carrefour City</bdi>"));
  EXPECT_EQ(modeOf(page()), 0600U);
}

TEST_F(AnOverview, ListsThePaymentsThatComeEachMonth) {
  EXPECT_EQ(run({"recurring"}).output, "No payment came three months in a row.\n");
  EXPECT_EQ(run({"recurring", "--json"}).output, "[]\n");
  const money::Month month = book::currentMonth();
  for (int back = 3; back >= 1; --back) {
    const ProgramResult added = run({"add", "--amount", "6500", "--payee", "Green Homes", "--date",
                                     month.before(back).text() + "-28", "--category", "Rent"});
    ASSERT_EQ(added.status, 0) << added.errors;
  }
  EXPECT_THAT(run({"recurring"}).output, HasSubstr("6500.00 EGP      3  Green Homes  Rent\n"));
  const auto json = nlohmann::json::parse(run({"recurring", "--json"}).output);
  ASSERT_EQ(json.size(), 1U);
  EXPECT_EQ(json[0]["description"], "Green Homes");
  EXPECT_EQ(json[0]["amount"], "6500.00");
  EXPECT_EQ(json[0]["next"], month.text() + "-28");
  EXPECT_EQ(json[0]["times"], "3");
  EXPECT_THAT(run({"summary"}).output, HasSubstr("\nEach month\nGreen Homes "));
}

TEST_F(AnOverview, LeavesOutAndNamesAnEntryWhoseAmountIsOutOfRange) {
  {
    const auto server = ledger_.start();
    for (const char* const key : {"KEY-1", "KEY-2", "KEY-3"}) {
      ASSERT_EQ(ledger_.post(key).status(), 200);
    }
  }
  RawStore(ledger_.file())
      .run(
          "PRAGMA ignore_check_constraints = ON;"
          "UPDATE transactions SET minor_units = 9223372036854775807 WHERE id = 1;"
          "UPDATE transactions SET minor_units = -9223372036854775807 - 1 WHERE id = 2");
  for (const char* const month : {"2026-11", "2026-12"}) {
    const ProgramResult shown = run({"summary", "--month", month});
    EXPECT_EQ(shown.status, 0) << shown.errors;
    EXPECT_THAT(shown.output, HasSubstr("too large or not above zero: 1, 2.\nkivo-ledger edit ID"));
    EXPECT_EQ(run({"report", "--month", month, "--no-open"}).status, 0);
    EXPECT_THAT(contentOf(page()), HasSubstr("too large or not above zero: 1, 2."));
  }
  const auto json = nlohmann::json::parse(run({"summary", "--month", "2026-11", "--json"}).output);
  EXPECT_EQ(json["expense"], "150.00");
  EXPECT_EQ(json["left_out"], "1, 2");
  run({"edit", "1", "--amount", "150"});
  run({"accept", "1"});
  EXPECT_THAT(run({"summary", "--month", "2026-11"}).output, HasSubstr("300.00  0.00  Spent\n"));
}

TEST_F(AnOverview, WritesAReportForTheUserAlone) {
  book();
  const ProgramResult written = run({"report", "--month", "2026-11", "--no-open"});
  EXPECT_EQ(written.status, 0) << written.errors;
  EXPECT_EQ(written.output, page().string() + "\n");
  EXPECT_THAT(contentOf(page()), HasSubstr("<bdi>Carrefour City</bdi>"));
  EXPECT_EQ(modeOf(page()), 0600U);
}

TEST_F(AnOverview, MakesTheReportsFolderPrivate) {
  ASSERT_EQ(run({"report", "--no-open"}).status, 0);
  EXPECT_EQ(modeOf(page().parent_path()), 0700U);
  EXPECT_THAT(namesIn(page().parent_path()), testing::ElementsAre("report.html"));
}

TEST_F(AnOverview, ReplacesAReportThatOthersCouldRead) {
  const fs::path output = ledger_.folders().home() / "mine.html";
  std::ofstream(output) << "of before";
  fs::permissions(output, fs::perms(0644));
  const std::ifstream reader(output);
  ASSERT_EQ(run({"report", "--no-open", "--output", output.string()}).status, 0);
  EXPECT_EQ(modeOf(output), 0600U);
  EXPECT_EQ((std::string{std::istreambuf_iterator<char>(reader.rdbuf()), {}}), "of before");
}

TEST_F(AnOverview, FollowsNoLinkAndReplacesNoDevice) {
  const fs::path home = ledger_.folders().home();
  std::ofstream(home / "precious") << "kept";
  fs::create_symlink(home / "precious", home / "link.html");
  ASSERT_EQ(mkfifo((home / "fifo.html").c_str(), 0600), 0);
  for (const char* const name : {"link.html", "fifo.html", "tools"}) {
    const ProgramResult refused = run({"report", "--no-open", "--output", home / name});
    EXPECT_EQ(refused.status, 1) << name;
    EXPECT_EQ(refused.errors, "kivo-ledger: cannot write \"" + (home / name).string() +
                                  "\": it is not a plain file\n");
  }
  EXPECT_EQ(contentOf(home / "precious"), "kept");
}

TEST_F(AnOverview, WritesAFileInTheCurrentFolder) {
  const fs::path before = fs::current_path();
  fs::current_path(ledger_.folders().home());
  const ProgramResult written = run({"report", "--no-open", "--output", "here.html"});
  fs::current_path(before);
  EXPECT_EQ(written.output, "here.html\n");
  EXPECT_EQ(modeOf(ledger_.folders().home() / "here.html"), 0600U);
}

TEST_F(AnOverview, OpensTheReport) {
  const fs::path opened = ledger_.folders().home() / "opened";
  installOpener("echo \"$*\" > " + opened.string() + "; echo noise; echo noise >&2");
  const ProgramResult result = run({"report"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, page().string() + "\n");
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(contentOf(opened), page().string() + "\n");
}

TEST_F(AnOverview, SaysWhereTheReportIsWhenItCannotBeOpened) {
  const ProgramResult missing = run({"report"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.output, page().string() + "\n");
  EXPECT_EQ(missing.errors,
            "kivo-ledger: the report is written but not opened: xdg-open is not installed; open " +
                page().string() + " in a browser\n");
  installOpener("exit 3");
  const ProgramResult failed = run({"report"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_THAT(failed.errors, HasSubstr("xdg-open found no program for it"));
  EXPECT_FALSE(fs::is_empty(page()));
}

TEST_F(AnOverview, RefusesACallThatDoesNotFit) {
  for (const auto& [arguments, error] :
       std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"summary", "--month", "2026-13"},
            "invalid --month \"2026-13\": it must be a month such as 2026-11"},
           {{"summary", "--year", "26"}, "invalid --year \"26\": it must be a year such as 2026"},
           {{"summary", "--year", "2026", "--month", "2026-11"},
            "give --month or --year, not both"},
           {{"report", "--year", "2026", "--month", "2026-11"}, "give --month or --year, not both"},
           {{"report", "--month", ""}, "invalid --month \"\": it must be a month such as 2026-11"},
           {{"report", "--output", ""}, "invalid --output \"\": it must be the name of a file"}}) {
    const ProgramResult refused = run(arguments);
    EXPECT_EQ(refused.status, 64);
    EXPECT_EQ(refused.output, "");
    EXPECT_EQ(refused.errors, "kivo-ledger: " + error + "\n");
  }
  const ScopedVariable none("XDG_RUNTIME_DIR", std::nullopt);
  EXPECT_EQ(run({"report"}).errors,
            "kivo-ledger: XDG_RUNTIME_DIR is not set; name a file by --output\n");
}

TEST_F(AnOverview, MakesNoFolderThatWasNamed) {
  const fs::path nowhere = ledger_.folders().home() / "typo" / "report.html";
  EXPECT_EQ(run({"report", "--no-open", "--output", nowhere}).status, 1);
  EXPECT_FALSE(fs::exists(nowhere.parent_path()));
}

}  // namespace
}  // namespace kivo::testkit
