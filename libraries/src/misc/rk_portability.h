#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

/// What differs between C libraries, under one name each. Nothing in here throws or logs.

/// The kernel's number of the calling thread, as system tools show it.
uint32_t rk_get_threadid();

/// A copy that the caller releases with free(); null for null or when memory is short.
char* rk_strdup(char const* text);

/// Below 0, 0 or above 0, ignoring the case of the letters A to Z. Null stands before every text.
int rk_stricmp(char const* text, char const* other);

/// Copies at most length - 1 characters; the last of the length bytes is always NUL. 0 when there is no room at all or an
/// argument is null.
int rk_strcpy(char* target, size_t length, char const* source);

/// Change the letters A to Z in place and return their argument.
char* rk_strlwr(char* text);
char* rk_strupr(char* text);

/// Characters that the formatted text would have, without its NUL; negative for a bad format. arguments is left usable.
#ifdef __GNUC__
__attribute__((format(printf, 1, 0)))
#endif
int rk_vscprintf(char const* format, va_list arguments);

/// The signed decimal number that text begins with, behind blanks; 0 for none or null; the nearest limit when out of range.
int64_t rk_atoi64(char const* text);
