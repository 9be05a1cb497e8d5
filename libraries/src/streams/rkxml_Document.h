#pragma once

#include "misc/rktl_String.h"

/// The document reader as a whole. Its bodies come with the body of rkxml::DomIterator that a program links.
namespace rkxml {

/// To be called once, before the first and after the last use of the reader, by one thread.
void initialize();
void uninitialize();

/// The open tag and the close tag of an element of that name; "" for null. Over the null cursor both give "".
rktl::String open(char const* tag);
rktl::String close(char const* tag);

} // namespace rkxml
