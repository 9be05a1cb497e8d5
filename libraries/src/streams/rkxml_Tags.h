#pragma once

#include <cstddef>
#include <string_view>

/// Finders of tags in plain text, without a parser.
namespace rkxml {

/// The next open tag of that name at or behind from; tags of longer names are passed over.
/// start, end: positions of its "<" and its ">". selfClosed: it ends in "/>".
/// False when there is none that is complete; start is then the last candidate looked at, if there was one.
bool findOpenTag(std::string_view text, size_t from, std::string_view tag, size_t& start, size_t& end, bool& selfClosed);

/// The close tag that belongs to an open tag which ends before from; elements of the same name in between are passed over.
/// start, end: positions of its "<" and its ">". False when there is none.
bool findCloseTag(std::string_view text, size_t from, std::string_view tag, size_t& start, size_t& end);

} // namespace rkxml
