#include "unit/loggerdata/TestVfs.h"

#include <cstring>
#include <filesystem>
#include <memory>
#include <new>
#include <utility>

namespace zr::test {

namespace {

// Before the system's own file, in the memory that SQLite gives.
struct LayerFile {
    sqlite3_file base;
    TestVfs* layer;
    std::string* name;  // Owned.
    sqlite3_file* system;
};

LayerFile& Of(sqlite3_file* file)
{
    return *reinterpret_cast<LayerFile*>(file);
}

TestVfs& Of(sqlite3_vfs* layer)
{
    return *static_cast<TestVfs*>(layer->pAppData);
}

int Close(sqlite3_file* file)
{
    LayerFile& ours = Of(file);
    const std::unique_ptr<std::string> name(std::exchange(ours.name, nullptr));
    return ours.system->pMethods != nullptr ? ours.system->pMethods->xClose(ours.system) : SQLITE_OK;
}

int Read(sqlite3_file* file, void* bytes, int length, sqlite3_int64 offset)
{
    return Of(file).system->pMethods->xRead(Of(file).system, bytes, length, offset);
}

int FileSize(sqlite3_file* file, sqlite3_int64* size)
{
    return Of(file).system->pMethods->xFileSize(Of(file).system, size);
}

int Write(sqlite3_file* file, const void* bytes, int length, sqlite3_int64 offset)
{
    LayerFile& ours = Of(file);
    sqlite3_int64 size = 0;
    if (ours.layer->IsFull() && FileSize(file, &size) == SQLITE_OK && offset + length > size) {
        return SQLITE_FULL;
    }
    const int result = ours.system->pMethods->xWrite(ours.system, bytes, length, offset);
    if (result == SQLITE_OK) {
        const auto* const first = static_cast<const std::uint8_t*>(bytes);
        ours.layer->Note({TestVfs::Operation::Kind::Write, *ours.name, offset, {first, first + length}});
    }
    return result;
}

int Truncate(sqlite3_file* file, sqlite3_int64 size)
{
    Of(file).layer->Note({TestVfs::Operation::Kind::Truncate, *Of(file).name, size, {}});
    return Of(file).system->pMethods->xTruncate(Of(file).system, size);
}

// Noted and not done: nothing here waits for a disk.
int Sync(sqlite3_file* file, int)
{
    Of(file).layer->Note({TestVfs::Operation::Kind::Sync, *Of(file).name, 0, {}});
    return SQLITE_OK;
}

int Lock(sqlite3_file* file, int kind)
{
    return Of(file).system->pMethods->xLock(Of(file).system, kind);
}

int Unlock(sqlite3_file* file, int kind)
{
    return Of(file).system->pMethods->xUnlock(Of(file).system, kind);
}

int CheckReservedLock(sqlite3_file* file, int* isLocked)
{
    return Of(file).system->pMethods->xCheckReservedLock(Of(file).system, isLocked);
}

int FileControl(sqlite3_file* file, int operation, void* argument)
{
    return Of(file).system->pMethods->xFileControl(Of(file).system, operation, argument);
}

int SectorSize(sqlite3_file*)
{
    return 512;
}

// What a disk promises that may lose any sector of what isn't flushed.
int DeviceCharacteristics(sqlite3_file*)
{
    return 0;
}

int ShmMap(sqlite3_file* file, int page, int size, int extend, void volatile** memory)
{
    return Of(file).system->pMethods->xShmMap(Of(file).system, page, size, extend, memory);
}

int ShmLock(sqlite3_file* file, int offset, int count, int flags)
{
    return Of(file).system->pMethods->xShmLock(Of(file).system, offset, count, flags);
}

void ShmBarrier(sqlite3_file* file)
{
    Of(file).system->pMethods->xShmBarrier(Of(file).system);
}

int ShmUnmap(sqlite3_file* file, int remove)
{
    return Of(file).system->pMethods->xShmUnmap(Of(file).system, remove);
}

const sqlite3_io_methods kMethods = {
    2,
    Close,
    Read,
    Write,
    Truncate,
    Sync,
    FileSize,
    Lock,
    Unlock,
    CheckReservedLock,
    FileControl,
    SectorSize,
    DeviceCharacteristics,
    ShmMap,
    ShmLock,
    ShmBarrier,
    ShmUnmap,
    nullptr,
    nullptr,
};

int Open(sqlite3_vfs* layer, sqlite3_filename path, sqlite3_file* file, int flags, int* outFlags)
{
    TestVfs& ours = Of(layer);
    LayerFile& opened = *new (file) LayerFile;
    void* const behind = reinterpret_cast<char*>(file) + sizeof(LayerFile);
    opened.base.pMethods = nullptr;
    opened.layer = &ours;
    opened.system = static_cast<sqlite3_file*>(behind);
    const int result = ours.System()->xOpen(ours.System(), path, opened.system, flags, outFlags);
    if (result == SQLITE_OK) {
        opened.name = new std::string(path != nullptr ? std::filesystem::path(path).filename().string() : "");
        opened.base.pMethods = &kMethods;
    }
    return result;
}

int Delete(sqlite3_vfs* layer, const char* path, int syncFolder)
{
    TestVfs& ours = Of(layer);
    ours.Note({TestVfs::Operation::Kind::Remove, std::filesystem::path(path).filename().string(), 0, {}});
    return ours.System()->xDelete(ours.System(), path, syncFolder);
}

int Access(sqlite3_vfs* layer, const char* path, int flags, int* result)
{
    return Of(layer).System()->xAccess(Of(layer).System(), path, flags, result);
}

int FullPathname(sqlite3_vfs* layer, const char* path, int length, char* full)
{
    return Of(layer).System()->xFullPathname(Of(layer).System(), path, length, full);
}

}  // namespace

TestVfs::TestVfs(std::string name) : m_name(std::move(name)), m_system(sqlite3_vfs_find(nullptr)), m_layer(*m_system)
{
    m_layer.szOsFile = static_cast<int>(sizeof(LayerFile)) + m_system->szOsFile;
    m_layer.pNext = nullptr;
    m_layer.zName = m_name.c_str();
    m_layer.pAppData = this;
    m_layer.xOpen = &Open;
    m_layer.xDelete = &Delete;
    m_layer.xAccess = &Access;
    m_layer.xFullPathname = &FullPathname;
    sqlite3_vfs_register(&m_layer, 0);
}

TestVfs::~TestVfs()
{
    sqlite3_vfs_unregister(&m_layer);
}

}  // namespace zr::test
