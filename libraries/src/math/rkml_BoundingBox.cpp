#include "math/rkml_BoundingBox.h"

#include "math/rkml_CoordinateForms.h"
#include "streams/rkxml_DomIterator.h"

namespace rkml {

template <class T> unsigned int BoundingBox<T>::getTypeId() const
{
    return 601;
}

template <class T> rktl::String BoundingBox<T>::getTypeName() const
{
    return "rkml_BoundingBox";
}

template <class T> rktl::String BoundingBox<T>::toXML(char const* tag) const
{
    if (!tag)
        return {};
    return rktl::String("<") + tag + "><x>" + coordinateToText(x) + "</x><y>" + coordinateToText(y) + "</y><width>" +
        coordinateToText(width) + "</width><height>" + coordinateToText(height) + "</height></" + tag + ">";
}

template <class T> bool BoundingBox<T>::fromXML(char const* xml)
{
    rkxml::DomIterator element = rkxml::DomIterator::parse(xml);
    if (element.atEnd() || !element.hasChildren())
        return false;
    for (element = element.childrenBegin(); !element.atEnd(); element.nextSibling()) {
        rktl::String const name = element.getName();
        T* const field = name == "x" ? &x : name == "y" ? &y : name == "width" ? &width : name == "height" ? &height : nullptr;
        if (field)
            *field = coordinateFromText<T>(element.getValue());
    }
    return true;
}

template <class T> unsigned int BoundingBox<T>::getBinLength() const
{
    return 4 + 4 * sizeof(T);
}

template <class T> unsigned int BoundingBox<T>::toBin(unsigned char* out) const
{
    rksl::ByteWriter writer(out);
    writer.u32(sizeof(T));
    for (T const field : {x, y, width, height})
        writeCoordinate(writer, field);
    return writer.written();
}

template <class T> unsigned int BoundingBox<T>::fromBin(unsigned char const* in, unsigned int length)
{
    rksl::ByteReader reader(in, length);
    if (reader.u32() != sizeof(T))
        throw rktl::Exception("libraries/src/image/../math/rkml_BoundingBox", "rkml::BoundingBox",
            "fromBin( .. ) - size of value_type is incorrect");
    for (T* const field : {&x, &y, &width, &height})
        *field = readCoordinate<T>(reader);
    return reader.position();
}

template class BoundingBox<float>;
template class BoundingBox<int>;
template class BoundingBox<unsigned int>;
template class BoundingBox<double>;

} // namespace rkml
