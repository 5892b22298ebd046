// A file layer of SQLite that stands on the system's: it notes what is written and flushed, and plays a full disk.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zr::test {

// Registered while it lives, under Name(). One thread.
class TestVfs {
public:
    struct Operation {
        enum class Kind { Write, Truncate, Sync, Remove };
        Kind kind = Kind::Write;
        std::string file;         // without its folder
        std::int64_t offset = 0;  // of a write; the new size of a truncation
        std::vector<std::uint8_t> bytes;
    };

    explicit TestVfs(std::string name);
    TestVfs(const TestVfs&) = delete;
    TestVfs& operator=(const TestVfs&) = delete;
    ~TestVfs();

    [[nodiscard]] const std::string& Name() const { return m_name; }
    // Of the files of databases and their logs, in order.
    [[nodiscard]] const std::vector<Operation>& Operations() const { return m_operations; }
    // While it is full, no file grows.
    void SetFull(bool isFull) { m_isFull = isFull; }

    // For the functions of the layer.
    void Note(Operation operation) { m_operations.push_back(std::move(operation)); }
    [[nodiscard]] bool IsFull() const { return m_isFull; }
    [[nodiscard]] sqlite3_vfs* System() const { return m_system; }

private:
    const std::string m_name;
    sqlite3_vfs* const m_system;
    sqlite3_vfs m_layer;
    std::vector<Operation> m_operations;
    bool m_isFull = false;
};

}  // namespace zr::test
