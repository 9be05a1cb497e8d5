#include "BaseClasses/MovingObjectParams.h"

#include "math/rkml_Coordinate.h"
#include "streams/rkxml_DomIterator.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>

namespace {

constexpr std::array<char const*, 5> noiseLevels = {"off", "low", "medium", "high", "auto"};

double toDouble(rktl::String const& text)
{
    return strtod(text.c_str(), nullptr);
}

/// Reads the children called first and second as whole numbers; what is missing keeps its value.
void readPair(rkxml::DomIterator const& element, char const* first, rktl::Integer& a, char const* second, rktl::Integer& b)
{
    for (rkxml::DomIterator child = element.childrenBegin(); !child.atEnd(); child.nextSibling()) {
        if (child.getName() == first)
            a = child.getValue().toInteger();
        else if (child.getName() == second)
            b = child.getValue().toInteger();
    }
}

} // namespace

MovingObjectParams::MovingObjectParams()
    : ProcessParams("MovingObjectDetector")
{
}

double MovingObjectParams::sensitivityFromThreshold(int threshold)
{
    if (threshold >= 75)
        return 0.0;
    return threshold <= 10 ? 1.0 : (threshold - 10) / -65.0 + 1.0;
}

float MovingObjectParams::getBackgroundThreshold(float sensitivity)
{
    if (sensitivity < 0.0f)
        return 0.5f;
    if (sensitivity >= 1.0f)
        return 1.0f;
    if (sensitivity >= 0.5f)
        return (sensitivity - 0.5f) * 0.2f + 0.9f;
    float const half = sensitivity * 0.39999998f;
    return half + half + 0.5f;
}

float MovingObjectParams::normalizeSensitivity(float threshold)
{
    if (threshold < 0.5f)
        return 0.0f;
    if (threshold >= 1.0f)
        return 1.0f;
    if (threshold >= 0.9f)
        return (threshold - 0.9f) / 0.2f + 0.5f;
    return (threshold - 0.5f) / 0.79999995f;
}

void MovingObjectParams::setImageQLenFromFps(double fps)
{
    mImageQLen = std::max(rkml::coordinateCast<int>(fps) / 5 + 1, 2);
}

rksl::MemIOStream MovingObjectParams::binSerialize() const
{
    rksl::MemIOStream stream;
    stream << mMotionSensitivity << mSensitivity << mCsThresh << mImageQLen << mSkippedFrames << mObjectFilterWidth
           << mObjectFilterHeight << mGradientMultiplier << mKernelType << mKernelWidth << mKernelHeight << mExclusionZones
           << mShadowRemoval << mFilterNoiseLevel << mColumns << mRows;
    return stream;
}

bool MovingObjectParams::binUnserialize(rksl::MemIOStream const& stream)
{
    try {
        rksl::MemIOStream copy(stream);
        copy >> mMotionSensitivity >> mSensitivity >> mCsThresh >> mImageQLen >> mSkippedFrames >> mObjectFilterWidth >>
            mObjectFilterHeight >> mGradientMultiplier >> mKernelType >> mKernelWidth >> mKernelHeight >> mExclusionZones >>
            mShadowRemoval >> mFilterNoiseLevel >> mColumns >> mRows;
    } catch (std::exception const&) {
        return false;
    }
    mShadowRemoval = mShadowRemoval != 0 ? 1 : 0;
    return true;
}

