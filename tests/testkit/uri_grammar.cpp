#include "testkit/uri_grammar.h"

#include <array>
#include <cctype>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

// Each rule of RFC 3986, appendix A, is a function of its name. It is given the set of places in
// the text where it may begin and yields the set of places where it may end, so that all
// alternatives are followed at once and nothing is decided early.
namespace kivo::testkit {
namespace {

// A bit for each place: bit 0 is before the first character.
using Places = std::uint64_t;

constexpr std::string_view digits = "0123456789";
constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

class Grammar {
 public:
  explicit Grammar(std::string_view text) : text_(text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
      places_[static_cast<unsigned char>(text[at])] |= Places{1} << at;
    }
    digit_ = any(digits);
    alpha_ = any(letters);
    hexdig_ = digit_ | any("ABCDEFabcdef");
    unreserved_ = alpha_ | digit_ | any("-._~");
    subDelims_ = any("!$&'()*+,;=");
    colon_ = any(":");
    at_ = any("@");
    slashOrQuestion_ = any("/?");
  }

  // Every way to read the whole text as a URI reference.
  [[nodiscard]] std::vector<platform::URL> readings() const {
    std::vector<platform::URL> found;
    readRelative(Places{1}, "", found);
    for (const std::size_t end : each(scheme(Places{1}))) {
      std::string name;
      for (const char letter : text_.substr(0, end)) {
        name += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
      }
      readRelative(literal(Places{1} << end, ':'), name, found);
    }
    return found;
  }

 private:
  [[nodiscard]] Places any(std::string_view characters) const {
    Places places = 0;
    for (const char one : characters) places |= places_[static_cast<unsigned char>(one)];
    return places;
  }
  static Places step(Places from, Places characters) { return (from & characters) << 1; }
  [[nodiscard]] Places literal(Places from, char character) const {
    return step(from, places_[static_cast<unsigned char>(character)]);
  }

  template <typename Rule>
  static Places many(Places from, const Rule& rule) {
    Places reached = from;
    for (Places last = from; last != 0; reached |= last) last = rule(last) & ~reached;
    return reached;
  }
  // From `least` to `most` times.
  template <typename Rule>
  static Places times(int least, int most, Places from, const Rule& rule) {
    Places reached = least == 0 ? from : 0;
    for (int time = 1; time <= most; ++time) {
      from = rule(from);
      if (time >= least) reached |= from;
    }
    return reached;
  }
  static std::vector<std::size_t> each(Places places) {
    std::vector<std::size_t> list;
    for (std::size_t at = 0; places >> at != 0; ++at) {
      if ((places >> at & 1U) != 0) list.push_back(at);
      if (at == longestUriText) break;
    }
    return list;
  }
  [[nodiscard]] bool isWhole(Places ends) const { return (ends >> text_.size() & 1U) != 0; }

  [[nodiscard]] Places scheme(Places from) const {
    const Places rest = alpha_ | digit_ | any("+-.");
    return many(step(from, alpha_), [rest](Places p) { return step(p, rest); });
  }
  [[nodiscard]] Places pctEncoded(Places from) const {
    return step(step(literal(from, '%'), hexdig_), hexdig_);
  }
  [[nodiscard]] Places pchar(Places from) const {
    return step(from, unreserved_ | subDelims_ | colon_ | at_) | pctEncoded(from);
  }
  [[nodiscard]] Places userinfo(Places from) const {
    return many(from, [this](Places p) {
      return step(p, unreserved_ | subDelims_ | colon_) | pctEncoded(p);
    });
  }
  [[nodiscard]] Places host(Places from) const {
    return ipLiteral(from) | ipv4Address(from) | regName(from);
  }
  [[nodiscard]] Places ipLiteral(Places from) const {
    const Places inside = literal(from, '[');
    return literal(ipv6Address(inside) | ipvFuture(inside), ']');
  }
  [[nodiscard]] Places ipvFuture(Places from) const {
    const Places version = step(from, any("vV"));
    const Places dot =
        literal(times(1, 63, version, [this](Places p) { return step(p, hexdig_); }), '.');
    const Places kept = unreserved_ | subDelims_ | colon_;
    return times(1, 63, dot, [kept](Places p) { return step(p, kept); });
  }
  [[nodiscard]] Places h16(Places from) const {
    return times(1, 4, from, [this](Places p) { return step(p, hexdig_); });
  }
  [[nodiscard]] Places h16s(int count, Places from) const {
    return times(count, count, from, [this](Places p) { return literal(h16(p), ':'); });
  }
  // [ *most( h16 ":" ) h16 ] "::"
  [[nodiscard]] Places elided(int most, Places from) const {
    const Places before =
        h16(times(0, most, from, [this](Places p) { return literal(h16(p), ':'); }));
    return literal(literal(from | before, ':'), ':');
  }
  [[nodiscard]] Places ls32(Places from) const {
    return h16(literal(h16(from), ':')) | ipv4Address(from);
  }
  [[nodiscard]] Places ipv6Address(Places from) const {
    const Places bare = literal(literal(from, ':'), ':');
    return ls32(h16s(6, from)) | ls32(h16s(5, bare)) | ls32(h16s(4, elided(0, from))) |
           ls32(h16s(3, elided(1, from))) | ls32(h16s(2, elided(2, from))) |
           ls32(h16s(1, elided(3, from))) | ls32(elided(4, from)) | h16(elided(5, from)) |
           elided(6, from);
  }
  [[nodiscard]] Places ipv4Address(Places from) const {
    const Places three = times(3, 3, from, [this](Places p) { return literal(decOctet(p), '.'); });
    return decOctet(three);
  }
  [[nodiscard]] Places decOctet(Places from) const {
    const Places one = step(from, digit_);
    const Places two = step(step(from, any("123456789")), digit_);
    const Places hundred = step(step(literal(from, '1'), digit_), digit_);
    const Places twoHundred = step(step(literal(from, '2'), any("01234")), digit_);
    const Places last = step(literal(literal(from, '2'), '5'), any("012345"));
    return one | two | hundred | twoHundred | last;
  }
  [[nodiscard]] Places regName(Places from) const {
    return many(from,
                [this](Places p) { return step(p, unreserved_ | subDelims_) | pctEncoded(p); });
  }
  [[nodiscard]] Places segment(Places from) const {
    return many(from, [this](Places p) { return pchar(p); });
  }
  [[nodiscard]] Places segmentNz(Places from) const { return segment(pchar(from)); }
  [[nodiscard]] Places segmentNzNc(Places from) const {
    const auto one = [this](Places p) {
      return step(p, unreserved_ | subDelims_ | at_) | pctEncoded(p);
    };
    return many(one(from), one);
  }
  [[nodiscard]] Places pathAbempty(Places from) const {
    return many(from, [this](Places p) { return segment(literal(p, '/')); });
  }
  [[nodiscard]] Places pathAbsolute(Places from) const {
    const Places slash = literal(from, '/');
    return slash | pathAbempty(segmentNz(slash));
  }
  [[nodiscard]] Places query(Places from) const {
    return many(from, [this](Places p) { return pchar(p) | step(p, slashOrQuestion_); });
  }

