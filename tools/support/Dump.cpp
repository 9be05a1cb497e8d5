#include "support/Dump.h"

#include "support/Pnm.h"
#include "BaseClasses/ProcessFrame.h"

#include <algorithm>
#include <stdexcept>

namespace tools {

namespace dump {

std::filesystem::path runFile(std::filesystem::path const& folder)
{
    return folder / "run.json";
}

std::filesystem::path framesFile(std::filesystem::path const& folder)
{
    return folder / "frames.jsonl";
}

std::string imageFileName(uint64_t frame, std::string name, char const* extension)
{
    std::replace(name.begin(), name.end(), ' ', '_');
    std::string number = std::to_string(frame);
    number.insert(0, number.size() < 6 ? 6 - number.size() : 0, '0');
    return number + "-" + name + extension;
}

std::filesystem::path imageFile(std::filesystem::path const& folder, uint64_t frame, std::string name, char const* extension)
{
    return folder / "images" / imageFileName(frame, name, extension);
}

} // namespace dump

std::vector<std::string> const& imageNames()
{
    static std::vector<std::string> const names = {"Activity Image", "Background Image", "Exclusion Mask", "Foreground Image",
        "Native Image", "Peripheral Image", "Processed Image"};
    return names;
}

namespace {

/// Those of an earlier dump, and nothing else.
void removeImages(std::filesystem::path const& folder)
{
    auto isOurs = [](std::string name) {
        std::replace(name.begin(), name.end(), '_', ' ');
        size_t const digits = name.find_first_not_of("0123456789");
        return digits != std::string::npos && digits >= 6 &&
            std::any_of(imageNames().begin(), imageNames().end(), [&](std::string const& image) {
                std::string const rest = name.substr(digits);
                return rest == "-" + image + ".pgm" || rest == "-" + image + ".ppm";
            });
    };
    std::vector<std::filesystem::path> old;
    for (auto const& entry : std::filesystem::directory_iterator(folder))
        if (isOurs(entry.path().filename().string()))
            old.push_back(entry.path());
    for (auto const& path : old)
        std::filesystem::remove(path);
}

} // namespace

DumpWriter::DumpWriter(std::filesystem::path const& folder, Json const& run, std::vector<std::string> const& images)
    : mFolder(folder)
    , mImages(images)
{
    std::filesystem::create_directories(folder / "images");
    removeImages(folder / "images");
    std::ofstream runFile(dump::runFile(folder), std::ios::binary);
    runFile << run.dump(2, ' ', false, Json::error_handler_t::replace) << "\n";
    mFrames.open(dump::framesFile(folder), std::ios::binary);
    if (!runFile.flush() || !mFrames)
        throw std::runtime_error(folder.string() + ": cannot be written");
}

void DumpWriter::write(FrameResult const& result)
{
    mFrames << jsonLine(frameJson(result)) << "\n";
    if (!mFrames.flush())
        throw std::runtime_error(dump::framesFile(mFolder).string() + ": cannot be written");
    for (std::string const& name : mImages)
        writeImage(result, name);
}

void DumpWriter::writeImage(FrameResult const& result, std::string const& name)
{
    using rkil::MultiImage;
    if (result.frame.isImageSet(name, MultiImage::flatGray)) {
        rk_image const& gray = *result.frame.getMultiImage(name).getFlatGray().getImage();
        writePnm(dump::imageFile(mFolder, result.number, name, ".pgm"), gray);
    }
    if (result.frame.isImageSet(name, MultiImage::flatColour)) {
        rk_image const& colour = *result.frame.getMultiImage(name).getFlatColour().getImage();
        writePnm(dump::imageFile(mFolder, result.number, name, ".ppm"), colour);
    }
}

} // namespace tools
