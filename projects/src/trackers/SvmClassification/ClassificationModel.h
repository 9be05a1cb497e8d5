#pragma once

#include "misc/rktl_String.h"
#include "streams/rksl_MemIOStream.h"
#include "streams/rksl_Serializable.h"

/// A model of one class under its name, in the binary form of its type. A model file is the file form of this record.
///
/// Binary form: name, type, data as a stream, valid (8 bits). XML form: an element with the attributes name and type, whose value
/// is Base64 of the stream's bytes; without a value when it is not valid.
class ClassificationModel : public rksl::Serializable {
public:
    /// type: such as "SVM"; null is "". No name, no data, not valid.
    explicit ClassificationModel(char const* type = nullptr);
    /// bytes: of a stream; null gives a model that is not valid. Throws rktl::Exception when they are no stream.
    ClassificationModel(char const* type, rktl::String const& name, unsigned char const* bytes, unsigned int size);
    ClassificationModel(char const* type, rktl::String const& name, rksl::Serializable const& model, bool valid);

    rktl::String const& getName() const { return mName; }
    rktl::String const& getType() const { return mType; }
    /// Holds the model as its only frame.
    rksl::MemIOStream const& getData() const { return mData; }
    /// Whether the data hold a model.
    bool isValid() const { return mValid; }

    unsigned int getTypeId() const override { return 29; }
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override;
    /// False, and as before, when an attribute is missing.
    bool fromXML(char const* xml) override;
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    rksl::MemIOStream mData;
    rktl::String mName;
    rktl::String mType;
    bool mValid = false;
};
