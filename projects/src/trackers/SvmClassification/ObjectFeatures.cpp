#include "trackers/SvmClassification/ObjectFeatures.h"

#include "BaseClasses/Object.h"
#include "math/rkml_ClipBox.h"
#include "misc/rktl_Exception.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"
#include "trackers/SvmClassification/DirectionHistogram.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int margin = 3;      // pixels around the newest box
constexpr int leastExtent = 8; // pixels

rktl::Exception failure(char const* message)
{
    return rktl::Exception("projects/src/trackers/SvmClassification/ObjectFeatures", "ObjectFeatures", message);
}

bool touchesEdge(rkml::BoundingBox<int> const& box, rk_image const& image)
{
    return box.x <= 0 || box.y <= 0 || static_cast<uint32_t>(box.x + box.width) >= image.width ||
        static_cast<uint32_t>(box.y + box.height) >= image.height;
}

bool contains(rkil::FlatImage<1> const& image, rkml::BoundingBox<int> const& box)
{
    return static_cast<uint32_t>(box.x + box.width) <= image.getWidth() &&
        static_cast<uint32_t>(box.y + box.height) <= image.getHeight();
}

/// The image from a pixel on.
DirectionHistogram::Plane planeOf(rkil::FlatImage<1> const& image, int x, int y)
{
    size_t const stride = image.getWidth();
    return {image.getImage()->data + static_cast<size_t>(y) * stride + static_cast<size_t>(x), stride};
}

} // namespace

int32_t ObjectFeatures::getFeatureVal(int32_t id) const
{
    if (id > numFeatures) {
        std::printf("featureID:%d exceeds the num of features:%d\n", id, numFeatures);
        std::exit(1);
    }
    int32_t const* const slots[] = {&feature1, &feature2, &feature3, &feature4, &feature5, &feature6, &feature7, &feature8, &age};
    if (id >= 1 && id <= 9)
        return *slots[id - 1];
    if (id >= 10 && id <= 57)
        return orientHist[static_cast<size_t>(id - 10)];
    int32_t const* const last[] = {&feature58, &feature59, &feature60, &feature61};
    return id >= 58 && id <= highestFeature ? *last[id - 58] : -1;
}

bool ObjectFeatures::setFeatures(
    rkil::FlatImage<1> const& gray, rkil::FlatImage<1> const& mask, Object const& object, bool allowBorder)
{
    rkml::BoundingBox<int> box;
    if (!object.newest(box))
        return false;
    box = rkml::clipBox(
        {box.x - margin, box.y - margin, box.width + 2 * margin, box.height + 2 * margin}, mask.getWidth(), mask.getHeight());
    if (!allowBorder && touchesEdge(box, *mask.getImage()))
        return false;
    if (box.width < leastExtent || box.height < leastExtent || object.getMergeListSize() != 0)
        return false;
    objectId = object.getId();
    age = static_cast<int32_t>(static_cast<uint32_t>(object.age().toMilliseconds()) / 30);
    if (!contains(gray, box))
        return false;
    orientHist.fill(0);
    DirectionHistogram(
        planeOf(gray, box.x, box.y), planeOf(mask, box.x, box.y), static_cast<size_t>(box.width), static_cast<size_t>(box.height))
        .addTo(orientHist.data());
    return true;
}

bool ObjectFeatures::generateFeatures(rkil::FlatImage<1> const& gray, rkil::FlatImage<1> const& mask)
{
    orientHist.fill(0);
    if (gray.empty() || gray.getWidth() != mask.getWidth() || gray.getHeight() != mask.getHeight())
        return false;
    if (gray.getWidth() >= 3 && gray.getHeight() >= 3)
        DirectionHistogram(planeOf(gray, 0, 0), planeOf(mask, 0, 0), gray.getWidth(), gray.getHeight()).addTo(orientHist.data());
    return true;
}

// ---- Stored

template <class Record, class Visitor> void ObjectFeatures::visitMembers(Record& record, Visitor visit)
{
    for (auto* member : {&record.feature1, &record.feature2, &record.feature3, &record.feature4, &record.feature5,
             &record.feature6, &record.feature7, &record.feature8, &record.reserved, &record.age})
        visit(*member);
    for (auto& counter : record.orientHist)
        visit(counter);
    visit(record.spare);
    visit(record.objectId);
    for (auto* member : {&record.numFeatures, &record.feature59, &record.feature60, &record.feature61, &record.feature58})
        visit(*member);
}

rktl::String ObjectFeatures::getTypeName() const
{
    return "objectFeatures";
}

rktl::String ObjectFeatures::toXML(char const*) const
{
    throw failure("toXML() - not implemented");
}

bool ObjectFeatures::fromXML(char const*)
{
    throw failure("fromXML() - not implemented");
}

unsigned int ObjectFeatures::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    visitMembers(*this, [&writer](auto const& member) { writer.u32(static_cast<uint32_t>(member)); });
    return writer.written();
}

unsigned int ObjectFeatures::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    ObjectFeatures read;
    visitMembers(
        read, [&reader](auto& member) { member = static_cast<std::remove_reference_t<decltype(member)>>(reader.u32()); });
    if (read.numFeatures < highestFeature)
        rksl::ByteReader::fail();
    *this = read;
    return reader.position();
}
