#include "math/rkml_Polygon2d.h"

#include "math/rkml_CoordinateForms.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <limits>

namespace rkml {

namespace {

constexpr char const* SOURCE = "libraries/src/math/rkml_Polygon2d";

} // namespace

template <class T> bool Polygon2D<T>::contains(T px, T py) const
{
    requireArea("contains() - invalid polygon");
    double const x = px, y = py;
    bool inside = false;
    Point2D<T> const* from = &mPoints.back();
    for (Point2D<T> const& to : mPoints) {
        double const x1 = from->x, y1 = from->y, x2 = to.x, y2 = to.y;
        from = &to;
        if (!((y1 <= y && y < y2) || (y2 <= y && y < y1)))
            continue;
        double const crossing = x1 + ((y - y1) / (y2 - y1)) * (x2 - x1);
        if (x == crossing)
            return true;
        if (x < crossing)
            inside = !inside;
    }
    return inside;
}

template <class T> void Polygon2D<T>::getSegments(std::vector<LineSegment2D<T>>& list) const
{
    requireArea("getSegments() - invalid polygon");
    list.clear();
    list.reserve(mPoints.size());
    for (size_t i = 0; i < mPoints.size(); ++i)
        list.emplace_back(mPoints[i], mPoints[(i + 1) % mPoints.size()]);
}

template <class T> BoundingBox<T> Polygon2D<T>::boundingbox() const
{
    requireArea("boundingbox() - invalid polygon");
    T left = mPoints.front().x, right = left, top = mPoints.front().y, bottom = top;
    for (Point2D<T> const& point : mPoints) {
        left = std::min(left, point.x);
        right = std::max(right, point.x);
        top = std::min(top, point.y);
        bottom = std::max(bottom, point.y);
    }
    // A width beyond the range of T is held to it.
    return {left, top, coordinateCast<T>(static_cast<double>(right) - static_cast<double>(left)),
        coordinateCast<T>(static_cast<double>(bottom) - static_cast<double>(top))};
}

template <class T> void Polygon2D<T>::requireArea(char const* failure) const
{
    if (mPoints.size() < 3)
        throw rktl::Exception(SOURCE, "rkml::Polygon2D", failure);
}

template <class T> unsigned int Polygon2D<T>::getTypeId() const
{
    return 603;
}

template <class T> rktl::String Polygon2D<T>::getTypeName() const
{
    return "rkml_Polygon";
}

template <class T> rktl::String Polygon2D<T>::toXML(char const* tag) const
{
    return toXML(tag, "rkml_Point2D");
}

template <class T> rktl::String Polygon2D<T>::toXML(char const* tag, char const* itemTag) const
{
    if (!tag)
        return {};
    rktl::String xml = rktl::String("<") + tag + ">";
    for (Point2D<T> const& point : mPoints)
        xml += point.toXML(itemTag);
    return xml + "</" + tag + ">";
}

template <class T> bool Polygon2D<T>::fromXML(char const* xml)
{
    rkxml::DomIterator element = rkxml::DomIterator::parse(xml);
    if (element.atEnd())
        return false;
    mPoints.clear();
    if (!element.hasChildren())
        return true;
    for (element = element.childrenBegin(); !element.atEnd(); element.nextSibling()) {
        Point2D<T> point;
        if (point.fromXML(element.toXML().c_str()))
            mPoints.push_back(point);
    }
    return true;
}

template <class T> unsigned int Polygon2D<T>::getBinLength() const
{
    return 6 + static_cast<unsigned int>(mPoints.size()) * Point2D<T>().getBinLength();
}

template <class T> unsigned int Polygon2D<T>::toBin(unsigned char* out) const
{
    if (mPoints.size() > std::numeric_limits<uint16_t>::max())
        throw rktl::Exception(SOURCE, "rkml::Polygon2D", "toBin( .. ) - too many points");
    rksl::ByteWriter writer(out);
    writer.u16(sizeof(T));
    writer.u16(static_cast<uint16_t>(mPoints.size()));
    for (Point2D<T> const& point : mPoints)
        writer.record(point);
    return writer.written();
}

template <class T> unsigned int Polygon2D<T>::fromBin(unsigned char const* in, unsigned int length)
{
    mPoints.clear();
    rksl::ByteReader reader(in, length);
    if (reader.u16() != sizeof(T))
        throw rktl::Exception(SOURCE, "rkml::Polygon2D", "fromBin( .. ) - size of value_type is incorrect");
    for (unsigned int left = reader.u16(); left != 0; --left) {
        Point2D<T> point;
        reader.record(point);
        mPoints.push_back(point);
    }
    return reader.position();
}

template <class T> typename Polygon2D<T>::const_iterator& Polygon2D<T>::const_iterator::operator++()
{
    point("operator++() - iterator pointing to an invalid polygon");
    mIndex = (mIndex + 1) % mPolygon->mPoints.size();
    return *this;
}

template <class T> Point2D<T> const& Polygon2D<T>::const_iterator::point(char const* failure) const
{
    if (!mPolygon || mIndex >= mPolygon->mPoints.size())
        throw rktl::Exception(SOURCE, "rkml::Polygon2D::const_iterator", failure);
    return mPolygon->mPoints[mIndex];
}

template class Polygon2D<float>;
template class Polygon2D<int>;
template class Polygon2D<unsigned int>;
template class Polygon2D<double>;

} // namespace rkml
