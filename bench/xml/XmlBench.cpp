// Loading a document of 50,000 devices, beside bare parsers that test less and build a tree of their own.
#include "BenchLine.h"
#include "DemoDocument.h"
#include "siblings/tools/XmlDocument.h"
#include "siblings/tools/XmlGate.h"

#include <libxml/parser.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <vector>

namespace {

constexpr int kRounds = 15;

// Median time of a call, in milliseconds. What the call returns is destroyed outside the measured time.
template <typename Work>
double MedianMs(const Work& work)
{
    std::vector<double> times;
    for (int i = 0; i < kRounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const auto result = work();
        const auto end = std::chrono::steady_clock::now();
        if (!result) {
            std::fprintf(stderr, "bench_xml: the document is refused\n");
            std::exit(1);
        }
        times.push_back(std::chrono::duration<double, std::milli>(end - start).count());
    }
    std::nth_element(times.begin(), times.begin() + kRounds / 2, times.end());
    return times[kRounds / 2];
}

std::unique_ptr<XmlDocument> LoadOurs(const std::string& path)
{
    auto document = std::make_unique<XmlDocument>();
    return document->Load(std::filesystem::path(path)) ? std::move(document) : nullptr;
}

std::unique_ptr<pugi::xml_document> LoadPugixml(const std::string& path)
{
    auto document = std::make_unique<pugi::xml_document>();
    return document->load_file(path.c_str()) ? std::move(document) : nullptr;
}

struct FreeLibxml2 {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};

std::unique_ptr<xmlDoc, FreeLibxml2> LoadLibxml2(const std::string& path)
{
    return std::unique_ptr<xmlDoc, FreeLibxml2>(xmlReadFile(path.c_str(), nullptr, XML_PARSE_HUGE | XML_PARSE_NONET));
}

// The high-water mark of this program's own memory; getrusage would count that of the process it was forked from.
double PeakMb()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) {
            return std::strtod(line.c_str() + 6, nullptr) / 1024.0;
        }
    }
    return 0.0;
}

// Runs this program again for one load, so that nothing of this process counts.
int PrintPeak(const char* program, const std::string& path)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::execl(program, program, "--peak", path.c_str(), nullptr);
        std::_Exit(127);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::string(argv[1]) == "--peak") {
        const auto document = LoadOurs(argv[2]);
        zr::bench::PrintLine("xml.peak_mb", PeakMb(), "MB");
        return document != nullptr ? 0 : 1;
    }
    const std::string path =
        (std::filesystem::temp_directory_path() / ("bench_xml." + std::to_string(::getpid()) + ".xml")).string();
    const std::string text = zr::bench::DemoDocument();
    std::ofstream(path, std::ios::binary) << text;

    zr::bench::PrintLine("xml.document_mb", static_cast<double>(text.size()) / 1e6, "MB");
    const double ours = MedianMs([&] { return LoadOurs(path); });
    const double pugixml = MedianMs([&] { return LoadPugixml(path); });
    const double libxml2 = MedianMs([&] { return LoadLibxml2(path); });
    const double gate = MedianMs([&] { return xml::XmlGate(text, xml::Encoding::Utf8).Check(); });
    zr::bench::PrintLine("xml.load_50k_ms", ours, "ms");
    zr::bench::PrintLine("xml.gate_ms", gate, "ms");
    zr::bench::PrintLine("xml.pugixml_ms", pugixml, "ms");
    zr::bench::PrintLine("xml.libxml2_ms", libxml2, "ms");
    zr::bench::PrintLine("xml.pugixml_ratio", ours / pugixml, "x");
    const int status = PrintPeak("/proc/self/exe", path);
    std::filesystem::remove(path);
    return status;
}
