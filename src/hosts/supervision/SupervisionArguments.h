// The command-line options of every program that supervises a document.
#pragma once

#include "hosts/supervision/SupervisionOptions.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zr::supervision {

// Adds the options to a parser and holds their words until they are taken. Must outlive the parsing.
class SupervisionArguments {
public:
    explicit SupervisionArguments(CLI::App& app);
    SupervisionArguments(const SupervisionArguments&) = delete;
    SupervisionArguments& operator=(const SupervisionArguments&) = delete;

    // After the parsing. What is wrong, as one line; empty when nothing is.
    std::string Take(SupervisionOptions& options) const;

private:
    SupervisionOptions m_options;
    std::string m_document;    // UTF-8, as the arguments are
    std::string m_dataFolder;  // likewise
    std::string m_recording;   // likewise
    std::vector<std::string> m_ports;
    long m_updatePeriod;  // ms
    bool m_publishesNothing = false;
};

}  // namespace zr::supervision
