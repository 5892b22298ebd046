// zrdde: a client of the publication of live values.
#include "dde/LinkText.h"
#include "hosts/zrdde/AdviseCommand.h"
#include "hosts/zrdde/Options.h"
#include "platform/CommandLine.h"
#include "platform/Ddeml.h"
#include "siblings/tools/Utf.h"

#include <fmt/format.h>
#include <exception>

namespace zr::ddeclient {
namespace {

int ListServices()
{
#ifdef _WIN32
    fmt::print(stderr, "zrdde: this system does not tell which services are registered\n");
    return kRefused;
#else
    const auto services = ddeml::RegisteredServices();
    for (const std::u16string& service : services) {
        fmt::print("{}\n", Utf16ToUtf8(service));
    }
    if (services.empty()) {
        fmt::print(stderr, "zrdde: no service is registered\n");
    }
    return kDone;
#endif
}

int PrintLinks(const Options& options)
{
    fmt::print("{}\n", Utf16ToUtf8(dde::LinkReference(options.service, options.device, options.variable)));
    fmt::print("{}\n", Utf16ToUtf8(dde::LinkFunction(options.service, options.device, options.variable)));
    return kDone;
}

int Run(int argc, char** argv)
{
    const ParsedOptions parsed = ParseOptions(argc, argv);
    if (!parsed.options) {
        return parsed.exitStatus;
    }
    switch (parsed.options->command) {
        case Command::Advise:
            return Advise(*parsed.options);
        case Command::Services:
            return ListServices();
        case Command::Link:
            return PrintLinks(*parsed.options);
    }
    return kBadCommand;
}

}  // namespace
}  // namespace zr::ddeclient

int main(int argc, char** argv)
{
    try {
        zr::CommandLine line(argc, argv);
        return zr::ddeclient::Run(line.Count(), line.Values());
    } catch (const std::exception& error) {
        fmt::print(stderr, "zrdde: {}\n", error.what());
        return zr::ddeclient::kRefused;
    }
}
