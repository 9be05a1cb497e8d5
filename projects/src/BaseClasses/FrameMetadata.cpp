#include "BaseClasses/Frame.h"

#include <array>
#include <sstream>

namespace {

/// The words that the metadata schema knows for what an object is.
constexpr std::array<char const*, 4> schemaClasses = {"Animal", "Face", "Human", "Vehicle"};

char const* schemaClass(rktl::String const& name)
{
    for (char const* known : schemaClasses)
        if (name.iCompare(known) == 0)
            return known;
    return nullptr;
}

template <class Number>
void writeBox(std::ostream& out, Number left, Number top, Number right, Number bottom, Number centreX, Number centreY)
{
    out << "<BoundingBox left=\"" << left << "\" top=\"" << top << "\" right=\"" << right << "\" bottom=\"" << bottom
        << "\"/> <CenterOfGravity x=\"" << centreX << "\" y=\"" << centreY << "\"/>";
}

} // namespace

rktl::String Frame::createEmptyMetadata()
{
    return "<Frame UtcTimeMsec=\"0\"><Data></Data></Frame>";
}

void Frame::createFrameMetadata(rktl::TimeStamp const& time, ObjectMap const& objects, int width, int height, rktl::String& out)
{
    std::ostringstream text;
    text << "<Frame UtcTimeMsec=\"" << time.getSeconds() << time.toString("%s") << "\"><Data>";
    for (auto const& [id, object] : objects) {
        rkml::BoundingBox<int> newest;
        object.newest(newest);
        rktl::String box, classes;
        createBBoxMetadata(newest, width, height, box);
        createClassXML(object, classes);
        text << "<Object ObjectId=\"" << object.getId() << "\"><Appearance> <Shape>" << box << "</Shape> " << classes
             << "</Appearance> </Object> ";
    }
    text << "</Data></Frame>";
    out = text.str();
}

void Frame::createBBoxMetadata(rkml::BoundingBox<int> const& box, int width, int height, rktl::String& out)
{
    std::ostringstream text;
    if (width <= 0 || height <= 0) {
        writeBox(text, box.x, box.y, box.x + box.width, box.y + box.height, box.x + box.width / 2, box.y + box.height / 2);
    } else {
        rkml::BoundingBox<float> const share = box.normalize<float>(width, height);
        float const left = 2.0f * share.x - 1.0f;
        float const top = 2.0f * share.y - 1.0f;
        float const boxWidth = 2.0f * share.width;
        float const boxHeight = 2.0f * share.height;
        writeBox(text, left, top, left + boxWidth, top + boxHeight, left + 0.5f * boxWidth, top + 0.5f * boxHeight);
    }
    out = text.str();
}

void Frame::createClassXML(Object const& object, rktl::String& out)
{
    out.clear();
    if (object.getClassConfidences().empty())
        return;
    std::ostringstream text, others;
    text << "<Class>";
    for (auto const& [name, unused] : object.getClassConfidences()) {
        double const confidence = object.getClassConfidence(name);
        char const* const known = schemaClass(name);
        text << "<ClassCandidate> <Type>" << (known ? known : "Other") << "</Type> <Likelihood>" << confidence
             << "</Likelihood> </ClassCandidate> ";
        if (!known)
            others << "<OtherTypes><Type>" << name << "</Type><Likelihood>" << confidence << "</Likelihood></OtherTypes>";
    }
    if (!others.str().empty())
        text << "<Extension>" << others.str() << "</Extension>";
    text << "</Class>";
    out = text.str();
}
