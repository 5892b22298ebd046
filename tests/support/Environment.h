// Environment variables of one test, as they were before when it ends.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace zr::test {

class Environment {
public:
    // A null value takes the variable away.
    Environment(const char* name, const char* value) : m_name(name)
    {
        if (const char* const old = std::getenv(name)) {
            m_old = old;
        }
        Set(value);
    }
    Environment(const char* name, const std::string& value) : Environment(name, value.c_str()) {}
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    ~Environment() { Set(m_old ? m_old->c_str() : nullptr); }

private:
    void Set(const char* value)
    {
#ifdef _WIN32
        // An empty value takes the variable away there.
        ::_putenv_s(m_name.c_str(), value != nullptr ? value : "");
#else
        if (value != nullptr) {
            ::setenv(m_name.c_str(), value, 1);
        } else {
            ::unsetenv(m_name.c_str());
        }
#endif
    }

    std::string m_name;
    std::optional<std::string> m_old;
};

}  // namespace zr::test
