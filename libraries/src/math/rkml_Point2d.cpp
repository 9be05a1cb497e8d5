#include "math/rkml_Point2d.h"

#include "math/rkml_CoordinateForms.h"
#include "streams/rkxml_DomIterator.h"

namespace rkml {

template <class T> unsigned int Point2D<T>::getTypeId() const
{
    return 602;
}

template <class T> rktl::String Point2D<T>::getTypeName() const
{
    return "rkml_Point2D";
}

template <class T> rktl::String Point2D<T>::toXML(char const* tag) const
{
    if (!tag)
        return {};
    return rktl::String("<") + tag + " x=\"" + coordinateToText(x) + "\" y=\"" + coordinateToText(y) + "\" />";
}

template <class T> bool Point2D<T>::fromXML(char const* xml)
{
    rkxml::DomIterator const element = rkxml::DomIterator::parse(xml);
    if (element.atEnd() || !element.hasAttribute("x") || !element.hasAttribute("y"))
        return false;
    x = coordinateFromText<T>(element.getAttribute("x"));
    y = coordinateFromText<T>(element.getAttribute("y"));
    return true;
}

template <class T> unsigned int Point2D<T>::getBinLength() const
{
    return 4 + 2 * sizeof(T);
}

template <class T> unsigned int Point2D<T>::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.u32(sizeof(T));
    writeCoordinate(writer, x);
    writeCoordinate(writer, y);
    return writer.written();
}

template <class T> unsigned int Point2D<T>::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    if (reader.u32() != sizeof(T))
        throw rktl::Exception(
            "libraries/src/image/../math/rkml_Point2d", "rkml::Point2D", "fromBin( .. ) - size of value_type is incorrect");
    x = readCoordinate<T>(reader);
    y = readCoordinate<T>(reader);
    return reader.position();
}

template class Point2D<float>;
template class Point2D<int>;
template class Point2D<unsigned int>;
template class Point2D<double>;

} // namespace rkml
