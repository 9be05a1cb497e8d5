#include "application/CommandLineArgs.h"

#include <iterator>

namespace {

bool isMarked(rktl::String const& argument)
{
    return argument.starts_with('-') || argument.starts_with('/');
}

} // namespace

CommandLineArgs::CommandLineArgs(int argc, char** argv)
{
    if (argc > 0)
        mProgramName = argv[0];
    rksl::List<rktl::String> arguments;
    for (int i = 1; i < argc; ++i)
        arguments.push_back(argv[i]);
    init(arguments);
}

void CommandLineArgs::init(rksl::List<rktl::String> const& arguments)
{
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (argument->empty())
            continue;
        if (!isMarked(*argument)) {
            mArguments[*argument] = "";
            continue;
        }
        rktl::String const key(argument->substr(1));
        auto const next = std::next(argument);
        bool const hasValue = next != arguments.end() && !isMarked(*next);
        mArguments[key] = hasValue ? *next : rktl::String();
        if (hasValue)
            argument = next;
    }
}

rktl::String CommandLineArgs::value(rktl::String const& key) const
{
    auto const entry = mArguments.find(key);
    return entry == mArguments.end() ? rktl::String() : entry->second;
}
