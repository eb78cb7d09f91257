#include "server/public_address.h"

#include "platform/foundation/url.h"
#include "platform/linux/terminal/command_failure.h"

namespace kivo::server {
namespace {

bool isOnThisMachine(const std::string& host) {
  const bool isAddress = host.find_first_not_of("0123456789.") == std::string::npos;
  return host == "localhost" || host == "::1" || (isAddress && host.starts_with("127."));
}

}  // namespace

std::string PublicAddress::from(std::string url) {
  while (url.ends_with('/')) url.pop_back();
  const auto parsed = platform::URL::parse(url);
  const bool isHere = parsed && isOnThisMachine(parsed->host);
  const bool isSafe = parsed && (parsed->scheme == "https" || (parsed->scheme == "http" && isHere));
  const bool isPlain = url.find_first_of("?#@") == std::string::npos;
  if (isSafe && isPlain && !parsed->host.empty()) return url;
  throw linux_platform::BadUsage(
      "--public-url is no address such as https://kivo.example.org; http is for this machine "
      "alone");
}

std::string PublicAddress::ofDevice(const std::string& publicUrl, const std::string& secret) {
  return publicUrl + "/p/" + secret;
}

}  // namespace kivo::server
