#include "dde/DdeIds.h"
#include "dde/LinkName.h"
#include "dde/ValueEncoding.h"
#include "dde/ZRDDEServer.h"
#include "dde/ZRDDEValues.h"

#include <string_view>

std::uint64_t ZRDDEValues::postCount = 0;

bool ZRDDEValues::ZRTopicItem::Setup(HSZ topicHandle, HSZ itemHandle)
{
    topic = topicHandle;
    item = itemHandle;
    ZRBasicString device;
    ZRBasicString name;
    if (!zr::dde::ReadLinkName(ZRDDEServer::DDEInstance(), topic, device) ||
        !zr::dde::ReadLinkName(ZRDDEServer::DDEInstance(), item, name)) {
        return false;
    }
    // A filter or hour type that the client writes in the item is passed on.
    variable.Setup(device + u"." + ToUpperCase(name));
    if (!variable.Lock()) {
        return false;
    }
    ZRDeviceDriver::tagSVariableInfo info;
    decimals = variable.Info(info) ? info.decimals : zr::dde::kDefaultDecimals;
    variable.Value(value);
    firstPost = true;
    return true;
}

bool ZRDDEValues::ZRTopicItem::PostsWithoutChange() const
{
    return firstPost || value.type < tagSVariableValue::kBoolean || value.type > tagSVariableValue::kWords;
}

void ZRDDEValues::ZRTopicItem::Prefetch() const
{
    constexpr std::size_t kCacheLine = 64;
    const auto* const memory = reinterpret_cast<const char*>(this);
    for (std::size_t offset = 0; offset < sizeof(*this); offset += kCacheLine) {
        __builtin_prefetch(memory + offset);
    }
}

void ZRDDEValues::ZRTopicItem::Update()
{
    tagSVariableValue fresh;
    variable.Value(fresh);
    if (!IsUnchanged(fresh)) {
        Store(fresh);
        Post();  // firstPost stays: after a change at first, the next unchanged value is posted once more; meant
        return;
    }
    if (firstPost) {
        firstPost = false;
        Post();
    }
}

// Only values of type 1 to 4 can be unchanged: any other is posted each time, and that is meant.
bool ZRDDEValues::ZRTopicItem::IsUnchanged(const tagSVariableValue& fresh) const
{
    if (fresh.type != value.type) {
        return false;
    }
    switch (fresh.type) {
        case tagSVariableValue::kBoolean:
            return fresh.boolean == value.boolean;
        case tagSVariableValue::kNumber:
            // What is no number equals everything, and that is meant: going to NaN or back is no change.
            return !(fresh.number < value.number || fresh.number > value.number);
        case tagSVariableValue::kText:
            // Up to a zero, if there is one within.
            return std::u16string_view(fresh.text.CStr()) == value.text.CStr();
        case tagSVariableValue::kWords:
            return fresh.first == value.first && fresh.second == value.second;
        default:
            return false;
    }
}

// The payload of the type alone: the others stay as they were, so that a boolean goes on to publish the number that its
// record had. Meant.
void ZRDDEValues::ZRTopicItem::Store(const tagSVariableValue& fresh)
{
    value.type = fresh.type;
    switch (fresh.type) {
        case tagSVariableValue::kBoolean:
            value.boolean = fresh.boolean;
            break;
        case tagSVariableValue::kNumber:
            value.number = fresh.number;
            break;
        case tagSVariableValue::kText:
            value.text = fresh.text;
            break;
        case tagSVariableValue::kWords:
            value.first = fresh.first;
            value.second = fresh.second;
            break;
        default:
            break;
    }
}

// DDE calls back for the data before it returns, so value must be complete by now.
void ZRDDEValues::ZRTopicItem::Post() const
{
    ++postCount;
    DdePostAdvise(ZRDDEServer::DDEInstance(), topic, item);
}

HDDEDATA ZRDDEValues::ZRTopicItem::CreateData(UINT format) const
{
    const DWORD instance = ZRDDEServer::DDEInstance();
    if (format == ZRDDEServer::XlTableFormat()) {
        auto table = zr::dde::EncodeXlTable(value.number);
        return DdeCreateDataHandle(instance, table.data(), static_cast<DWORD>(table.size()), 0, item, format, 0);
    }
    auto text = zr::dde::EncodeText(value.number, decimals, ZRDDEServer::UseLocalNumberFormat());
    return DdeCreateDataHandle(instance, text.data(), static_cast<DWORD>(text.size()), 0, item,
                               zr::dde::kFormatOfTextForm, 0);
}
