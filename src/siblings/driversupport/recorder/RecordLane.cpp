#include "siblings/driversupport/recorder/RecordLane.h"

#include "platform/Clock.h"
#include "siblings/driversupport/store/LoggerNodes.h"

#include <algorithm>
#include <utility>

namespace zr {
namespace {

using std::chrono::milliseconds;

// While the store is away it is looked for at this pace.
constexpr milliseconds kRetry{2000};
constexpr milliseconds kUpkeep{10000};
constexpr milliseconds kUpkeepAfterFailure{60000};
constexpr milliseconds kLongestRest{1000};
// Samples that go into the spool, and out of it, at a time.
constexpr std::size_t kSpoolPortion = 65536;
constexpr std::size_t kResendPortion = 200000;
// What may wait in memory: some 20 MB, 50 s of 20,000 samples a second.
constexpr std::size_t kMostLoad = 1u << 20;

std::size_t LoadOf(const RecordBatch& batch)
{
    return batch.values.size() + sizeof batch / sizeof(RecordedValue);
}

std::vector<LoggerDataSet> OnNode(std::span<const LoggerDataSet> dataSets, std::size_t nodes, std::size_t node)
{
    std::vector<LoggerDataSet> own(dataSets.begin(), dataSets.end());
    for (LoggerDataSet& set : own) {
        std::erase_if(set.variables, [&](const ZRBasicString& name) { return NodeOfVariable(name, nodes) != node; });
    }
    return own;
}

}  // namespace

RecordLane::RecordLane(std::span<const LoggerDataSet> dataSets, std::size_t nodes, LoggerStore& store,
                       RecorderBooks& books, RecordLaneOptions options)
    : m_options(std::move(options)),
      m_books(books),
      m_store(store),
      m_dataSets(dataSets.size()),
      m_writer(store, m_names, OnNode(dataSets, nodes, m_options.node)),
      m_spool(m_options.spoolFolder, m_options.spoolBytes, m_names)
{
    for (const LoggerDataSet& set : dataSets) {
        m_names.DataSet(set.name);
        for (const ZRBasicString& name : set.variables) {
            if (NodeOfVariable(name, nodes) == m_options.node) {
                m_names.Variable(name);
            }
        }
    }
    m_figures.variables = m_names.Variables();
    m_figures.spoolLimit = m_options.spoolBytes;
    TellFigures(true);
}

RecordLane::~RecordLane()
{
    Stop();
}

void RecordLane::SetInfoCodes(std::vector<std::int32_t> infoCodes)
{
    const std::lock_guard lock(m_guard);
    m_newInfoCodes = std::move(infoCodes);
}

bool RecordLane::Push(std::vector<RecordBatch>&& batches)
{
    std::size_t load = 0;
    for (const RecordBatch& batch : batches) {
        load += LoadOf(batch);
    }
    {
        const std::lock_guard lock(m_guard);
        // What is more than all that may wait is taken when nothing does.
        if (m_load > 0 && m_load + load > kMostLoad) {
            return false;
        }
        m_load += load;
        std::move(batches.begin(), batches.end(), std::back_inserter(m_queue));
    }
    m_pushed.notify_one();
    return true;
}

void RecordLane::Start()
{
    m_isBackToBeTold = !m_spool.IsEmpty();
    m_thread = std::thread([this] { Run(); });
}

void RecordLane::Stop()
{
    if (!m_thread.joinable()) {
        return;
    }
    {
        const std::lock_guard lock(m_guard);
        m_isStopping = true;
    }
    m_pushed.notify_one();
    m_thread.join();
    m_isStopping = false;
}

void RecordLane::Run()
{
    for (;;) {
        const milliseconds rest = Step();
        std::unique_lock lock(m_guard);
        m_pushed.wait_for(lock, rest, [this] { return m_isStopping || !m_queue.empty(); });
        if (m_isStopping) {
            break;
        }
    }
    Finish();
}

milliseconds RecordLane::Step()
{
    TakePushed();
    OpenSpool();
    // A store that works gets first what is older; one that is away may take its time to say so, and what is new is
    // made safe before.
    if (!m_isStoreAway && !m_spool.IsEmpty()) {
        Resend();
    }
    ServeWaiting();
    if (m_isStoreAway && !m_spool.IsEmpty() && IsTimeToTry()) {
        Resend();
    }
    if (m_isBackToBeTold && !m_isStoreAway && m_spool.IsEmpty()) {
        m_isBackToBeTold = false;
        Tell(RecorderNotice::Kind::StoreBack, std::exchange(m_resent, 0), "");
    }
    TellDamage();
    const milliseconds rest = m_isStoreAway                              ? std::min(kRetry, kLongestRest)
                              : !m_spool.IsEmpty() || !m_waiting.empty() ? milliseconds(0)
                                                                         : LookAfterStore();
    TellFigures(false);
    return rest;
}

void RecordLane::Finish()
{
    TakePushed();
    OpenSpool();
    ServeWaiting();
    for (const RecordBatch& batch : m_waiting) {
        m_books.NotRecorded(batch.dataSet, UnrecordedReason::NoRoom, batch.values.size());
    }
    DropWaiting(m_waiting.size());
    TellDamage();
    TellFigures(true);
}

void RecordLane::TakePushed()
{
    const std::lock_guard lock(m_guard);
    std::move(m_queue.begin(), m_queue.end(), std::back_inserter(m_waiting));
    m_queue.clear();
    for (std::size_t i = 0; i < std::min(m_newInfoCodes.size(), m_names.Variables()); ++i) {
        m_names.SetInfoCode(static_cast<int>(i), m_newInfoCodes[i]);
    }
    m_newInfoCodes.clear();
}

void RecordLane::OpenSpool()
{
    if (m_spool.IsOpen()) {
        return;
    }
    SpoolServes(m_spool.Open());
    m_isBackToBeTold = m_isBackToBeTold || !m_spool.IsEmpty();
}

void RecordLane::ServeWaiting()
{
    if (m_waiting.empty()) {
        return;
    }
    const bool isFirst = m_spool.IsEmpty();
    if (!m_isStoreAway && isFirst && AppendWaiting()) {
        return;
    }
    if (!SpoolWaiting() && isFirst && m_isStoreAway && IsTimeToTry()) {
        AppendWaiting();
    }
}

bool RecordLane::AppendWaiting()
{
    if (!m_writer.Append(m_waiting, m_entered)) {
        StoreFailed();
        return false;
    }
    for (std::size_t i = 0; i < m_waiting.size(); ++i) {
        Acknowledge(m_waiting[i], m_entered[i], false);
    }
    DropWaiting(m_waiting.size());
    StoreWorks();
    return true;
}

bool RecordLane::SpoolWaiting()
{
    std::size_t most = kSpoolPortion;
    while (!m_waiting.empty()) {
        std::size_t count = 0;
        for (std::size_t samples = 0; count < m_waiting.size() && (count == 0 || samples < most); ++count) {
            samples += m_waiting[count].values.size();
        }
        const std::span<const RecordBatch> portion = std::span(m_waiting).first(count);
        if (!m_spool.Append(portion)) {
            if (count > 1) {
                // Where there is no room for many there may be some for one.
                most = 0;
                continue;
            }
            SpoolServes(false);
            return false;
        }
        SpoolServes(true);
        for (const RecordBatch& batch : portion) {
            Acknowledge(batch, batch.values.size(), true);
        }
        DropWaiting(count);
    }
    return true;
}

void RecordLane::SpoolServes(bool does)
{
    if (std::exchange(m_isSpoolFailing, !does) == !does) {
        return;
    }
    Tell(does ? RecorderNotice::Kind::SpoolBack : RecorderNotice::Kind::SpoolFailed, 0, m_spool.Error());
}

void RecordLane::Resend()
{
    const std::span<const RecordBatch> batches = m_spool.Front(kResendPortion);
    if (batches.empty()) {
        return;
    }
    if (!m_writer.Append(batches, m_entered)) {
        StoreFailed();
        return;
    }
    for (std::size_t i = 0; i < batches.size(); ++i) {
        Acknowledge(batches[i], m_entered[i], false);
        m_resent += m_entered[i];
    }
    m_spool.DropFront();
    StoreWorks();
}

void RecordLane::StoreFailed()
{
    m_nextTry = m_options.clock->Steady() + kRetry;
    m_writer.Forget();
    if (!std::exchange(m_isStoreAway, true)) {
        m_isBackToBeTold = true;
        Tell(RecorderNotice::Kind::StoreAway, 0, m_writer.Error());
    }
}

void RecordLane::StoreWorks()
{
    m_isStoreAway = false;
    // One that was full isn't any more.
    m_isSpoolFailing = m_isSpoolFailing && !(m_spool.IsOpen() && m_spool.IsEmpty());
}

bool RecordLane::IsTimeToTry() const
{
    return m_options.clock->Steady() >= m_nextTry;
}

// Upkeep fills the pauses; a slice of it is short enough for what is pushed meanwhile.
milliseconds RecordLane::LookAfterStore()
{
    const auto now = m_options.clock->Steady();
    const bool isNews = m_writer.AreSetsDue() && m_lastFinding.empty();
    if (now < m_nextUpkeep && !isNews) {
        return std::min(std::chrono::ceil<milliseconds>(m_nextUpkeep - now), kLongestRest);
    }
    const bool areSetsThere = m_writer.SetDataSets();
    const LoggerStore::Upkeep upkeep =
        areSetsThere ? m_store.Maintain(m_upkeepTime.Take(UtcNow(), now)) : LoggerStore::Upkeep::Failed;
    for (std::string& finding : m_store.TakeFindings()) {
        Tell(RecorderNotice::Kind::Finding, 0, std::move(finding));
    }
    if (upkeep == LoggerStore::Upkeep::More) {
        return milliseconds(0);
    }
    const bool hasFailed = upkeep == LoggerStore::Upkeep::Failed;
    const std::string finding = !hasFailed ? "" : areSetsThere ? m_store.Error() : m_writer.Error();
    if (hasFailed && finding != m_lastFinding) {
        Tell(RecorderNotice::Kind::Finding, 0, finding);
    }
    m_lastFinding = finding;
    m_nextUpkeep = now + (hasFailed ? kUpkeepAfterFailure : kUpkeep);
    return kLongestRest;
}

void RecordLane::Acknowledge(const RecordBatch& batch, std::size_t samples, bool isSpooled)
{
    if (isSpooled) {
        m_books.Spooled(batch.dataSet, batch.time);
    } else {
        m_books.Recorded(batch.dataSet, samples, batch.time);
    }
    if (samples < batch.values.size()) {
        m_books.NotRecorded(batch.dataSet, UnrecordedReason::ClockSetBack, batch.values.size() - samples);
    } else if (!isSpooled) {
        m_books.Fine(batch.dataSet, UnrecordedReason::ClockSetBack);
    }
    if (m_options.acknowledged) {
        m_options.acknowledged({isSpooled, m_options.node, batch.time, &m_names.DataSetName(batch.dataSet), samples});
    }
}

void RecordLane::DropWaiting(std::size_t batches)
{
    const auto end = m_waiting.begin() + static_cast<std::ptrdiff_t>(batches);
    std::size_t load = 0;
    for (auto batch = m_waiting.begin(); batch != end; ++batch) {
        load += LoadOf(*batch);
    }
    m_waiting.erase(m_waiting.begin(), end);
    const std::lock_guard lock(m_guard);
    m_load -= load;
}

void RecordLane::TellDamage()
{
    for (Spool::Damage& damage : m_spool.TakeDamage()) {
        // Whose samples they were is lost with them.
        m_books.NotRecorded(-1, UnrecordedReason::Damaged, damage.samples);
        Tell(RecorderNotice::Kind::SpoolDamaged, damage.samples, std::move(damage.text));
    }
}

void RecordLane::TellFigures(bool isStopped)
{
    const RecorderNodeState state = isStopped                           ? RecorderNodeState::Stopped
                                    : m_isStoreAway && m_isSpoolFailing ? RecorderNodeState::Full
                                    : m_isStoreAway                     ? RecorderNodeState::Spooling
                                    : !m_spool.IsEmpty()                ? RecorderNodeState::Resending
                                                                        : RecorderNodeState::Recording;
    if (state != m_figures.state) {
        m_figures.state = state;
        m_figures.since = UtcNow();
    }
    m_figures.error = m_isStoreAway ? m_writer.Error() : m_isSpoolFailing ? m_spool.Error() : "";
    m_figures.spoolBytes = m_spool.Bytes();
    m_figures.spooled = m_spool.Samples();
    m_figures.queued = 0;
    for (const RecordBatch& batch : m_waiting) {
        m_figures.queued += batch.values.size();
    }
    std::vector<std::uint64_t> spooledOfSets;
    for (std::size_t i = 0; i < m_dataSets; ++i) {
        spooledOfSets.push_back(m_spool.Samples(static_cast<int>(i)));
    }
    m_books.SetNode(m_options.node, m_figures, std::move(spooledOfSets));
}

std::int64_t RecordLane::UtcNow() const
{
    return std::chrono::duration_cast<std::chrono::microseconds>(m_options.clock->Utc().time_since_epoch()).count();
}

void RecordLane::Tell(RecorderNotice::Kind kind, std::uint64_t count, std::string text)
{
    RecorderNotice notice;
    notice.kind = kind;
    notice.node = m_options.node;
    notice.count = count;
    notice.text = std::move(text);
    m_books.AddNotice(std::move(notice));
}

}  // namespace zr
