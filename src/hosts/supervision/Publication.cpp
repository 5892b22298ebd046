#include "hosts/supervision/Publication.h"

#include "dde/ZRDDEValues.h"
#include "platform/Ddeml.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <utility>

namespace zr::supervision {

Publication::Publication(std::string serviceName, std::chrono::milliseconds period)
    : m_serviceName(std::move(serviceName)), m_period(period)
{
}

bool Publication::Begin()
{
    if (!m_server.Start()) {
        return false;
    }
    m_server.AddService(Utf8ToUtf16(m_serviceName).CStr(), &ZRDDEValues::CanConnect, &ZRDDEValues::Connect);
    m_isRunning = true;
    return true;
}

void Publication::End()
{
    if (m_isRunning) {
        m_mergedBefore += ddeml::GetStatistics(ZRDDEServer::DDEInstance()).merged;
        m_server.Stop();
        m_isRunning = false;
    }
}

void Publication::Run(std::chrono::milliseconds duration)
{
    using std::chrono::steady_clock;
    const auto end = steady_clock::now() + duration;
    do {
        const auto now = steady_clock::now();
        if (now >= m_nextUpdate) {
            m_nextUpdate = now + m_period;
            ZRDDEValues::UpdateValues();
        }
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(std::min(m_nextUpdate, end) - now);
        ddeml::Dispatch(std::max(wait, std::chrono::milliseconds(0)));
    } while (steady_clock::now() < end);
}

Publication::Figures Publication::Count() const
{
    Figures figures;
    figures.posts = ZRDDEValues::PostCount();
    figures.merged = m_mergedBefore;
    if (m_isRunning) {
        figures.conversations = m_server.ConversationCount();
        figures.links = ZRDDEValues::LinkCount();
        figures.merged += ddeml::GetStatistics(ZRDDEServer::DDEInstance()).merged;
    }
    return figures;
}

}  // namespace zr::supervision
