#include "platform/linux/http/http_endpoint.h"

#include <string>

#include <gtest/gtest.h>

#include "platform/foundation/errors.h"

namespace kivo::linux_platform {
namespace {

HTTPEndpoint endpoint(const char* url) {
  return HTTPEndpoint::of(platform::URL::parse(url).value());
}

TEST(AnHTTPEndpoint, HasTheUsualPortOfItsScheme) {
  EXPECT_EQ(endpoint("http://host/").port, 80);
  EXPECT_FALSE(endpoint("http://host/").secure);
  EXPECT_EQ(endpoint("https://host:/").port, 443);
  EXPECT_TRUE(endpoint("https://host/").secure);
}

TEST(AnHTTPEndpoint, HasThePortThatIsWritten) {
  EXPECT_EQ(endpoint("https://host:1/").port, 1);
  EXPECT_EQ(endpoint("https://host:65535/").port, 65535);
  EXPECT_EQ(endpoint("https://host:0008443/").port, 8443);
}

TEST(AnHTTPEndpoint, NamesAPortOnlyWhenItIsNotTheUsualOne) {
  EXPECT_EQ(endpoint("http://host/").authority, "host");
  EXPECT_EQ(endpoint("http://host:80/").authority, "host");
  EXPECT_EQ(endpoint("https://host:443/").authority, "host");
  EXPECT_EQ(endpoint("http://host:443/").authority, "host:443");
  EXPECT_EQ(endpoint("https://host:80/").authority, "host:80");
}

TEST(AnHTTPEndpoint, NamesAnIPv6AddressInBrackets) {
  EXPECT_EQ(endpoint("http://[::1]/").authority, "[::1]");
  EXPECT_EQ(endpoint("http://[::1]:8080/").authority, "[::1]:8080");
}

TEST(AnHTTPEndpoint, IsASocketByItsPercentEncodedPath) {
  const HTTPEndpoint found = endpoint("http+unix://%2Frun%2fuser%2F1000%2Fa%20b.sock/x?y");
  EXPECT_EQ(found.socketPath, "/run/user/1000/a b.sock");
  EXPECT_EQ(found.authority, "localhost");
  EXPECT_FALSE(found.secure);
  EXPECT_EQ(endpoint("http://%2Frun/").socketPath, "");
  const std::string longest = "http+unix://%2F" + std::string(106, 'a');
  EXPECT_EQ(endpoint(longest.c_str()).socketPath.size(), 107U);
}

TEST(AnHTTPEndpoint, IsFoundByTheURLThatASocketHas) {
  const std::string path = "/run/user/1000/a b%/\u00fc\x7f.sock";
  EXPECT_EQ(urlOfSocket("/run/s"), "http+unix://%2Frun%2Fs");
  EXPECT_EQ(endpoint((urlOfSocket(path) + "/x").c_str()).socketPath, path);
}

TEST(AnHTTPEndpoint, IsNotNamedByEveryURL) {
  const std::string tooLong = "http+unix://%2F" + std::string(107, 'a');
  for (const char* const url :
       {"kivo://host/", "host/path", "http:///path", "http://user@:80/", "http://host:0/",
        "http://host:65536/", "http://host:99999/", "http://host:18446744073709551696/",
        "http://[v1.x]/", "http://[v1.x:y]/", "http+unix:///run/socket", "http+unix://run/",
        "http+unix://run%2Fsocket/", "http+unix://%2Frun:80/", "http+unix://%2Frun%00x/",
        "https+unix://%2Frun/", tooLong.c_str()}) {
    try {
      endpoint(url);
      ADD_FAILURE() << url;
    } catch (const platform::URLError& error) {
      EXPECT_EQ(error.code(), platform::URLError::Code::unsupportedURL) << url;
    }
  }
}

}  // namespace
}  // namespace kivo::linux_platform
