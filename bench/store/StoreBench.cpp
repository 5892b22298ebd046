// Logged data: packing, recording and loading a year of ten variables a minute, beside plain tables of SQLite.
#include "CodecBench.h"
#include "DemoYear.h"
#include "LoadBench.h"
#include "RecordBench.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

// A folder of its own, gone with it.
class TempFolder {
public:
    TempFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "bench_store.XXXXXX").string();
        zr::bench::Require(mkdtemp(pattern.data()) != nullptr, "no temporary folder");
        path = pattern;
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    std::filesystem::path path;
};

}  // namespace

int main()
{
    const TempFolder folder;
    const zr::bench::DemoYear year = zr::bench::MakeDemoYear();
    zr::bench::RunCodecBench(year);
    zr::bench::RunRecordBench(year, folder.path);
    zr::bench::RunLoadBench(year, folder.path);
    return 0;
}
