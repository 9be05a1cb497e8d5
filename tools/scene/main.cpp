// contraflow-scene: the built-in scenes, and what is known to happen in them.

#include "support/PictureFile.h"
#include "support/SceneTruth.h"
#include "camera/sources/FrameSource.h"
#include "camera/sources/SceneSource.h"
#include "camera/sources/Y4mWriter.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>

namespace {

struct Options {
    std::string scene = "street";
    bool list = false;
    std::string rate = "25";
    std::string truth;
    std::string render;
    bool ppm = false;
    uint64_t every = 1;
    std::string y4m;
};

void listScenes()
{
    for (camera::SceneName const& scene : camera::sceneNames())
        std::cout << scene.name << std::string(10 - scene.name.size(), ' ') << scene.about << "\n";
}

void openForWriting(std::ofstream& file, std::string const& path)
{
    file.open(path, std::ios::binary);
    if (!file)
        throw std::runtime_error(path + ": cannot be written");
}

void writeTruth(Options const& options, camera::FrameRate rate)
{
    auto const truth = tools::sceneTruth(options.scene, camera::makeScene(options.scene), rate);
    std::ofstream file;
    if (options.truth != "-")
        openForWriting(file, options.truth);
    std::ostream& out = options.truth == "-" ? std::cout : file;
    out << truth.dump() << std::endl;
    if (!out)
        throw std::runtime_error(options.truth + ": cannot be written");
}

void writeFrames(Options const& options, camera::FrameRate rate)
{
    camera::SceneSource source(options.scene, rate);
    camera::Picture picture;
    std::ofstream file;
    std::optional<camera::Y4mWriter> video;
    if (!options.y4m.empty()) {
        openForWriting(file, options.y4m);
        video.emplace(file, source.width(), source.height(), rate);
    }
    if (!options.render.empty())
        std::filesystem::create_directories(options.render);
    for (uint64_t frame = 0; source.advance(); ++frame) {
        if (frame % options.every != 0)
            continue;
        source.picture(picture);
        if (video)
            video->write(picture);
        if (!options.render.empty()) {
            std::string const number = std::to_string(1000000 + frame).substr(1);
            tools::writePicture(std::filesystem::path(options.render) / (number + (options.ppm ? ".ppm" : ".png")), picture);
        }
    }
    if (video && !file.flush())
        throw std::runtime_error(options.y4m + ": cannot be written");
}

void run(Options const& options)
{
    if (options.list)
        return listScenes();
    auto const rate = camera::FrameRate::parse(options.rate);
    if (!rate)
        throw std::runtime_error("--fps " + options.rate + ": expected a rate such as 25, 12.5 or 30000/1001");
    if (!options.truth.empty())
        writeTruth(options, *rate);
    if (!options.render.empty() || !options.y4m.empty())
        writeFrames(options, *rate);
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    CLI::App app("The built-in scenes of the stand-in camera: what moves in them, as JSON, and their pictures.");
    app.add_option("SCENE", options.scene, "one of --list")->capture_default_str();
    app.add_flag("--list", options.list, "names the scenes and ends");
    app.add_option("--fps", options.rate, "frames per second")->capture_default_str();
    auto* const truth = app.add_option("--truth", options.truth, "writes the known truth to this file; - for standard output");
    auto* const render = app.add_option("--render", options.render, "writes frames as NNNNNN.png into this folder");
    app.add_flag("--ppm", options.ppm, "renders PPM in place of PNG")->needs(render);
    auto* const y4m = app.add_option("--y4m", options.y4m, "writes the frames as one Y4M video");
    app.add_option("--every", options.every, "of the frames only each N-th")->check(CLI::PositiveNumber);
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    if (truth->count() + render->count() + y4m->count() == 0)
        options.truth = "-";
    try {
        run(options);
    } catch (std::exception const& error) {
        std::cerr << "contraflow-scene: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
