// kestrix: shows the devices of a configuration document in windows.
#include "hosts/kestrix/DesktopOptions.h"
#include "hosts/kestrix/ui/Desktop.h"
#include "platform/CommandLine.h"

#include <exception>
#include <iostream>

int main(int argc, char** argv)
{
    try {
        zr::CommandLine line(argc, argv);
        const zr::desktop::ParsedOptions parsed = zr::desktop::ParseOptions(line.Count(), line.Values());
        if (!parsed.options) {
            return parsed.exitStatus;
        }
        // Of the command line only the program's name: the rest is ours.
        int count = 1;
        return zr::desktop::RunDesktop(*parsed.options, count, argv);
    } catch (const std::exception& error) {
        std::cerr << "kestrix: " << error.what() << '\n';
        return 1;
    }
}
