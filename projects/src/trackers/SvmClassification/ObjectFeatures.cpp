#include "trackers/SvmClassification/ObjectFeatures.h"

#include "BaseClasses/Object.h"
#include "image/rk_sobel.h"
#include "math/rk_fast.h"
#include "math/rkml_ClipBox.h"
#include "misc/rktl_Exception.h"
#include "streams/rksl_ByteReader.h"
#include "streams/rksl_ByteWriter.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int margin = 3;            // pixels around the newest box
constexpr int leastExtent = 8;       // pixels
constexpr uint32_t weakLimit = 199;  // highest |dx| + |dy| that has no direction worth counting
constexpr float degrees = 57.29578f; // in a radian

rktl::Exception failure(char const* message)
{
    return rktl::Exception("projects/src/trackers/SvmClassification/ObjectFeatures", "ObjectFeatures", message);
}

bool touchesEdge(rkml::BoundingBox<int> const& box, rk_image const& image)
{
    return box.x <= 0 || box.y <= 0 || static_cast<uint32_t>(box.x + box.width) >= image.width ||
        static_cast<uint32_t>(box.y + box.height) >= image.height;
}

bool crop(rkil::FlatImage<1> const& source, rkml::BoundingBox<int> const& box, rkil::FlatImage<1>& target)
{
    return target.resize(static_cast<unsigned int>(box.width), static_cast<unsigned int>(box.height)) &&
        rk_crop_image(source.getImage(), static_cast<uint32_t>(box.x), static_cast<uint32_t>(box.y), target.getImage());
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
    rkil::FlatImage<1> grayBox, maskBox;
    return crop(gray, box, grayBox) && crop(mask, box, maskBox) && generateFeatures(grayBox, maskBox);
}

bool ObjectFeatures::generateFeatures(rkil::FlatImage<1> const& gray, rkil::FlatImage<1> const& mask)
{
    orientHist.fill(0);
    if (gray.empty() || gray.getWidth() != mask.getWidth() || gray.getHeight() != mask.getHeight())
        return false;
    size_t const pixels = size_t(gray.getWidth()) * gray.getHeight();
    std::vector<rk_magnitude> gradient(pixels);
    if (!rk_sobel_image(gray.getImage(), gradient.data()))
        return true;
    unsigned char const* const inside = mask.getImage()->data;
    for (size_t i = 0; i < pixels; ++i)
        if (inside[i])
            addDirection(static_cast<uint32_t>(std::abs(gradient[i].dx)), static_cast<uint32_t>(std::abs(gradient[i].dy)));
    return true;
}

/// Shares 10 out between the two bins whose centres lie on either side of the direction.
void ObjectFeatures::addDirection(uint32_t dx, uint32_t dy)
{
    if (dx + dy <= weakLimit) {
        ++orientHist[0];
        return;
    }
    float const angle = rk_fast_atan_quad1(dx, dy) * degrees;
    int32_t const bin = static_cast<int32_t>(angle + 5.0f) / 10;
    auto const second = static_cast<int32_t>(std::round(angle - static_cast<float>(10 * bin - 5)));
    orientHist[static_cast<size_t>(bin + 1)] += 10 - second;
    orientHist[static_cast<size_t>(bin + 2)] += second;
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
