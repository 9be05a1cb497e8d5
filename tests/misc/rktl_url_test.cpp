#include <gtest/gtest.h>

#include "misc/rktl_url.h"

using rktl::String;
using rktl::url;

namespace {

/// scheme|user|password|host|port|path|key=value,...
std::string partsOf(url const& address)
{
    std::string query;
    for (auto const& [key, value] : address.mQuery)
        query += (query.empty() ? "" : ",") + key + "=" + value;
    return address.mScheme + "|" + address.mUser + "|" + address.mPassword + "|" + address.mHost + "|" +
        std::to_string(address.mPort) + "|" + address.mPath + "|" + query;
}

char const* const EMPTY = "||||-1||";

} // namespace

TEST(Url, PartsOfAText)
{
    struct {
        char const* text;
        char const* parts;
    } const cases[] = {
        {"", EMPTY}, {"http://u:p@h:80/a/b?x=1+2&y=%2B", "http|u|p|h|80|a/b|x=1 2,y=+"}, {"http://host", "http|||host|-1||"},
        {"http://host/", "http|||host|-1||"}, {"http://host?k=v", "http|||host|-1||k=v"}, {"http://u@h", "http|u||h|-1||"},
        {"x://u:p:q@h:1:2", "x|u|p:q|h|1||"}, {"http://h:", "http|||h|0||"}, {"//h/p", "|||h|-1|p|"},
        {"s:/path", "s||||-1|path|"}, {"s:?a=b", "s||||-1||a=b"}, {"?a=b", "||||-1||a=b"}, {"/p", "||||-1|p|"},
        {"/p%3Fq?k%3D=%26", "||||-1|p?q|k==&"}, {"?a=1&a=2&noequals&b=&=c&&d=x=y", "||||-1||=c,a=2,b=,d=x=y"},
        {"%41%42:?a=b", "AB||||-1||a=b"}, {"http://%40u:%3Ap@h%2F:5", "http|@u|:p|h/|5||"},
        {"/a+b?c+d=e+f", "||||-1|a+b|c d=e f"}, // only a query has blanks as "+"
        {"scheme:", EMPTY}, {"scheme:word", EMPTY}, {"word", EMPTY},
        {"/path:x", EMPTY}, // the first colon ends a scheme, wherever it stands
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.parts, partsOf(url(c.text))) << c.text;
}

TEST(Url, TextOfItsParts)
{
    url address;
    EXPECT_EQ("", String(address));
    address.mHost = "h";
    EXPECT_EQ("//h", String(address));
    address.mPort = 0;
    EXPECT_EQ("//h:0", String(address));
    address.mPassword = "p"; // without a user there is none
    EXPECT_EQ("//h:0", String(address));
    address.mUser = "u@";
    address.mPassword = "p/:";
    address.mHost = "h?";
    address.mScheme = "s:";
    address.mPath = "a/b?c";
    EXPECT_EQ("s%3A://u%40:p%2F%3A@h%3F:0/a/b%3Fc", String(address));
    address.mQuery["b"] = "1=2&3+4%";
    address.mQuery["a+="] = "";
    EXPECT_EQ("a%2B%3D=&b=1=2%263%2B4%25", address.query());
    EXPECT_EQ("s%3A://u%40:p%2F%3A@h%3F:0/a/b%3Fc?a%2B%3D=&b=1=2%263%2B4%25", String(address));
    EXPECT_EQ(partsOf(address), partsOf(url(String(address))));
}

TEST(Url, EscapesOfCharacters)
{
    EXPECT_EQ("%3F", url::encode("?", "?"));
    EXPECT_EQ("%25", url::encode("%", ""));
    EXPECT_EQ("%A", url::encode("\n", "\n")); // no padding
    EXPECT_EQ("%E4 a", url::encode("\xE4 a", "\xE4"));
    EXPECT_EQ(String("\0", 1), url::encode(String("\0", 1), "?"));

    EXPECT_EQ("%4", url::decode("%4", true));
    EXPECT_EQ("+", url::decode("+", true)); // too short to be looked at
    EXPECT_EQ("a b+", url::decode("a+b%2B", true));
    EXPECT_EQ("a+b+", url::decode("a+b%2b", false));
    EXPECT_EQ("aB%4", url::decode("a%42%4", false));
    EXPECT_EQ("ab%", url::decode("ab%", false));
    EXPECT_EQ(String("\0g", 2), url::decode("%zzg", false));
    EXPECT_EQ("\x01", url::decode("%1g", false));
    EXPECT_EQ("%41", url::decode("%2541", false)); // once only
}
