// contraflow-train: teaches the application classes of objects from recordings.

#include "Collect.h"
#include "ReviewFolder.h"
#include "Test.h"
#include "Train.h"
#include "support/ModelFolder.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <iostream>

namespace {

volatile std::sig_atomic_t stopped = 0;

/// The first signal ends the work in order; a second one ends the program.
void stopInOrder(int signal)
{
    stopped = 1;
    std::signal(signal, SIG_DFL);
}

std::string numbersText(std::vector<int32_t> const& numbers)
{
    std::string text = std::to_string(numbers.size());
    for (size_t i = 0; i < numbers.size(); ++i)
        text += (i ? " " : ": ") + std::to_string(numbers[i]);
    return text;
}

void review(std::string const& path)
{
    tools::SampleFile file(tools::ReviewFolder::samplesOf(path));
    tools::ReviewFolder const folder(path);
    auto const outcome = folder.apply(file.samples());
    file.save();
    folder.tidy(file.samples());
    std::cout << "struck " << numbersText(outcome.struck) << "\ngiven another class " << numbersText(outcome.renamed) << "\nkept "
              << file.samples().size() << std::endl;
}

std::string checkClassName(std::string const& name)
{
    bool const isBlank = name.find_first_not_of(" \t") == std::string::npos;
    return isBlank || name.find_first_of("\t\r\n,") != std::string::npos
        ? "a class has a name without tabs, line breaks and commas"
        : "";
}

void addSpan(CLI::App& command, tools::Span& span)
{
    command
        .add_option(
            "--from", span.from, "leaves out what happens before SECONDS; the scene is learned from the start all the same")
        ->check(CLI::NonNegativeNumber);
    command.add_option("--to", span.to, "ends at SECONDS")->check(CLI::NonNegativeNumber);
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app(
        "Teaches the application what objects are: collects samples of a class from recordings, lets a person strike the "
        "wrong ones, trains models, and tests them.");
    app.require_subcommand(1);

    tools::CollectOptions collecting;
    auto* const collect =
        app.add_subcommand("collect", "adds a sample of each object of the videos to a file, and its picture to FILE.review");
    collect->add_option("--class", collecting.className, "what the objects are; rk-noise for nothing in particular")
        ->required()
        ->check(checkClassName);
    collect->add_option("--settings", collecting.settings,
        "settings file of the application; otherwise those in the application's home (CS_APP_HOME), or the defaults");
    collect->add_option("--out", collecting.out, "the file of samples; those in it stay")->required();
    addSpan(*collect, collecting.span);
    collect->add_option("VIDEO", collecting.videos, "videos, .y4m files, scene:NAME or folders of dumps")->required();
    collect->callback([&] { tools::collect(collecting, stopped); });

    std::string folder;
    auto* const reviewing = app.add_subcommand("review",
        "strikes the samples whose picture was removed from DIR or whose line in its list.txt begins with \"-\", and takes over "
        "the "
        "classes of that list");
    reviewing->add_option("DIR", folder, "the folder of pictures that collect made, FILE.review")->required();
    reviewing->callback([&] { review(folder); });

    std::string out;
    std::vector<std::string> files;
    auto* const training = app.add_subcommand("train", "trains a model for each class of the samples");
    training->add_option("--out", out, "folder of the models")->required();
    training->add_option("FILE", files, "files of samples")->required();
    training->callback([&] { tools::train(out, files); });

    tools::TestOptions testing;
    auto* const test = app.add_subcommand("test", "prints votes and decision of each object, and a table of confusions");
    test->add_option("--models", testing.models, "folder of the models")->required();
    test->add_option("--settings", testing.settings, "as for collect");
    addSpan(*test, testing.span);
    test->add_option("VIDEO", testing.videos, "recordings; CLASS=VIDEO for one whose objects are all of that class")->required();
    test->callback([&] { tools::test(testing, stopped); });

    try {
        for (auto* const command : {collect, test})
            command->preparse_callback([](size_t) {
                std::signal(SIGINT, stopInOrder);
                std::signal(SIGTERM, stopInOrder);
            });
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? 0 : 2;
    } catch (std::exception const& error) {
        std::cerr << "contraflow-train: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
