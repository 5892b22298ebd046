#include "devices/modbus/DeviceProfile.h"

#include "devices/modbus/ProfileReader.h"
#include "siblings/tools/XmlDocument.h"

#include <utility>

namespace zr::modbus {
namespace {

std::shared_ptr<const DeviceProfile> FromDocument(const XmlDocument& document, const std::string& name,
                                                  std::string& error)
{
    ProfileReader reader(name);
    auto content = reader.Read(*document.root);
    if (!content) {
        error = reader.Error();
        return nullptr;
    }
    return std::make_shared<const DeviceProfile>(std::move(*content));
}

}  // namespace

std::shared_ptr<const DeviceProfile> DeviceProfile::Load(const std::filesystem::path& file, std::string& error)
{
    XmlDocument document;
    if (!document.Load(file)) {
        error = document.Error().Message();
        return nullptr;
    }
    return FromDocument(document, file.string(), error);
}

std::shared_ptr<const DeviceProfile> DeviceProfile::LoadText(std::string_view bytes, const std::string& name,
                                                             std::string& error)
{
    XmlDocument document;
    if (!document.LoadText(bytes, name)) {
        error = document.Error().Message();
        return nullptr;
    }
    return FromDocument(document, name, error);
}

DeviceProfile::DeviceProfile(Content content)
    : m_content(std::move(content)), m_table(std::make_shared<const VariableTable>(std::move(m_content.variables)))
{
    m_content.variables.clear();
    std::vector<ReadItem> items;
    items.reserve(m_content.layouts.size());
    for (const VariableLayout& layout : m_content.layouts) {
        items.push_back({layout.function, layout.first, layout.count});
    }
    m_plan = PlanReads(items, m_content.limits);
    m_readOf.resize(items.size());
    for (std::size_t read = 0; read < m_plan.size(); ++read) {
        for (const std::size_t variable : m_plan[read].items)
            m_readOf[variable] = read;
    }
}

}  // namespace zr::modbus
