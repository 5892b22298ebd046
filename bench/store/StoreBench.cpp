// Logged data: packing, recording and loading a year of ten variables a minute, beside plain tables of SQLite.
#include "CodecBench.h"
#include "DemoYear.h"

int main()
{
    const zr::bench::DemoYear year = zr::bench::MakeDemoYear();
    zr::bench::RunCodecBench(year);
    return 0;
}
