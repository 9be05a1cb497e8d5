#pragma once

#include "misc/rktl_String.h"

/// Base64 with the alphabet of RFC 4648 and "=" padding. No line breaks are written, and none are read.
namespace rkcl::base64 {

/// Characters that n bytes become.
unsigned int encodeLength(unsigned int n);

/// Bytes that n characters become at most; 0 when n is no multiple of 4.
unsigned int decodeSize(unsigned int n);

/// target: room for encodeLength(n) characters; no NUL is written. Returns the characters written, 0 for a null pointer.
unsigned int encode(char* target, void const* source, unsigned int n);

/// "" for a null pointer.
rktl::String encode(void const* source, unsigned int n);

/// target: room for decodeSize of the text's length. Returns the bytes written, which leave out the padding: 0 for a null
/// pointer and for a text that is no Base64 throughout; what target then holds means nothing.
unsigned int decode(void* target, char const* text, unsigned int n);
unsigned int decode(void* target, rktl::String const& text);

} // namespace rkcl::base64
