#include "misc/rk_portability.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

} // namespace

uint32_t rk_get_threadid()
{
    return static_cast<uint32_t>(syscall(SYS_gettid));
}

char* rk_strdup(char const* text)
{
    return text ? strdup(text) : nullptr;
}

int rk_stricmp(char const* text, char const* other)
{
    if (!text || !other)
        return (text != nullptr) - (other != nullptr);
    for (;; ++text, ++other) {
        int const difference = static_cast<unsigned char>(lower(*text)) - static_cast<unsigned char>(lower(*other));
        if (difference || !*text)
            return difference;
    }
}

int rk_strcpy(char* target, size_t length, char const* source)
{
    if (!target || !source || !length)
        return 0;
    strncpy(target, source, length - 1);
    target[length - 1] = 0;
    return 1;
}

char* rk_strlwr(char* text)
{
    for (char* c = text; c && *c; ++c)
        *c = lower(*c);
    return text;
}

char* rk_strupr(char* text)
{
    for (char* c = text; c && *c; ++c)
        *c = upper(*c);
    return text;
}

int rk_vscprintf(char const* format, va_list arguments)
{
    va_list copy;
    va_copy(copy, arguments);
    int const length = vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    return length;
}

int64_t rk_atoi64(char const* text)
{
    static_assert(sizeof(long long) == sizeof(int64_t), "the limits of strtoll are those of 64 bits");
    return text ? strtoll(text, nullptr, 10) : 0;
}
