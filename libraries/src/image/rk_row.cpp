#include "image/rk_row.h"

#include "image/rk_row_forms.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

bool can_run_avx2()
{
#ifdef __x86_64__
    return rk_row_avx2 && __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi");
#else
    return false;
#endif
}

struct Forms {
    rk_row_kernels const* list[4] = {}; // slowest first, ended by null
    rk_row_kernels const* fastest = nullptr;
    rk_row_kernels const* used = nullptr;

    Forms()
    {
        int count = 0;
        list[count++] = &rk_row_plain;
        list[count++] = &rk_row_portable;
        if (can_run_avx2())
            list[count++] = rk_row_avx2;
        fastest = used = list[count - 1];
        char const* const wanted = getenv("CONTRAFLOW_KERNELS");
        if (wanted && *wanted && !use(wanted))
            printf("CONTRAFLOW_KERNELS: no form \"%s\" here, taking \"%s\".\n", wanted, used->name);
    }

    bool use(char const* name)
    {
        for (rk_row_kernels const* const* form = list; *form; ++form)
            if (strcmp((*form)->name, name) == 0) {
                used = *form;
                return true;
            }
        return false;
    }
};

Forms& forms()
{
    static Forms instance;
    return instance;
}

} // namespace

rk_row_kernels const& rk_row()
{
    return *forms().used;
}

bool rk_row_is_plain()
{
    return forms().used == &rk_row_plain;
}

int rk_row_use(char const* name)
{
    if (name)
        return forms().use(name);
    forms().used = forms().fastest;
    return 1;
}

rk_row_kernels const* const* rk_row_forms()
{
    return forms().list;
}
