// URL::parse and the grammar of RFC 3986, compared on generated texts.
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "platform/foundation/url.h"
#include "testkit/uri_grammar.h"

namespace kivo::platform {
namespace {

constexpr int madeTexts = 100'000;  // each is compared as it is made, and once more after changes

/// Generates URI references by the grammar, and mutates them. Deterministic.
class TextMaker {
 public:
  std::string reference() {
    std::string text = chance(4) ? "" : pick({"http", "https", "HTTP", "a+b-1.c", "k"}) + ":";
    const bool authority = !chance(4);
    if (authority) text += "//" + (chance(5) ? characters(":") + "@" : "") + host() + port();
    if (authority || chance(2)) {
      text += path(authority);
    } else {
      text += characters(text.empty() ? "@" : ":@") + path(true);
    }
    if (chance(3)) text += "?" + characters(":@/?");
    if (chance(4)) text += "#" + characters(":@/?");
    return text.substr(0, testkit::longestUriText);
  }

  std::string spoiled(std::string text) {
    static const std::string parts[] = {
        ":",      "/",    "//",     "?", "#", "[",  "]",    "@",
        "%",      "%4",   "::",     ".", "v", "1",  "255",  "256",
        "0",      "f",    "-",      "+", " ", "\t", "\r\n", std::string(1, '\0'),
        "\x7f",   "\\",   "^",      "|", "{", "\"", "<",    "`",
        "\u00e9", "\xff", "\u3002", "x", "~", "!"};
    for (std::size_t change = 0; change <= below(3); ++change) {
      const std::size_t at = below(text.size() + 1);
      const std::size_t length = below(4);
      switch (below(4)) {
        case 0:
          text.insert(at, parts[below(std::size(parts))]);
          break;
        case 1:
          text.erase(at, length);
          break;
        case 2:
          text.replace(at, length, parts[below(std::size(parts))]);
          break;
        default:
          text.insert(at, text.substr(below(text.size() + 1), length + 2));
      }
    }
    return text.substr(0, testkit::longestUriText);
  }

 private:
  std::size_t below(std::size_t end) { return random_() % end; }
  bool chance(std::size_t oneIn) { return below(oneIn) == 0; }
  std::string pick(std::initializer_list<const char*> among) {
    return *(among.begin() + below(among.size()));
  }

  // Some characters of a component, which may hold `delimiters` besides the usual ones.
  std::string characters(std::string_view delimiters) {
    static constexpr std::string_view usual = "abz019-._~!$&'()*+,;=AZ";
    std::string text;
    for (std::size_t left = below(6); left > 0; --left) {
      const std::size_t which = below(usual.size() + delimiters.size() + 1);
      if (which < usual.size()) {
        text += usual[which];
      } else if (which < usual.size() + delimiters.size()) {
        text += delimiters[which - usual.size()];
      } else {
        text += pick({"%41", "%2F", "%aF", "%00"});
      }
    }
    return text;
  }
  std::string host() {
    switch (below(6)) {
      case 0:
        return pick({"127.0.0.1", "192.168.1.10", "255.255.255.255", "0.0.0.0", "1.2.3"}) +
               (chance(2) ? "" : pick({".nip.example", ".", "0", "a", ".1", "-", "%2e"}));
      case 1:
        return "[" + address() + "]";
      case 2:
        return pick({"[v1.x]", "[VaF.a:b]", "[v0.:]", "[v1.!$&'()]"});
      case 3:
        return pick({"", "localhost", "api.kivo.test", "h%61st", "%2Frun%2Fkivo.sock"});
      default:
        return characters("");
    }
  }
  // Mostly an IPv6 address; some have a group or an elision too many.
  std::string address() {
    std::string text;
    const std::size_t groups = 6 + below(3);
    const std::size_t elided = chance(3) ? groups : below(groups + 1);
    for (std::size_t group = 0; group < groups; ++group) {
      if (group == elided) {
        text += "::";
        group += below(7);
      } else if (!text.empty() && !text.ends_with(':')) {
        text += ":";
      }
      if (group < groups) text += pick({"0", "1", "ff", "ABC", "2001", "0000"});
    }
    if (elided == groups) return chance(2) ? text : pick({"::", "::1", "1::", "::ffff:1.2.3.4"});
    return chance(3) ? text + pick({":1.2.3.4", ":255.1.0.20", ":01.2.3.4", ":1.2.3"}) : text;
  }
  std::string port() { return chance(2) ? "" : ":" + pick({"", "80", "0443", "99999"}); }
  std::string path(bool mayBeginWithTwoSlashes) {
    std::string text;
    for (std::size_t left = below(4); left > 0; --left) text += "/" + characters(":@");
    if (!mayBeginWithTwoSlashes && text.starts_with("//")) text.erase(0, 1);
    return text;
  }

  std::mt19937_64 random_{20'261'121};
};

std::string described(const std::optional<URL>& url) {
  if (!url) return "does not parse";
  return url->scheme + " | " + url->host + " | " + url->port + " | " + url->target;
}

struct Comparison {
  int parsed = 0;
  int refused = 0;

  void add(const std::string& text) {
    const auto expected = testkit::readByGrammar(text);
    ASSERT_EQ(described(URL::parse(text)), described(expected)) << testing::PrintToString(text);
    ++(expected ? parsed : refused);
  }
};

TEST(URLParsing, FollowsTheGrammarForRandomTexts) {
  TextMaker maker;
  Comparison comparison;
  for (int made = 0; made < madeTexts && !testing::Test::HasFatalFailure(); ++made) {
    const std::string text = maker.reference();
    comparison.add(text);
    comparison.add(maker.spoiled(text));
  }
  // Both kinds of text were compared.
  EXPECT_GT(comparison.parsed, madeTexts);
  EXPECT_GT(comparison.refused, madeTexts / 4);
}

TEST(URLParsing, FollowsTheGrammarForShortTextsOfDelimiters) {
  const std::string characters = "a1:/?#[]@%.v";
  Comparison comparison;
  std::vector<std::string> texts{""};
  for (std::size_t at = 0; at < texts.size(); ++at) {
    comparison.add(texts[at]);
    ASSERT_FALSE(HasFatalFailure());
    if (texts[at].size() == 4) continue;
    for (const char character : characters) texts.push_back(texts[at] + character);
  }
  EXPECT_EQ(comparison.parsed + comparison.refused, 1 + 12 + 144 + 1728 + 20736);
}

}  // namespace
}  // namespace kivo::platform
