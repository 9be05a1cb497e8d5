#include "misc/rktl_url.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace rktl {

url::url(String const& text)
{
    parse(text);
}

void url::parse(String const& text)
{
    size_t position = 0;
    if (size_t const colon = text.find(':'); colon != String::npos) {
        mScheme = decode(text.substr(0, colon), false);
        position = colon + 1;
    }
    if (text.compare(position, 2, "//") == 0) {
        size_t const start = position + 2;
        position = std::min(text.find_first_of("/?", start), text.size());
        parseAuthority(text.substr(start, position - start));
        if (position == text.size())
            return;
    }
    if (text.compare(position, 1, "/") == 0) {
        size_t const start = position + 1;
        position = std::min(text.find('?', start), text.size());
        mPath = decode(text.substr(start, position - start), false);
        if (position == text.size())
            return;
    }
    if (text.compare(position, 1, "?") == 0)
        parseQuery(text.substr(position + 1));
    else
        *this = url();
}

void url::parseAuthority(String const& authority)
{
    String host = authority;
    if (size_t const at = authority.find('@'); at != String::npos) {
        String const login = authority.substr(0, at);
        size_t const colon = login.find(':');
        mUser = decode(login.substr(0, colon), false);
        if (colon != String::npos)
            mPassword = decode(login.substr(colon + 1), false);
        host = authority.substr(at + 1);
    }
    size_t const colon = host.find(':');
    mHost = decode(host.substr(0, colon), false);
    if (colon != String::npos)
        mPort = String(host.substr(colon + 1)).toInteger();
}

void url::parseQuery(String const& pairs)
{
    for (String const& pair : pairs.tokenize("&"))
        if (size_t const equals = pair.find('='); equals != String::npos)
            mQuery[decode(pair.substr(0, equals), true)] = decode(pair.substr(equals + 1), true);
}

url::operator String() const
{
    String text;
    if (!mScheme.empty())
        text += encode(mScheme, ":") + ":";

    String authority;
    if (!mUser.empty()) {
        authority += encode(mUser, "@:/");
        if (!mPassword.empty())
            authority += ":" + encode(mPassword, "@:/");
        authority += "@";
    }
    authority += encode(mHost, "@:/?");
    if (mPort >= 0)
        authority += ":" + String::fromInteger(mPort);
    if (!authority.empty())
        text += "//" + authority;

    if (!mPath.empty())
        text += "/" + encode(mPath, "?");
    if (!mQuery.empty())
        text += "?" + query();
    return text;
}

String url::query() const
{
    std::list<String> pairs;
    for (auto const& [key, value] : mQuery)
        pairs.emplace_back(encode(key, "=&+") + "=" + encode(value, "&+"));
    return String::join(pairs, "&");
}

String url::decode(String const& text, bool plusToSpace)
{
    if (text.size() < 3)
        return text;
    String decoded;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            char const digits[] = {text[i + 1], text[i + 2], '\0'};
            decoded += static_cast<char>(strtol(digits, nullptr, 16));
            i += 2;
        } else {
            decoded += plusToSpace && text[i] == '+' ? ' ' : text[i];
        }
    }
    return decoded;
}

String url::encode(String const& text, char const* chars)
{
    std::string const wanted = std::string("%") + chars;
    String encoded;
    size_t start = 0;
    for (size_t i; (i = text.find_first_of(wanted, start)) != String::npos; start = i + 1)
        encoded += text.substr(start, i - start) + String::fromFormat("%%%X", static_cast<unsigned char>(text[i]));
    encoded += text.substr(start);
    return encoded;
}

} // namespace rktl
