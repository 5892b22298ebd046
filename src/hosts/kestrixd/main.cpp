// kestrixd: supervises the devices of a configuration document, with no window; and brings logged data in and out.
#include "hosts/kestrixd/Commands.h"
#include "hosts/kestrixd/Options.h"
#include "hosts/kestrixd/Service.h"
#include "platform/CommandLine.h"

#include <exception>
#include <iostream>

int main(int argc, char** argv)
{
    try {
        zr::CommandLine line(argc, argv);
        if (const std::optional<int> status = zr::service::RunCommand(line.Count(), line.Values())) {
            return *status;
        }
        const zr::service::ParsedOptions parsed = zr::service::ParseOptions(line.Count(), line.Values());
        if (!parsed.options) {
            return parsed.exitStatus;
        }
        zr::service::Service service(*parsed.options);
        return service.Run();
    } catch (const std::exception& error) {
        std::cerr << "kestrixd: " << error.what() << '\n';
        return 1;
    }
}
