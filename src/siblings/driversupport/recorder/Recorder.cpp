#include "siblings/driversupport/recorder/Recorder.h"

#include "platform/Clock.h"
#include "siblings/driversupport/recorder/RecorderBooks.h"
#include "siblings/driversupport/recorder/RecordLane.h"
#include "siblings/driversupport/recorder/Sampler.h"
#include "siblings/driversupport/recorder/SpoolMove.h"

#include <utility>

namespace zr {

Recorder::Recorder(std::vector<LoggerDataSet> dataSets, std::vector<std::unique_ptr<LoggerStore>> nodes,
                   RecorderOptions options)
    : m_options(std::move(options)),
      m_dataSets(std::move(dataSets)),
      m_nodes(std::move(nodes)),
      m_books(std::make_unique<RecorderBooks>(m_dataSets, m_nodes.size()))
{
    if (m_options.clock == nullptr) {
        m_options.clock = &CurrentClock();
    }
    std::vector<RecordLane*> lanes;
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        m_lanes.push_back(std::make_unique<RecordLane>(
            m_dataSets, m_nodes.size(), *m_nodes[i], *m_books,
            RecordLaneOptions{i, m_options.spoolFolder / SpoolFolderName(i, m_nodes.size()), m_options.spoolBytes,
                              m_options.clock, m_options.acknowledged}));
        lanes.push_back(m_lanes.back().get());
    }
    m_sampler = std::make_unique<Sampler>(m_dataSets, std::move(lanes), *m_books, *m_options.clock);
}

Recorder::~Recorder()
{
    Stop();
}

void Recorder::Bind()
{
    m_sampler->Bind();
}

void Recorder::Unbind()
{
    m_sampler->Unbind();
}

bool Recorder::Start(std::string& error)
{
    if (m_isStarted) {
        return true;
    }
    std::vector<RecordLane*> lanes;
    for (const std::unique_ptr<RecordLane>& lane : m_lanes) {
        if (lane->OwnSpool().Take() == ProcessLock::Result::HeldByOther) {
            error = lane->OwnSpool().Error();
            return false;
        }
        lanes.push_back(lane.get());
    }
    MoveForeignSpools(m_options.spoolFolder, lanes, *m_books);
    for (const std::unique_ptr<RecordLane>& lane : m_lanes) {
        lane->Start();
    }
    m_sampler->Start();
    m_isStarted = true;
    return true;
}

void Recorder::Stop()
{
    if (!m_isStarted) {
        return;
    }
    m_sampler->Stop();
    for (const std::unique_ptr<RecordLane>& lane : m_lanes) {
        lane->Stop();
    }
    m_isStarted = false;
}

RecorderFigures Recorder::Figures() const
{
    return m_books->Figures();
}

std::vector<RecorderNotice> Recorder::TakeNotices()
{
    return m_books->TakeNotices();
}

}  // namespace zr
