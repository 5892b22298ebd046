// The large configuration document of the benches.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace zr::bench {

// A configuration of that many devices, spread over that many UDP connections; about 200 bytes a device.
inline std::string DemoDocument(std::size_t devices = 50000, std::size_t connections = 500)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Kestrix>\n  <CommSystem>\n    <Connections>\n";
    text.reserve(devices * 210 + connections * 120);
    char line[512];
    for (std::size_t i = 0; i < connections; ++i) {
        std::snprintf(
            line, sizeof line,
            "      <Connection Name=\"Converter %03zu\" Type=\"UDP\" Address=\"10.20.%zu.%zu\" Socket=\"10001\" "
            "TimeOut=\"500\"/>\n",
            i, i / 200, i % 200 + 1);
        text += line;
    }
    text += "    </Connections>\n    <Devices>\n";
    for (std::size_t i = 0; i < devices; ++i) {
        std::snprintf(
            line, sizeof line,
            "      <Device Name=\"Meter %05zu\" Driver=\"energy-meter-3\" Connection=\"Converter %03zu\" "
            "Unit=\"%zu\" Period=\"1000\" Description=\"Feeder %zu &amp; sub-distribution, hall %zu, floor %zu, "
            "panel %05zu, r\xC3\xA9serve\"/>\n",
            i, i % connections, i / connections % 247 + 1, i % 40, i % 17, i % 5, i);
        text += line;
    }
    return text + "    </Devices>\n  </CommSystem>\n</Kestrix>\n";
}

}  // namespace zr::bench
