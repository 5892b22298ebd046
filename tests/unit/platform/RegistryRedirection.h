// The user's registry is an empty key while this lives. Windows.
#pragma once

#include <cstdint>

namespace zr::test {

class RegistryRedirection {
public:
    RegistryRedirection();
    RegistryRedirection(const RegistryRedirection&) = delete;
    RegistryRedirection& operator=(const RegistryRedirection&) = delete;
    ~RegistryRedirection();

private:
    void* m_key = nullptr;
};

}  // namespace zr::test