rktl::String MovingObjectParams::xmlSerialize() const
{
    std::ostringstream xml;
    xml << "<motion-sensitivity>" << mMotionSensitivity.value << "</motion-sensitivity>\n"
        << "<sensitivity>" << mSensitivity.value << "</sensitivity>\n"
        << "<cs-thresh>" << mCsThresh.value << "</cs-thresh>\n"
        << "<image-q-len>" << mImageQLen.value << "</image-q-len>\n"
        << "<skipped-frames>" << mSkippedFrames.value << "</skipped-frames>\n"
        << "<kernel type=\"" << (mKernelType == ellipse ? "Ellipse" : "Square") << "\">\n"
        << "  <width>" << mKernelWidth.value << "</width>\n"
        << "  <height>" << mKernelHeight.value << "</height>\n</kernel>\n<object-filter";
    if (mGradientMultiplier != 1.0)
        xml << " gradient-multiplier=\"" << mGradientMultiplier.value << "\"";
    xml << ">\n  <width>" << mObjectFilterWidth.value << "</width>\n  <height>" << mObjectFilterHeight.value
        << "</height>\n</object-filter>\n";
    if (!mExclusionZones.empty()) {
        xml << "<exclusion-zones>\n";
        for (auto const& zone : mExclusionZones)
            xml << std::string(zone.toXML("zone", "vertex")) << "\n";
        xml << "</exclusion-zones>\n";
    }
    if (mShadowRemoval)
        xml << "<shadow-removal enabled=\"true\"/>\n";
    size_t const level = static_cast<size_t>(mFilterNoiseLevel.value);
    xml << "<filter-noise level=\"" << (level < noiseLevels.size() ? noiseLevels[level] : noiseLevels[off]) << "\">\n"
        << "  <columns>" << mColumns.value << "</columns>\n  <rows>" << mRows.value << "</rows>\n</filter-noise>\n";
    return xml.str();
}

bool MovingObjectParams::xmlUnserialize(rktl::String const& xml)
{
    rkxml::DomIterator cursor = rkxml::DomIterator::parse("<TempTag>" + xml + "</TempTag>");
    if (cursor.atEnd() || !cursor.hasChildren())
        return false;
    mExclusionZones.clear();
    mGradientMultiplier = 1.0;
    mShadowRemoval = 0;
    for (cursor = cursor.childrenBegin(); !cursor.atEnd(); cursor.nextSibling())
        readElement(cursor);
    return true;
}

void MovingObjectParams::readElement(rkxml::DomIterator const& element)
{
    rktl::String const name = element.getName();
    rktl::String const value = element.getValue();
    if (name == "motion-sensitivity")
        mMotionSensitivity = toDouble(value);
    else if (name == "threshold")
        mMotionSensitivity = sensitivityFromThreshold(value.toInteger());
    else if (name == "min-bg-pct")
        mSensitivity = normalizeSensitivity(static_cast<float>(toDouble(value)));
    else if (name == "sensitivity")
        mSensitivity = toDouble(value);
    else if (name == "cs-thresh")
        mCsThresh = toDouble(value);
    else if (name == "image-q-len")
        mImageQLen = value.toInteger();
    else if (name == "skipped-frames")
        mSkippedFrames = value.toInteger();
    else if (name == "kernel") {
        mKernelType = element.getAttribute("type") == "Ellipse" ? ellipse : square;
        readPair(element, "width", mKernelWidth, "height", mKernelHeight);
    } else if (name == "object-filter")
        readObjectFilter(element);
    else if (name == "exclusion-zones")
        mExclusionZones.fromXML(element.toXML().c_str());
    else if (name == "shadow-removal")
        mShadowRemoval = !element.hasAttribute("enabled") || element.getAttribute("enabled").toBool() ? 1 : 0;
    else if (name == "filter-noise")
        readNoiseFilter(element);
}

void MovingObjectParams::readObjectFilter(rkxml::DomIterator const& element)
{
    readPair(element, "width", mObjectFilterWidth, "height", mObjectFilterHeight);
    if (element.hasAttribute("gradient-multiplier"))
        mGradientMultiplier = toDouble(element.getAttribute("gradient-multiplier"));
}

void MovingObjectParams::readNoiseFilter(rkxml::DomIterator const& element)
{
    rktl::String const level = element.getAttribute("level");
    auto const known =
        std::find_if(noiseLevels.begin(), noiseLevels.end(), [&](char const* name) { return level.iCompare(name) == 0; });
    if (level.empty())
        mFilterNoiseLevel = high;
    else
        mFilterNoiseLevel = known != noiseLevels.end() ? static_cast<int32_t>(known - noiseLevels.begin()) : int32_t(off);
    readPair(element, "columns", mColumns, "rows", mRows);
    for (rktl::Integer* const count : {&mColumns, &mRows})
        if (*count <= 0)
            *count = 2;
}
