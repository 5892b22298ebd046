#include "hosts/supervision/RecordedVariables.h"

#include "siblings/driversupport/VariableReference.h"
#include "siblings/driversupport/ZRDeviceDriver.h"

#include <memory>
#include <unordered_set>
#include <utility>

namespace zr::supervision {
namespace {

// The variables of one data set.
class SetMaker {
public:
    SetMaker(const RecordingFile::DataSet& source, std::vector<RecordedVariables::Missing>& missing)
        : m_missing(missing)
    {
        m_set.name = source.name;
        m_set.period = source.period;
        m_set.retention = source.retention;
        for (const RecordingFile::Entry& entry : source.entries) {
            if (entry.variable.IsEmpty()) {
                AddDevice(entry.device);
            } else {
                Add(entry.device, entry.variable);
            }
        }
    }

    LoggerDataSet Take() { return std::move(m_set); }

private:
    void AddDevice(const ZRBasicString& name)
    {
        const ZRDeviceDriver* const driver = ZRDeviceDriver::LockDriver(name.CStr(), false);
        const std::shared_ptr<VariableStore> store = driver != nullptr ? driver->Store() : nullptr;
        if (store == nullptr) {
            m_missing.push_back({m_set.name, name});
            return;
        }
        for (std::size_t i = 0; i < store->Table().Size(); ++i) {
            if (!store->Table()[i].isText) {
                Add(name, store->Table()[i].name);
            }
        }
    }

    void Add(const ZRBasicString& device, const ZRBasicString& variable)
    {
        ZRBasicString reference;
        JoinFilterDriverVariable({}, {}, device, variable, reference);
        if (m_seen.insert(reference).second) {
            m_set.variables.push_back(reference);
        }
    }

    std::vector<RecordedVariables::Missing>& m_missing;
    LoggerDataSet m_set;
    std::unordered_set<ZRBasicString> m_seen;
};

}  // namespace

RecordedVariables LookUpVariables(const RecordingFile& recording)
{
    RecordedVariables recorded;
    for (const RecordingFile::DataSet& set : recording.dataSets) {
        recorded.dataSets.push_back(SetMaker(set, recorded.missing).Take());
    }
    return recorded;
}

}  // namespace zr::supervision
