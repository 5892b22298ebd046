// The conversation that publishes live variables: topic = device, item = variable of that device.
#pragma once

#include "dde/DdeHandleOrder.h"
#include "dde/ZRDDEConversation.h"
#include "siblings/driversupport/ZRDriverVariable.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>

// The links of one conversation, and for the whole program the items that UpdateValues watches. A conversation is not
// tied to its topic: each link brings its own.
//
// Only the first conversation on a (topic, item) gets the item that UpdateValues watches. A later one gets a private
// item, whose value stays as it was when the link began; it is woken whenever the watched one is posted. The watched
// item goes with the first link on its key that ends, whoever's that is. All of that is meant.
//
// DDE thread only, while a server is started.
class ZRDDEValues : public ZRDDEConversation {
public:
    class ZRTopicItem;
    // Topic and item. Names are not compared: what DDE takes for one text has one handle.
    using Key = std::pair<HSZ, HSZ>;

    // topic isn't kept.
    ZRDDEValues(HCONV handle, HSZ topic);
    // Ends the links.
    ~ZRDDEValues() override;

    bool AdviseStart(UINT format, HSZ topic, HSZ item) override;
    void AdviseStop(HSZ topic, HSZ item) override;
    HDDEDATA AdviseRequest(UINT format, HSZ topic, HSZ item) override;

    // For ZRDDEServer::AddService. Whether there is a device of the topic's name; it stays locked once more each time.
    static bool CanConnect(DWORD instance, HSZ topic);
    static ZRDDEConversation* Connect(DWORD instance, HCONV conversation, HSZ topic);

    // Always a new item, with one reference; it is watched if no other item of its key is. Null if there is no such
    // variable.
    static std::shared_ptr<ZRTopicItem> NewItem(Key key);
    // Takes one reference from the watched item of that key, and ends it with the last one.
    static void DeleteItem(Key key);
    // Reads every watched item and posts those that changed. To be called periodically.
    static void UpdateValues();

    // What the whole program publishes now, and has posted since it began.
    [[nodiscard]] static std::size_t LinkCount() { return linkCount; }
    [[nodiscard]] static std::size_t WatchedItemCount() { return allItems.size(); }
    [[nodiscard]] static std::uint64_t PostCount() { return postCount; }

private:
    // Both maps share the ownership of an item. Its count of references is the publication's bookkeeping and says when
    // it ends; a conversation that still has it after that goes on to reply with its last value.
    using ItemMap = std::map<Key, std::shared_ptr<ZRTopicItem>, zr::dde::TopicItemOrder>;

    static ItemMap allItems;
    static bool isWatchListCurrent;  // whether UpdateValues has seen what came to allItems and went
    static std::size_t linkCount;
    static std::uint64_t postCount;

    ItemMap items;
};

// Joins a (topic, item) to a live variable, keeps the last value that was seen, and decides when to post it.
class ZRDDEValues::ZRTopicItem {
public:
    ZRTopicItem() = default;
    ZRTopicItem(const ZRTopicItem&) = delete;
    ZRTopicItem& operator=(const ZRTopicItem&) = delete;

    // Names of 1 to kMaxNameLength units; the variable's is taken in upper case. False if there is no such variable.
    bool Setup(HSZ topicHandle, HSZ itemHandle);
    // Posts if the value changed, if it is the first one after Setup, or if it has no type of 1 to 4.
    void Update();
    // The reply in a format, given over to the caller: the table form for "XlTable", the text form for any other. Null
    // if DDE has no room. It always tells the number of the last value, 0 if there never was one, whatever its type.
    HDDEDATA CreateData(UINT format) const;

    // Whether the next Update posts though the value was not written.
    [[nodiscard]] bool PostsWithoutChange() const;
    // Has the processor fetch what Update reads.
    void Prefetch() const;

    // Lets the variable go: the value stays as it is.
    void End() { variable.Unlock(); }

    // In the order of the record. The handles are neither kept nor freed: the links keep them.
    HSZ topic = nullptr;
    HSZ item = nullptr;
    ZRDriverVariable variable;
    tagSVariableValue value;
    std::int32_t references = 0;
    std::int32_t decimals = 0;  // of the text form
    bool firstPost = false;

private:
    [[nodiscard]] bool IsUnchanged(const tagSVariableValue& fresh) const;
    void Store(const tagSVariableValue& fresh);
    void Post() const;
};
