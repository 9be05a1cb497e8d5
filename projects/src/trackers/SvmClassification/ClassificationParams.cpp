#include "trackers/SvmClassification/ClassificationParams.h"

#include "streams/rkxml_DomIterator.h"

#include <cstring>

namespace {

/// A set of texts stands in the children of an element.
rksl::Set<rktl::String> readNames(rkxml::DomIterator const& element)
{
    rksl::Set<rktl::String> names;
    names.fromXML(element.toXML().c_str());
    return names;
}

/// Copies the frames of one stream behind those of another.
void append(rksl::MemIOStream const& frames, rksl::MemIOStream& stream)
{
    unsigned char const* bytes = nullptr;
    unsigned char* room = nullptr;
    unsigned int length = 0;
    frames.getBuffer(bytes, length);
    stream.getWriteBuffer(room, length);
    if (room && length)
        std::memcpy(room, bytes, length);
}

} // namespace

ClassificationParams::ClassificationParams(rktl::String const& name, bool enabled, Models const& models)
    : ProcessParams(name)
    , mModels(models)
{
    setEnabled(enabled);
}

ClassificationParams::Names ClassificationParams::getUnknownModels() const
{
    Names names;
    for (auto const& [name, model] : mModels)
        if (!model.isValid())
            names.insert(name);
    return names;
}

rksl::MemIOStream ClassificationParams::binSerialize() const
{
    rksl::MemIOStream stream;
    rksl::MemIOStream received = ProcessParams::binSerialize();
    if (mExtended && received.size() == 0)
        return stream;
    rksl::MemIOStream fields;
    fields << mModels << mRequiredClasses;
    stream.write(fields);
    if (mExtended) {
        received.skip();
        append(received, stream);
    }
    return stream;
}

bool ClassificationParams::binUnserialize(rksl::MemIOStream const& stream)
{
    try {
        rksl::MemIOStream fields;
        Models models;
        Names classes;
        stream.peek(fields);
        fields >> models >> classes;
        mModels = models;
        mRequiredClasses = classes;
        mExtended = stream.count() > 1;
        return true;
    } catch (std::exception const&) {
        return false;
    }
}

rktl::String ClassificationParams::xmlSerialize() const
{
    return {};
}

bool ClassificationParams::xmlUnserialize(rktl::String const& xml)
{
    rkxml::DomIterator cursor = rkxml::DomIterator::parse("<TempTag>" + xml + "</TempTag>");
    if (cursor.atEnd() || !cursor.hasChildren())
        return false;
    mExtended = false;
    mModels.clear();
    mRequiredClasses.clear();
    Names paths;
    for (cursor = cursor.childrenBegin(); !cursor.atEnd(); cursor.nextSibling()) {
        if (cursor.getName() == "ModelPaths") {
            paths = readNames(cursor);
        } else if (cursor.getName() == "Models") {
            for (rkxml::DomIterator child = cursor.childrenBegin(); !child.atEnd(); child.nextSibling()) {
                ClassificationModel model;
                if (model.fromXML(child.toXML().c_str()))
                    mModels[child.getAttribute("name")] = model;
            }
        } else if (cursor.getName() == "RequiredClasses") {
            mRequiredClasses = readNames(cursor);
        } else {
            mExtended = true;
        }
    }
    for (rktl::String const& path : paths)
        mModels.try_emplace(path);
    return true;
}

rktl::String ClassificationParams::classXmlSerialize() const
{
    rktl::String xml;
    Names const unknown = getUnknownModels();
    if (!mExtended) {
        xml += "<ModelPaths/>\n";
    } else if (!unknown.empty() || mModels.empty()) {
        xml += unknown.toXML("ModelPaths", "path");
    } else {
        xml += "<Models>";
        for (auto const& [name, model] : mModels)
            xml += model.toXML("model");
        xml += "</Models>\n";
    }
    if (!mRequiredClasses.empty())
        xml += mRequiredClasses.toXML("RequiredClasses", "class");
    return xml;
}
