#include "dde/ZRDDEValues.h"

#include "dde/LinkName.h"
#include "dde/WatchList.h"
#include "siblings/driversupport/ZRDeviceDriver.h"

#include <new>

namespace {

// The items of allItems in its order: walking 100,000 nodes of a map costs several times as much.
zr::dde::WatchList watchList;

}  // namespace

ZRDDEValues::ItemMap ZRDDEValues::allItems;
bool ZRDDEValues::isWatchListCurrent = false;
std::size_t ZRDDEValues::linkCount = 0;

ZRDDEValues::ZRDDEValues(HCONV handle, HSZ) : ZRDDEConversation(handle) {}

ZRDDEValues::~ZRDDEValues()
{
    for (const auto& [key, entry] : items) {
        DeleteItem({entry->topic, entry->item});
    }
    linkCount -= items.size();
}

// The driver stays locked: each connection that is accepted leaves one lock behind, and that is meant.
bool ZRDDEValues::CanConnect(DWORD instance, HSZ topic)
{
    ZRBasicString name;
    return zr::dde::ReadLinkName(instance, topic, name) && ZRDeviceDriver::LockDriver(name.CStr(), false) != nullptr;
}

ZRDDEConversation* ZRDDEValues::Connect(DWORD, HCONV conversation, HSZ topic)
{
    return new (std::nothrow) ZRDDEValues(conversation, topic);
}

// The format plays no part: it is looked at with each reply.
bool ZRDDEValues::AdviseStart(UINT, HSZ topic, HSZ item)
{
    const Key key(topic, item);
    if (items.contains(key)) {
        return true;
    }
    std::shared_ptr<ZRTopicItem> opened = NewItem(key);
    if (opened == nullptr) {
        return false;
    }
    items.emplace(key, std::move(opened));
    ++linkCount;
    return true;
}

void ZRDDEValues::AdviseStop(HSZ topic, HSZ item)
{
    const auto found = items.find({topic, item});
    if (found == items.end()) {
        return;
    }
    DeleteItem(found->first);
    items.erase(found);
    --linkCount;
}

HDDEDATA ZRDDEValues::AdviseRequest(UINT format, HSZ topic, HSZ item)
{
    const auto found = items.find({topic, item});
    return found != items.end() ? found->second->CreateData(format) : nullptr;
}

std::shared_ptr<ZRDDEValues::ZRTopicItem> ZRDDEValues::NewItem(Key key)
{
    auto created = std::make_shared<ZRTopicItem>();
    if (!created->Setup(key.first, key.second)) {
        return nullptr;
    }
    isWatchListCurrent = false;
    allItems.try_emplace(key, created);  // an entry that is there stays, and the new item is private: meant
    ++created->references;
    return created;
}

// Asymmetric to NewItem, and that is meant: the entry has the reference of its creator alone, so that any link on the
// key that ends takes it away.
void ZRDDEValues::DeleteItem(Key key)
{
    const auto found = allItems.find(key);
    if (found == allItems.end()) {
        return;
    }
    ZRTopicItem& watched = *found->second;
    --watched.references;
    if (watched.references < 1) {
        watched.End();
        isWatchListCurrent = false;
        allItems.erase(found);
    }
}

// A post calls back for the data of its links and for nothing else, so no item comes or goes meanwhile.
void ZRDDEValues::UpdateValues()
{
    if (!isWatchListCurrent) {
        watchList.Clear();
        for (const auto& [key, watched] : allItems) {
            watchList.Add(*watched);
        }
        isWatchListCurrent = true;
    }
    watchList.Update();
}
