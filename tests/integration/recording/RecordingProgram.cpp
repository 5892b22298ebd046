// Records one device into a store and tells each acknowledged time, until its standard input ends or it is killed. A
// line there is the size beyond which no file may grow any more, as on a full disk; an empty one ends that.
// usage: recording-program STORE SPOOL VARIABLES FACTOR VALUE
// A line a time: `stored TIME` or `spooled TIME`, in seconds since 1970 on a clock that runs FACTOR times as fast as
// the day. Every variable has VALUE and its own number behind the point.
#include "integration/recording/FastClock.h"
#include "siblings/driversupport/recorder/Recorder.h"
#include "siblings/driversupport/store/SqliteLoggerStore.h"
#include "support/LiveDevice.h"

#include <sys/resource.h>
#include <unistd.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

using zr::RecorderAcknowledgement;

// One write a line, so that a kill cuts none.
void TellAcknowledged(const RecorderAcknowledgement& acknowledgement)
{
    const std::string line = std::string(acknowledgement.isSpooled ? "spooled " : "stored ") +
                             std::to_string(acknowledgement.time / 1000000) + " " +
                             std::to_string(acknowledgement.samples) + "\n";
    if (::write(STDOUT_FILENO, line.data(), line.size()) < 0) {
        std::_Exit(3);
    }
}

// Files that only others may write are nothing to an administrator.
void BeNobodyInsteadOfAdministrator()
{
    if (::geteuid() == 0 && ::setuid(65534) != 0) {
        std::_Exit(4);
    }
}

// Files may not grow beyond so many bytes from here on; without a number they may.
void LimitFiles(const std::string& bytes)
{
    const struct rlimit limit = {bytes.empty() ? RLIM_INFINITY : std::stoul(bytes), RLIM_INFINITY};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) {
        std::_Exit(5);
    }
}

void TellNotices(zr::Recorder& recorder)
{
    for (const zr::RecorderNotice& notice : recorder.TakeNotices()) {
        std::fprintf(stderr, "notice %d reason %d count %llu %s\n", static_cast<int>(notice.kind),
                     static_cast<int>(notice.reason), static_cast<unsigned long long>(notice.count),
                     notice.text.c_str());
    }
}

}  // namespace

int main(int count, char** arguments)
{
    if (count != 6) {
        std::fprintf(stderr, "usage: recording-program STORE SPOOL VARIABLES FACTOR VALUE\n");
        return 2;
    }
    BeNobodyInsteadOfAdministrator();
    std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is a full disk
    zr::test::FastClock clock(std::atoi(arguments[4]));
    const int variables = std::atoi(arguments[3]);
    std::vector<zr::VariableDescription> descriptions;
    zr::LoggerDataSet set{u"all", 1, 0, {}};
    std::vector<ZRBasicString> names;
    for (int i = 0; i < variables; ++i) {
        const std::string digits = std::to_string(i);
        names.push_back(u"V" + ZRBasicString(std::u16string(digits.begin(), digits.end())));
        set.variables.push_back(u"M." + names.back());
    }
    for (const ZRBasicString& name : names) {
        descriptions.push_back(zr::test::Variable(name.CStr()));
    }
    zr::test::LiveDevice device(u"M", descriptions);
    for (int i = 0; i < variables; ++i) {
        device.Write(static_cast<std::size_t>(i), std::atoi(arguments[5]) + i / 1024.0);
    }
    std::vector<std::unique_ptr<zr::LoggerStore>> nodes;
    nodes.push_back(std::make_unique<zr::SqliteLoggerStore>(arguments[1]));
    zr::RecorderOptions options;
    options.spoolFolder = arguments[2];
    options.clock = &clock;
    options.acknowledged = TellAcknowledged;
    zr::Recorder recorder({set}, std::move(nodes), options);
    recorder.Bind();
    std::string error;
    if (!recorder.Start(error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    for (std::string line; std::getline(std::cin, line);) {
        LimitFiles(line);
    }
    recorder.Stop();
    TellNotices(recorder);
    const zr::RecorderCounts total = recorder.Figures().total;
    // On a clock this fast a busy machine is late now and then.
    std::fprintf(stderr, "recorded %llu, spooled %llu, lost %llu\n", static_cast<unsigned long long>(total.recorded),
                 static_cast<unsigned long long>(total.spooled),
                 static_cast<unsigned long long>(total.Unrecorded() - total.Unrecorded(zr::UnrecordedReason::Late)));
    return 0;
}
