#include <gtest/gtest.h>

#include "plugin/rkpl_PluginPtr.h"
#include "plugin/rkpl_Schemes.h"

namespace {

struct Painter : rkpl::Plugin {
    static constexpr char const* identifier = "{0000aaaa-1111-2222-3333-444455556666}";
    virtual int colour() = 0;
};

/// Two interfaces in one object; counts how it went.
struct Both : rkpl::Schemes, Painter {
    int& released;
    explicit Both(int& count)
        : released(count)
    {
    }
    bool supports(char const* wanted, rkpl::Plugin** result) override
    {
        return rkpl::Plugin::answers<rkpl::Schemes>(this, wanted, result) || rkpl::Plugin::answers<Painter>(this, wanted, result);
    }
    void release() override
    {
        ++released;
        delete this;
    }
    void getSchemes(rksl::StringMap<rktl::Integer>& schemes) override { schemes["both"] = 1; }
    int colour() override { return 7; }
};

TEST(PluginPtr, GivesOtherInterfacesThatShareTheCountAndReleasesOnce)
{
    int released = 0;
    rkpl::PluginPtr<Painter> painter;
    {
        rkpl::PluginPtr<rkpl::Schemes> const schemes(new Both(released));
        EXPECT_TRUE(schemes.supports("{0000AAAA-1111-2222-3333-444455556666}", painter)); // letter case is of no account
        EXPECT_FALSE(schemes.supports("{0000aaaa}", painter));
        EXPECT_FALSE(schemes.supports(nullptr, painter));
        ASSERT_TRUE(painter); // as before
    }
    EXPECT_EQ(0, released);
    EXPECT_EQ(7, painter->colour());

    rkpl::PluginPtr<rkpl::Schemes> back;
    ASSERT_TRUE(painter.supports("{d59fed8d-450f-41f4-8b0e-df1989af5fa9}", back));
    painter = rkpl::PluginPtr<Painter>();
    EXPECT_EQ(0, released);
    rksl::StringMap<rktl::Integer> names;
    back->getSchemes(names);
    EXPECT_EQ(1u, names.count("both"));
    back = rkpl::PluginPtr<rkpl::Schemes>();
    EXPECT_EQ(1, released);
    EXPECT_FALSE(back.supports(Painter::identifier, painter)); // null
}

} // namespace
