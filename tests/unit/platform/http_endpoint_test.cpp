#include "platform/linux/http/http_endpoint.h"

#include <gtest/gtest.h>

#include "platform/foundation/errors.h"

namespace kivo::linux_platform {
namespace {

HTTPEndpoint endpoint(const char* url) {
  return HTTPEndpoint::of(platform::URL::parse(url).value());
}

TEST(AnHTTPEndpoint, HasTheDefaultPortOfItsScheme) {
  EXPECT_EQ(endpoint("http://host/").port, 80);
  EXPECT_FALSE(endpoint("http://host/").secure);
  EXPECT_EQ(endpoint("https://host:/").port, 443);
  EXPECT_TRUE(endpoint("https://host/").secure);
}

TEST(AnHTTPEndpoint, HasThePortOfItsURL) {
  EXPECT_EQ(endpoint("https://host:1/").port, 1);
  EXPECT_EQ(endpoint("https://host:65535/").port, 65535);
  EXPECT_EQ(endpoint("https://host:0008443/").port, 8443);
}

TEST(AnHTTPEndpoint, OmitsTheDefaultPortInTheHostHeader) {
  EXPECT_EQ(endpoint("http://host/").authority, "host");
  EXPECT_EQ(endpoint("http://host:80/").authority, "host");
  EXPECT_EQ(endpoint("https://host:443/").authority, "host");
  EXPECT_EQ(endpoint("http://host:443/").authority, "host:443");
  EXPECT_EQ(endpoint("https://host:80/").authority, "host:80");
}

TEST(AnHTTPEndpoint, WritesAnIPv6AddressInBrackets) {
  EXPECT_EQ(endpoint("http://[::1]/").authority, "[::1]");
  EXPECT_EQ(endpoint("http://[::1]:8080/").authority, "[::1]:8080");
}

TEST(AnHTTPEndpoint, NeedsAnHTTPURLWithAValidHostAndPort) {
  for (const char* const url :
       {"kivo://host/", "host/path", "http:///path", "http://user@:80/", "http://host:0/",
        "http://host:65536/", "http://host:99999/", "http://host:18446744073709551696/",
        "http://[v1.x]/", "http://[v1.x:y]/"}) {
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
