// The configuration document that the library shares with its host.
#pragma once

#include "siblings/tools/XmlDocument.h"
#include "siblings/tools/ZRBasicString.h"

// Connections, devices and the tree of device groups: `CommSystem/Connections/Connection`,
// `CommSystem/Devices/Device`, `DeviceGroups`. The host loads and saves it, the dialogs edit its nodes in memory, and
// ZRCommSystem reads it. UI thread only.
class ZRMainCfg : public XmlDocument {
public:
    // Becomes the one that Get() returns.
    ZRMainCfg();
    // As a document; Get() goes on returning what it did.
    ZRMainCfg(const ZRMainCfg& other) = default;
    ZRMainCfg& operator=(const ZRMainCfg& other) = default;
    // Afterwards there is no document to Get(), whichever of several went.
    ~ZRMainCfg() override;

    // The document constructed last. No test for null.
    static ZRMainCfg& Get() { return *instance; }

    // Empties the tree and sets the name under which the host will save it.
    void Reset(const ZRBasicString& fileName);

private:
    static ZRMainCfg* instance;
};
