// Profiles for tests, made of the parts that differ.
#pragma once

#include "devices/modbus/DeviceProfile.h"

#include <memory>
#include <string>

namespace zr::modbus::test {

inline std::string ProfileText(const std::string& variables, const std::string& head = "")
{
    return "<deviceProfile version=\"1\" type=\"T1\" description=\"Test device\" " + head + ">\n" + variables +
           "</deviceProfile>\n";
}

inline std::string Variable(const std::string& values)
{
    return "<variable name=\"V\" description=\"Value\" " + values + "/>\n";
}

// error is left alone when the profile is good.
inline std::shared_ptr<const DeviceProfile> Profile(const std::string& text, std::string& error)
{
    return DeviceProfile::LoadText(text, "t1.xml", error);
}

}  // namespace zr::modbus::test
