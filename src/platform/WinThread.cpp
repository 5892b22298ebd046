#include "platform/WinThread.h"

#include <memory>
#include <system_error>

namespace {

zr::ThreadStarter& Starter()
{
    static zr::ThreadStarter starter;
    return starter;
}

}  // namespace

CWinThread::~CWinThread()
{
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

CWinThread* AfxBeginThread(AFX_THREADPROC procedure, void* parameter)
{
    if (Starter()) {
        return Starter()(procedure, parameter);
    }
    try {
        return std::make_unique<CWinThread>(std::thread(procedure, parameter)).release();
    } catch (const std::system_error&) {
        return nullptr;
    }
}

void zr::SetThreadStarter(ThreadStarter starter)
{
    Starter() = std::move(starter);
}
