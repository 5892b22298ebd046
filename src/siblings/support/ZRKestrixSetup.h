// Settings of the suite that every program shares.
#pragma once

#include "siblings/tools/ZRBasicString.h"

// Read through `instance`, which the constructor sets and the destructor clears; a host constructs the one object
// before anything reads it. The fields
// are set before other threads of the library run, and only read after that.
class ZRKestrixSetup {
public:
    // Fills the fields with what holds without a host: see each.
    ZRKestrixSetup();
    ~ZRKestrixSetup();
    ZRKestrixSetup(const ZRKestrixSetup&) = delete;
    ZRKestrixSetup& operator=(const ZRKestrixSetup&) = delete;

    // As everywhere, without a test for null.
    static ZRKestrixSetup& Get() { return *instance; }

    // Not owned.
    static ZRKestrixSetup* instance;

    // Key path of the suite, below HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE; no separator at either end, since subkeys
    // such as "\Tables" are appended to it. "Software\Kestrix".
    ZRBasicString registryKey;
    // Number of the suite's icon among the resources. 128.
    int iconId = 128;
    // Folder of the .MVDF files, ending in a path separator, since file names are appended with nothing between. The
    // folder "filters" of the user's data folder.
    ZRBasicString dataFolder;

    // Sets dataFolder, with a separator behind it if it has none. An empty text stands for the working folder.
    void SetDataFolder(const ZRBasicString& folder);
};
