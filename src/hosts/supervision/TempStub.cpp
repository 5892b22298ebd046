#include "siblings/driversupport/recorder/Recorder.h"
#include "siblings/driversupport/store/LoggerStoreAddress.h"
#include "siblings/driversupport/store/MemoryLoggerStore.h"
namespace zr {
class RecorderBooks {}; class RecordLane {}; class Sampler {};
std::vector<std::unique_ptr<LoggerStore>> OpenLoggerNodes(const LoggerStoreAddress& a, std::string&) { std::vector<std::unique_ptr<LoggerStore>> v; for (std::size_t i=0;i<(a.nodes.empty()?1:a.nodes.size());++i) v.push_back(std::make_unique<MemoryLoggerStore>()); return v; }
Recorder::Recorder(std::vector<LoggerDataSet> d, std::vector<std::unique_ptr<LoggerStore>> n, RecorderOptions o):m_options(std::move(o)),m_dataSets(std::move(d)),m_nodes(std::move(n)){}
Recorder::~Recorder(){Stop();}
void Recorder::Bind(){} void Recorder::Unbind(){}
bool Recorder::Start(std::string&){m_isStarted=true;return true;}
void Recorder::Stop(){m_isStarted=false;}
RecorderFigures Recorder::Figures() const { RecorderFigures f; for (auto& d: m_dataSets){ RecorderDataSetFigures s; s.name=d.name; s.period=d.period; s.variables=d.variables.size(); s.lastTime=1763719200000000; s.counts.recorded=12345678; if(d.period==60){s.counts.unrecorded[0]=123456;s.counts.unrecorded[4]=3;} f.dataSets.push_back(s);} for(auto&n:m_nodes){(void)n; RecorderNodeFigures x; x.state=RecorderNodeState::Spooling; x.since=1763719200000000; x.error="/somewhere/demo.zrlog: can't be opened: Permission denied"; x.spoolBytes=12345678; x.spoolLimit=m_options.spoolBytes; x.spooled=123456; f.nodes.push_back(x);} f.total.recorded=37037034; f.total.unrecorded[0]=12; return f; }
std::vector<RecorderNotice> Recorder::TakeNotices(){return {};}
}
