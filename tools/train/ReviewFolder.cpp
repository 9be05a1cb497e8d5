#include "ReviewFolder.h"

#include "support/RgbImage.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <stdexcept>

namespace tools {

namespace {

namespace fs = std::filesystem;

constexpr char const* LIST = "list.txt";
constexpr uint32_t PICTURE_SCALE = 2;

std::string numberText(int32_t number)
{
    return rktl::String::fromFormat("%05d", number);
}

void require(bool good, fs::path const& path)
{
    if (!good)
        throw std::runtime_error(path.string() + ": cannot be written");
}

} // namespace

ReviewFolder::ReviewFolder(fs::path const& folder)
    : mFolder(folder)
{
}

fs::path ReviewFolder::samplesOf(fs::path const& folder)
{
    // "a.samples.review/" names the folder too.
    fs::path const name = folder.has_filename() ? folder : folder.parent_path();
    if (name.extension() != ending)
        throw std::runtime_error(folder.string() + ": is no folder of pictures that \"collect\" made (NAME" + ending + ")");
    return fs::path(name).replace_extension();
}

fs::path ReviewFolder::picture(int32_t number) const
{
    return mFolder / (numberText(number) + ".png");
}

void ReviewFolder::add(TrainingData const& sample, rk_image const& montage, std::string const& origin)
{
    fs::create_directories(mFolder);
    writeImage(picture(sample.mNumber), toRgb(montage, PICTURE_SCALE));
    fs::path const path = mFolder / LIST;
    std::ofstream list(path, std::ios::app);
    list << numberText(sample.mNumber) << "\t" << sample.mClassName << "\t" << origin << "\n" << std::flush;
    require(bool(list), path);
}

std::vector<ReviewFolder::Line> ReviewFolder::readList() const
{
    fs::path const path = mFolder / LIST;
    std::ifstream list(path);
    if (!list)
        throw std::runtime_error(path.string() + ": cannot be read");
    std::vector<Line> lines;
    for (std::string text; std::getline(list, text);) {
        size_t const digits = text.find_first_of("0123456789");
        size_t const name = text.find('\t'), origin = text.find('\t', name + 1);
        if (text.find_first_not_of(" \r") == std::string::npos)
            continue;
        if (digits == std::string::npos || name == std::string::npos || origin == std::string::npos || digits > name)
            throw std::runtime_error(
                path.string() + ": expected a number, a class and an origin with tabs between them, not \"" + text + "\"");
        lines.push_back({text.find('-') < digits, rktl::String(text.substr(digits)).toInteger(),
            rktl::String(text.substr(name + 1, origin - name - 1)).trim(), text.substr(origin + 1)});
        if (lines.back().name.empty())
            throw std::runtime_error(path.string() + ": sample " + numberText(lines.back().number) + " has no class");
    }
    return lines;
}

ReviewFolder::Outcome ReviewFolder::apply(rksl::List<TrainingData>& samples) const
{
    std::map<int32_t, Line> lines;
    for (Line const& line : readList())
        lines.insert_or_assign(line.number, line);
    auto const hasPicture = [this](TrainingData const& sample) { return fs::exists(picture(sample.mNumber)); };
    if (std::none_of(samples.begin(), samples.end(), hasPicture))
        throw std::runtime_error(mFolder.string() + ": holds no picture of any sample; nothing was struck");
    Outcome outcome;
    for (auto sample = samples.begin(); sample != samples.end();) {
        auto const line = lines.find(sample->mNumber);
        if (!hasPicture(*sample) || (line != lines.end() && line->second.struck)) {
            outcome.struck.push_back(sample->mNumber);
            sample = samples.erase(sample);
            continue;
        }
        if (line != lines.end() && sample->mClassName != line->second.name) {
            sample->mClassName = line->second.name;
            outcome.renamed.push_back(sample->mNumber);
        }
        ++sample;
    }
    return outcome;
}

void ReviewFolder::tidy(rksl::List<TrainingData> const& samples) const
{
    auto const isThere = [&samples](Line const& line) {
        return std::any_of(
            samples.begin(), samples.end(), [&line](TrainingData const& sample) { return sample.mNumber == line.number; });
    };
    fs::path const path = mFolder / LIST, part = mFolder / "list.txt.part";
    std::ofstream list(part);
    for (Line const& line : readList()) {
        if (isThere(line))
            list << numberText(line.number) << "\t" << line.name << "\t" << line.origin << "\n";
        else
            fs::remove(picture(line.number));
    }
    list.close();
    require(bool(list), path);
    fs::rename(part, path);
}

} // namespace tools
