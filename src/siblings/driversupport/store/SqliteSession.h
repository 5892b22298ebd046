// What the writing side has at hand while a store file is open.
#pragma once

#include "siblings/driversupport/store/SqliteBlockTable.h"
#include "siblings/driversupport/store/SqliteStoreFile.h"
#include "siblings/driversupport/store/UnpackedSamples.h"

#include <memory>

namespace zr {

struct SqliteSession {
    explicit SqliteSession(std::unique_ptr<SqliteStoreFile> openFile)
        : file(std::move(openFile)),
          connection(file->Connection()),
          blocks(connection),
          unpacked(connection),
          readIdentity(connection.Prepare("SELECT identity FROM store")),
          findSeries(connection.Prepare("SELECT series FROM series WHERE variable = ?")),
          addSeries(connection.Prepare("INSERT INTO series (variable, class) VALUES (?, ?)")),
          addSample(connection.Prepare("INSERT INTO sample (series, time, value) VALUES (?, ?, ?)"))
    {
    }

    std::unique_ptr<SqliteStoreFile> file;
    SqliteConnection& connection;
    SqliteBlockTable blocks;
    UnpackedSamples unpacked;
    SqliteStatement readIdentity;
    SqliteStatement findSeries;
    SqliteStatement addSeries;
    SqliteStatement addSample;
    std::int64_t identity = 0;  // of the store that the numbers of series were looked up in
};

}  // namespace zr
