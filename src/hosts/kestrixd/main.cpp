// kestrixd: supervises the devices of a configuration document, with no window.
#include "hosts/kestrixd/Options.h"
#include "hosts/kestrixd/Service.h"
#include "platform/CommandLine.h"

#include <exception>
#include <iostream>

int main(int argc, char** argv)
{
    try {
        zr::CommandLine line(argc, argv);
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
