#pragma once

#include "support/FrameJson.h"

#include <filesystem>
#include <fstream>

namespace tools {

/// What a dump folder holds: run.json, frames.jsonl (a line for each frame, see frameJson) and
/// images/NNNNNN-Native_Image.pgm and so on. An image in gray is a PGM, one in colour a PPM; one that has both forms, such as
/// the native image of a frame in colour, has both files.
namespace dump {

std::filesystem::path runFile(std::filesystem::path const& folder);
std::filesystem::path framesFile(std::filesystem::path const& folder);
/// "000012-Native_Image.pgm". name: as the pipeline calls the image. extension: such as ".pgm".
std::string imageFileName(uint64_t frame, std::string name, char const* extension);
/// name: as the pipeline calls the image. extension: ".pgm" or ".ppm".
std::filesystem::path imageFile(std::filesystem::path const& folder, uint64_t frame, std::string name, char const* extension);

} // namespace dump

/// Names of all images that the pipeline can give.
std::vector<std::string> const& imageNames();

/// Writes a dump as the frames come. Failures are thrown as std::runtime_error.
class DumpWriter {
public:
    /// images: names of those to write. Makes the folder if need be, and takes an earlier dump out of it.
    DumpWriter(std::filesystem::path const& folder, Json const& run, std::vector<std::string> const& images);

    void write(FrameResult const& result);

private:
    void writeImage(FrameResult const& result, std::string const& name);

    std::filesystem::path const mFolder;
    std::vector<std::string> const mImages;
    std::ofstream mFrames;
};

} // namespace tools
