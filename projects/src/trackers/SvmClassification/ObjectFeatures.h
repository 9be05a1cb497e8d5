#pragma once

#include "image/rkil_FlatImage.h"
#include "streams/rksl_Serializable.h"

#include <array>
#include <cstdint>

class Object;

/// What the classifier sees of one object in one frame: a fixed vector of whole numbers, of which the system computes the age of
/// the object and a histogram of edge directions inside its foreground. Training samples carry the same record.
///
/// Features have ids from 1 to 61. Binary form: the members in their order, 4 bytes each. There is no XML form.
class ObjectFeatures : public rksl::Serializable {
public:
    static constexpr int32_t highestFeature = 61;

    // Free slots keep their values here unless somebody else fills them. The number in a name is the feature id.
    int32_t feature1 = 0;
    int32_t feature2 = 0; ///< training drops the records of a sample that are far from its median
    int32_t feature3 = 0;
    int32_t feature4 = -1;
    int32_t feature5 = 0;
    int32_t feature6 = 0;
    int32_t feature7 = 0;
    int32_t feature8 = -1;
    int32_t reserved = 0; ///< no feature
    int32_t age = 0;      ///< id 9: milliseconds / 30
    /// Ids 10 to 57. Only the first cell of twelve is used: the count of weak pixels, then eleven bins of direction, each ten
    /// degrees wide, to which every strong pixel adds 10 in all. Directions are folded into one quadrant.
    std::array<int32_t, 48> orientHist = {};
    int32_t spare = 0;     ///< no feature
    uint32_t objectId = 0; ///< no feature
    int32_t numFeatures = highestFeature;
    int32_t feature59 = -1;
    int32_t feature60 = -1;
    int32_t feature61 = -1;
    int32_t feature58 = -1;

    /// The feature of that id; -1 for one of 0 or below. An id above numFeatures is a mistake of the program: it is told on
    /// standard output, and the process ends with status 1. Ids that come from outside are checked where they are read.
    int32_t getFeatureVal(int32_t id) const;

    /// Fills objectId, age and orientHist from the object's newest box, grown by 3 pixels on each side and clipped.
    /// gray, mask: of the frame's size. allowBorder: whether that box may touch the edge of the frame.
    /// False for an object that shares its box with another, or whose box is less than 8 pixels wide or high.
    bool setFeatures(rkil::FlatImage<1> const& gray, rkil::FlatImage<1> const& mask, Object const& object, bool allowBorder);

    /// Fills orientHist from the pixels of gray where mask is not 0. False, with an empty histogram, when the images have no
    /// pixels or differ in size; a region too small for a gradient gives an empty histogram too.
    bool generateFeatures(rkil::FlatImage<1> const& gray, rkil::FlatImage<1> const& mask);

    unsigned int getTypeId() const override { return 27; }
    rktl::String getTypeName() const override;
    using rksl::Serializable::toXML;
    rktl::String toXML(char const* tag) const override; ///< throws rktl::Exception
    bool fromXML(char const* xml) override;             ///< throws rktl::Exception
    unsigned int getBinLength() const override { return 260; }
    unsigned int toBin(unsigned char* out) const override;
    /// Throws rktl::Exception for a record of fewer features than the 61 that every reader may ask for.
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

private:
    template <class Record, class Visitor> static void visitMembers(Record& record, Visitor visit);
};
