// A complete host: loads a configuration document, supervises its devices for a while and prints their values.
#include <comm/ZRCommSystem.h>
#include <comm/ZRMainCfg.h>
#include <devices/modbus/ModbusDrivers.h>
#include <siblings/driversupport/ZRDriverVariable.h>
#include <siblings/tools/Utf.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

static void PrintValues(ZRDeviceDriver& device)
{
    ZRDriverVariableNameIterator each;
    for (device.VariableNameBegin(each); !(each == ZRDeviceDriver::variableNameIteratorEnd); each++) {
        ZRDriverVariable variable;
        variable.Setup(device.name + u"." + each.Name());
        tagSVariableValue value;
        if (variable.Lock() && variable.IsValid()) {
            variable.Value(value);
            std::printf("%s %g\n", Utf16ToUtf8(variable.fullName).c_str(), value.number);
        }
    }
}

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: service CONFIG SECONDS\n");
        return 2;
    }
    std::vector<std::string> errors;
    zr::modbus::RegisterDrivers(DEVICE_PROFILES, errors);
    for (const std::string& error : errors) {
        std::fprintf(stderr, "%s\n", error.c_str());
    }
    ZRMainCfg document;
    ZRCommSystem system;
    if (!document.Load(std::filesystem::path(argv[1]))) {
        std::fprintf(stderr, "%s\n", document.Error().Message().c_str());
        return 2;
    }
    if (const XmlNode* const node = document.root->Node(u"CommSystem"); node != nullptr) {
        system.LoadCfg(*node);
    }
    system.Start();
    std::this_thread::sleep_for(std::chrono::seconds(std::atoi(argv[2])));
    for (auto device = system.DriversBegin(); device != system.DriversEnd(); ++device) {
        PrintValues(**device);
    }
    system.Stop();
    return 0;
}
