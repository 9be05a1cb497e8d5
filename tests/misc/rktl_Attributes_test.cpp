#include <gtest/gtest.h>

#include "misc/rktl_Attributes.h"

using rktl::Attributes;
using rktl::String;

namespace {

std::string textOf(rksl::StringMap<String> const& map)
{
    std::string text;
    for (auto const& [key, value] : map)
        text += key + "=" + value + ";";
    return text;
}

} // namespace

TEST(Attributes, EmptyIsMissing)
{
    Attributes attributes;
    attributes.setAttribute("a", "1");
    attributes.setAttribute("b", "2");
    attributes.setAttribute("a", "");
    EXPECT_EQ("b=2;", textOf(attributes.getAttributes()));

    rksl::StringMap<String> update;
    update["b"] = "";
    update["c"] = "3";
    attributes.updateAttributes(update);
    EXPECT_EQ("c=3;", textOf(attributes.getAttributes()));
}

TEST(Attributes, NamespacesLiveInTheKeys)
{
    Attributes attributes;
    rksl::StringMap<String> values;
    values["x"] = "1";
    values["y"] = "";
    attributes.setAttribute("list", "b|z|b");
    attributes.addNamespaceValues("m", values, "list");
    attributes.addNamespaceValues("b", values, "list");
    attributes.addNamespaceValues("unlisted", values, "");
    attributes.setAttribute("m", "no namespace");
    attributes.setAttribute("mm:x", "another");
    EXPECT_EQ("b:x=1;b:y=;list=b|m|z;m=no namespace;m:x=1;m:y=;mm:x=another;unlisted:x=1;unlisted:y=;",
        textOf(attributes.getAttributes()));

    rksl::Set<String> names{"before"};
    attributes.getNamespaceNames("list", names);
    EXPECT_EQ("b,m,z", String::join(names, ","));

    rksl::StringMap<String> found;
    found["before"] = "1";
    attributes.getNamespaceValues("m", found);
    EXPECT_EQ("x=1;y=;", textOf(found));
}