  // "//" authority path-abempty, or a path alone, and what may follow either.
  void readRelative(Places from, const std::string& scheme,
                    std::vector<platform::URL>& found) const {
    const Places authority = literal(literal(from, '/'), '/');
    for (const std::size_t begin : each(authority | literal(userinfo(authority), '@'))) {
      for (const std::size_t end : each(host(Places{1} << begin))) {
        const platform::URL url{scheme, std::string(text_.substr(begin, end - begin)), "", ""};
        readPort(end, url, found);
      }
    }
    const Places rootless = scheme.empty() ? segmentNzNc(from) : segmentNz(from);
    for (const std::size_t begin : each(from)) {
      const Places path = from | pathAbsolute(from) | pathAbempty(rootless);
      readTarget(begin, path, platform::URL{scheme, "", "", ""}, found);
    }
  }
  void readPort(std::size_t begin, platform::URL url, std::vector<platform::URL>& found) const {
    const Places after = Places{1} << begin;
    readTarget(begin, pathAbempty(after), url, found);
    const Places colon = literal(after, ':');
    for (const std::size_t end : each(many(colon, [this](Places p) { return step(p, digit_); }))) {
      url.port = text_.substr(begin + 1, end - begin - 1);
      readTarget(end, pathAbempty(Places{1} << end), url, found);
    }
  }
  // [ "?" query ] [ "#" fragment ] after one of `paths`, to the end of the text.
  void readTarget(std::size_t begin, Places paths, platform::URL url,
                  std::vector<platform::URL>& found) const {
    for (const std::size_t path : each(paths)) {
      const Places after = Places{1} << path;
      for (const std::size_t end : each(after | query(literal(after, '?')))) {
        const Places target = Places{1} << end;
        if (!isWhole(target | query(literal(target, '#')))) continue;
        url.target = (path == begin ? "/" : "") + std::string(text_.substr(begin, end - begin));
        found.push_back(url);
      }
    }
  }

  std::string_view text_;
  // The places before each character.
  std::array<Places, 256> places_{};
  Places digit_ = 0;
  Places alpha_ = 0;
  Places hexdig_ = 0;
  Places unreserved_ = 0;
  Places subDelims_ = 0;
  Places colon_ = 0;
  Places at_ = 0;
  Places slashOrQuestion_ = 0;
};

}  // namespace

std::optional<platform::URL> readByGrammar(std::string_view text) {
  if (text.size() > longestUriText) throw std::length_error("too long for this grammar");
  const std::vector<platform::URL> found = Grammar(text).readings();
  if (found.empty()) return std::nullopt;
  for (const platform::URL& one : found) {
    if (one != found.front()) throw std::logic_error("two ways to read " + std::string(text));
  }
  platform::URL url = found.front();
  // A URL tells an IPv6 address without its brackets.
  if (url.host.starts_with('[') && std::tolower(static_cast<unsigned char>(url.host[1])) != 'v') {
    url.host = url.host.substr(1, url.host.size() - 2);
  }
  return url;
}

}  // namespace kivo::testkit
