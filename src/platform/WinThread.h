// Threads under the names of the window framework.
#pragma once

#include <functional>
#include <thread>

// What a thread runs; the result isn't looked at by anybody.
using AFX_THREADPROC = int (*)(void* parameter);

// A thread that was begun. Destroying the object joins it, so whoever owns it must have asked it to end: blocks until
// the procedure returns.
class CWinThread {
public:
    explicit CWinThread(std::thread thread) : m_thread(std::move(thread)) {}
    CWinThread(const CWinThread&) = delete;
    CWinThread& operator=(const CWinThread&) = delete;
    ~CWinThread();

private:
    std::thread m_thread;
};

// Runs procedure(parameter) on a new thread of normal priority and default stack. Owned by the caller. Null when the
// system has no thread to give. Any thread.
[[nodiscard]] CWinThread* AfxBeginThread(AFX_THREADPROC procedure, void* parameter);

namespace zr {

using ThreadStarter = std::function<CWinThread*(AFX_THREADPROC procedure, void* parameter)>;
// What AfxBeginThread does from now on; an empty one sets the system's again. For tests. Call it only while no other
// thread begins one.
void SetThreadStarter(ThreadStarter starter);

}  // namespace zr
