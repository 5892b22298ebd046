#include "siblings/driversupport/ZRDeviceConnection.h"

#include <new>

namespace {

// What a buried connection leaves: no name that a lookup could mean, nothing that runs.
class BuriedConnection final : public ZRDeviceConnection {
public:
    bool CanDoTransaction() const override { return false; }
    void DoTransaction(ZRDeviceTransaction& transaction) override
    {
        transaction.outcome = ZRDeviceTransaction::Outcome::NoLine;
    }
    bool Open() override { return false; }
    void Close() override {}
    bool LoadCfg(const XmlNode&) override { return false; }
    bool CanSetOutput() const override { return false; }
    void SetOutput(int, int, int, int) override {}
};

// It has no members of its own, so that it fits where any other connection was.
static_assert(sizeof(BuriedConnection) == sizeof(ZRDeviceConnection));
static_assert(alignof(BuriedConnection) == alignof(ZRDeviceConnection));

}  // namespace

std::chrono::steady_clock::time_point ZRDeviceConnection::UnitFreeAt(std::uint8_t) const
{
    return std::chrono::steady_clock::time_point::min();
}

void ZRDeviceConnection::Bury(ZRDeviceConnection* connection)
{
    // Only where the base stands first is its address that of the storage; every connection class keeps to it.
    if (connection == nullptr || dynamic_cast<void*>(connection) != static_cast<void*>(connection)) {
        delete connection;
        return;
    }
    void* storage = connection;
    connection->~ZRDeviceConnection();
    ::new (storage) BuriedConnection;
}

void ZRDeviceConnection::operator delete(void* storage)
{
    ::operator delete(storage);
}

void* ZRDeviceConnection::operator new(std::size_t size)
{
    return ::operator new(size);
}
