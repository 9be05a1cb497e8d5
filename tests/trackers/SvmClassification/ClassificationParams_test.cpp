#include "trackers/SvmClassification/ClassificationParams.h"

#include "classified_scene.h"

#include <gtest/gtest.h>

TEST(ClassificationModel, TravelsInBothForms)
{
    ClassificationModel const model = steadfast("A<B", 2);
    support::Bytes const bytes = support::toBin(model);
    ClassificationModel fromBytes, fromXml;
    support::fromBin(fromBytes, bytes);
    EXPECT_EQ(bytes, support::toBin(fromBytes));
    ASSERT_TRUE(fromXml.fromXML(model.toXML("model").c_str()));
    EXPECT_EQ(bytes, support::toBin(fromXml));
    support::expectEveryPrefixThrows<ClassificationModel>(bytes);

    ClassificationModel empty("SVM");
    EXPECT_EQ("<model name=\"\" type=\"SVM\" />", empty.toXML("model"));
    EXPECT_TRUE(fromXml.fromXML("<m name=\"x\" type=\"y\" />"));
    EXPECT_FALSE(fromXml.isValid());
    EXPECT_FALSE(fromXml.fromXML("<m name=\"other\">AAAA</m>")) << "no type";
    EXPECT_EQ("x", fromXml.getName()) << "as before";
    for (char const* bad : {"AAAA", "?", "AAAAAAAA////"}) {
        EXPECT_TRUE(fromXml.fromXML(("<m name=\"x\" type=\"y\">" + std::string(bad) + "</m>").c_str()));
        EXPECT_FALSE(fromXml.isValid()) << bad << ": no chain of frames";
    }
}

TEST(ClassificationParams, CarryModelsAndWhatASubclassAdded)
{
    ClassificationParams params("SvmClassification", true);
    params.setModel("/a.model", ClassificationModel());
    params.setModel("ready", steadfast("Human", 2));
    params.setRequiredClasses({"Human", "Vehicle"});
    EXPECT_EQ("", params.xmlSerialize());

    ClassificationParams again;
    ASSERT_TRUE(again.assign(ProcessParams(params)));
    EXPECT_EQ(2u, again.getModels().size());
    EXPECT_EQ((ClassificationParams::Names{"/a.model"}), again.getUnknownModels());
    EXPECT_EQ((ClassificationParams::Names{"Human", "Vehicle"}), again.getRequiredClasses());
    EXPECT_EQ("<ModelPaths/>\n<RequiredClasses><class>Human</class><class>Vehicle</class></RequiredClasses>\n",
        again.classXmlSerialize());
    EXPECT_FALSE(again.binUnserialize(rksl::MemIOStream()));
    rksl::MemIOStream other;
    other << rktl::Integer(3);
    EXPECT_FALSE(again.binUnserialize(other));
    EXPECT_EQ(2u, again.getModels().size()) << "as before";
}

TEST(ClassificationParams, KeepTheItemsBehindTheirOwn)
{
    ClassificationParams own("SvmClassification", true);
    own.setModel("/a.model", ClassificationModel());
    rksl::MemIOStream extended = own.binSerialize();
    extended << rktl::Integer(77); // of a subclass
    support::Bytes record = {1};
    for (auto const& part : {support::toBin(rktl::String()), support::toBin(rktl::String("t")), support::toBin(rktl::String("t")),
             support::toBin(extended), support::toBin(rktl::String())})
        record.insert(record.end(), part.begin(), part.end());
    ClassificationParams params;
    ASSERT_EQ(record.size(), support::fromBin(params, record));
    EXPECT_EQ("<ModelPaths><path>/a.model</path></ModelPaths>\n", params.classXmlSerialize());
    params.removeModel("/a.model");
    rksl::MemIOStream written = params.binSerialize();
    ASSERT_EQ(2u, written.count());
    written.skip();
    rktl::Integer number;
    written >> number;
    EXPECT_EQ(77, number);
}

TEST(ClassificationParams, ReadXml)
{
    ClassificationParams params;
    rktl::String const model = steadfast("Human", 2).toXML("model");
    ASSERT_TRUE(params.xmlUnserialize("<ModelPaths><path>/a</path><path>Human</path></ModelPaths><Models>" + model +
        "</Models><RequiredClasses><class>Face</class></RequiredClasses>"));
    EXPECT_EQ(2u, params.getModels().size());
    EXPECT_TRUE(params.getModels()["Human"].isValid()) << "a path never replaces a model";
    EXPECT_EQ((ClassificationParams::Names{"Face"}), params.getRequiredClasses());
    ASSERT_TRUE(params.xmlUnserialize("<Other/><Models>" + model + "</Models>"));
    EXPECT_TRUE(params.getRequiredClasses().empty()) << "cleared";
    EXPECT_EQ("<Models>" + model + "</Models>\n", params.classXmlSerialize());
    EXPECT_EQ(0u, params.binSerialize().count()) << "extended, but nothing in binary came";
    EXPECT_FALSE(params.xmlUnserialize(""));
    EXPECT_FALSE(params.xmlUnserialize("<a"));
}
