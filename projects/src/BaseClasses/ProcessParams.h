#pragma once

#include "misc/rktl_String.h"
#include "streams/rksl_MemIOStream.h"
#include "streams/rksl_Serializable.h"

/// Parameters of a stage: whether it runs, what it is called, and the fields of a subclass in binary and XML form. The base
/// alone carries the fields of a subclass that it does not know, so an unknown stage's parameters survive a round trip.
///
/// Binary form: enabled (1 byte), mode, type, name, the subclass's fields as a stream, the same as XML text.
/// XML form: <type enabled="true|false" name="..." mode="...">fields</type>; name only when it differs from the type, mode
/// only when it is not empty.
class ProcessParams : public rksl::Serializable {
public:
    ProcessParams() = default;

    /// type is the name too.
    explicit ProcessParams(rktl::String const& type);

    /// A copy takes the subclass's fields as the other's binSerialize and xmlSerialize give them: a list of ProcessParams
    /// loses nothing.
    ProcessParams(ProcessParams const& other);
    ProcessParams& operator=(ProcessParams const& other);

    bool isEnabled() const { return mEnabled; }
    void setEnabled(bool enabled) { mEnabled = enabled; }
    rktl::String const& getMode() const { return mMode; }
    void setMode(rktl::String const& mode) { mMode = mode; }
    rktl::String const& getType() const { return mType; }
    void setType(rktl::String const& type) { mType = type; }
    rktl::String const& getName() const { return mName; }
    void setName(rktl::String const& name) { mName = name; }

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;

    /// The element is called by the type, whatever the tag; a null tag gives "".
    rktl::String toXML(char const* tag) const override;
    rktl::String toXML() const override;

    /// False, and as before, when the text is no element; otherwise what xmlUnserialize says of the children.
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;

    /// The binary fields are preferred; a subclass that refuses them is given the XML text.
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

    /// The fields of a subclass as framed objects, and back; false when the stream holds something else.
    virtual rksl::MemIOStream binSerialize() const;
    virtual bool binUnserialize(rksl::MemIOStream const& stream);

    /// The fields of a subclass as the XML inside of the element, and back; false when the text is no XML.
    virtual rktl::String xmlSerialize() const;
    virtual bool xmlUnserialize(rktl::String const& xml);

protected:
    /// Takes over what the params of a stage say: the common part, then the fields from the binary form or, when that is
    /// empty or refused, from the XML. For the stages' onSetParameters; false leaves the fields as the last try left them.
    bool assignFrom(ProcessParams const& params);

private:
    bool mEnabled = true;
    rktl::String mMode;
    rktl::String mType;
    rktl::String mName;
    rksl::MemIOStream mBinary;
    rktl::String mXml;
};
