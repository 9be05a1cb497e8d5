#include "streams/rkxml_Tags.h"

#include <string>

namespace rkxml {

bool findOpenTag(std::string_view text, size_t from, std::string_view tag, size_t& start, size_t& end, bool& selfClosed)
{
    std::string const pattern = "<" + std::string(tag);
    selfClosed = false;
    for (size_t found = text.find(pattern, from); found != text.npos; found = text.find(pattern, end)) {
        start = found;
        end = found + pattern.size();
        if (end >= text.size())
            return false;
        switch (text[end]) {
        case '>':
            return true;
        case '/':
            if (text.substr(end + 1, 1) == ">") {
                ++end;
                selfClosed = true;
                return true;
            }
            break; // no end of a tag
        case '\t':
        case '\n':
        case '\r':
        case ' ': { // attributes
            size_t const close = text.find('>', end);
            if (close == text.npos)
                return false;
            end = close;
            selfClosed = text[close - 1] == '/';
            return true;
        }
        default:
            break; // a longer name
        }
    }
    return false;
}

bool findCloseTag(std::string_view text, size_t from, std::string_view tag, size_t& start, size_t& end)
{
    std::string const pattern = "</" + std::string(tag) + ">";
    size_t depth = 0;
    size_t scan = from;
    for (size_t found = text.find(pattern, from); found != text.npos; found = text.find(pattern, found + pattern.size())) {
        std::string_view const before = text.substr(0, found);
        size_t openStart = found;
        size_t openEnd = 0;
        bool selfClosed = false;
        while (findOpenTag(before, scan, tag, openStart, openEnd, selfClosed)) {
            depth += !selfClosed;
            scan = openEnd + 1;
            openStart = found;
        }
        // A candidate cut off by this pattern may be completed before the next one. What lies before it is never looked at
        // again, so that the whole search takes one walk over the text.
        scan = openStart;
        if (depth == 0) {
            start = found;
            end = found + pattern.size() - 1;
            return true;
        }
        --depth;
    }
    return false;
}

} // namespace rkxml
