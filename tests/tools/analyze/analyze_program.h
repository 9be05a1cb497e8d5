#pragma once

#include "support/child_process.h"
#include "support/text_file.h"

#include <nlohmann/json.hpp>

#include <sstream>
#include <string>
#include <vector>

using Json = nlohmann::ordered_json;

// The offline analysis as a person runs it, and the files around it.

struct Outcome {
    int status;
    std::string text;
    std::vector<Json> lines; // of a run that went well
};

inline Outcome analyze(std::vector<std::string> const& arguments)
{
    ChildProcess program(CONTRAFLOW_BINARY_DIR "/tools/contraflow-analyze", arguments, {});
    Outcome outcome = {program.waitForExit(std::chrono::seconds(100)), program.text(), {}};
    std::istringstream text(outcome.text);
    for (std::string line; outcome.status == 0 && std::getline(text, line);)
        outcome.lines.push_back(Json::parse(line));
    return outcome;
}

inline std::vector<Json> jsonLines(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    std::vector<Json> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(Json::parse(line));
    return lines;
}
