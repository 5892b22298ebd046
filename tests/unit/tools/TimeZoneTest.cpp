#include "siblings/tools/TimeZone.h"

#include "support/ZoneChanges.h"

#include <gtest/gtest.h>
#include <ctime>
#include <string>

namespace zr {
namespace {

using test::ZoneChange;
using test::ZoneChanges;

constexpr std::int64_t k2000 = 946684800;
constexpr std::int64_t k2037 = 2114380800;

TimeZone Paris()
{
    return test::ZoneOfTable("Europe/Paris");
}

TEST(TimeZone, WithoutMoreItIsUtc)
{
    const TimeZone utc;
    EXPECT_EQ(utc.ToLocal(k2000), k2000);
    EXPECT_EQ(utc.ToUtc(k2000), k2000);
}

TEST(TimeZone, TheTableHoldsAllZones)
{
    std::size_t count = 0;
    for (const auto& [name, changes] : ZoneChanges()) {
        count += changes.size();
    }
    EXPECT_EQ(count, 1341u);
}

TEST(TimeZone, OfASkippedLocalTimeThereIsTheMomentOfTheChange)
{
    const TimeZone paris = Paris();
    const ZoneChange spring = ZoneChanges().at("Europe/Paris")[0];
    EXPECT_EQ(paris.ToUtc(spring.lastLocalBefore), spring.utc - 1);
    EXPECT_EQ(paris.ToUtc(spring.lastLocalBefore + 1), spring.utc);
    EXPECT_EQ(paris.ToUtc(spring.lastLocalBefore + 1800), spring.utc);
    EXPECT_EQ(paris.ToUtc(spring.firstLocalAfter), spring.utc);
    EXPECT_EQ(paris.ToUtc(spring.firstLocalAfter + 1), spring.utc + 1);
}

TEST(TimeZone, OfALocalTimeThatOccursTwiceThereIsTheFirst)
{
    const TimeZone paris = Paris();
    const ZoneChange autumn = ZoneChanges().at("Europe/Paris")[1];
    EXPECT_EQ(paris.ToUtc(autumn.firstLocalAfter), autumn.utc - 3600);
    EXPECT_EQ(paris.ToUtc(autumn.lastLocalBefore), autumn.utc - 1);
    EXPECT_EQ(paris.ToUtc(autumn.lastLocalBefore + 1), autumn.utc + 3600);
    EXPECT_EQ(paris.ToLocal(autumn.utc), paris.ToLocal(autumn.utc - 3600));
}

TEST(TimeZone, SpansMeetAtTheChanges)
{
    const TimeZone paris = Paris();
    const ZoneChange spring = ZoneChanges().at("Europe/Paris")[0];
    const ZoneChange autumn = ZoneChanges().at("Europe/Paris")[1];
    const TimeZone::Span summer = paris.SpanAt(spring.utc);
    EXPECT_EQ(summer.begin, spring.utc);
    EXPECT_EQ(summer.end, autumn.utc);
    EXPECT_EQ(summer.offset, 7200);
    EXPECT_EQ(paris.SpanAt(spring.utc - 1).end, spring.utc);
}

TEST(TimeZone, TheSystemsZoneAgreesWithTheSystem)
{
    const TimeZone zone = TimeZone::System();
    for (std::int64_t utc = k2000; utc < k2037; utc += 20 * 86400 + 3607) {
        const std::time_t seconds = utc;
        const std::tm* const parts = std::localtime(&seconds);
        ASSERT_NE(parts, nullptr);
        const std::int64_t ofDay = (zone.ToLocal(utc) % 86400 + 86400) % 86400;
        ASSERT_EQ(ofDay, (parts->tm_hour * 60 + parts->tm_min) * 60 + parts->tm_sec);
    }
}

TEST(TimeZone, AnUnknownNameIsRefusedByName)
{
    TimeZone zone = Paris();
    std::string error;
    EXPECT_FALSE(TimeZone::Find("Europe/Nowhere", zone, error));
    EXPECT_NE(error.find("Europe/Nowhere"), std::string::npos);
    EXPECT_EQ(zone.ToLocal(k2000), k2000 + 3600);
    EXPECT_FALSE(TimeZone::Find("", zone, error));
    EXPECT_FALSE(TimeZone::Find("../../etc/passwd", zone, error));
}

TEST(TimeZone, UtcIsKnownEverywhere)
{
    TimeZone zone = Paris();
    std::string error;
    ASSERT_TRUE(TimeZone::Find("Etc/UTC", zone, error)) << error;
    EXPECT_EQ(zone.ToLocal(k2000), k2000);
}

#ifndef _WIN32
// Windows has no zones by these names.
TEST(TimeZone, ZonesByNameChangeWhenTheTableSays)
{
    for (const auto& [name, changes] : ZoneChanges()) {
        TimeZone zone;
        std::string error;
        ASSERT_TRUE(TimeZone::Find(name, zone, error)) << error;
        for (const ZoneChange& change : changes) {
            ASSERT_EQ(zone.SpanAt(change.utc - 1).offset, change.before) << name << ' ' << change.utc;
            ASSERT_EQ(zone.SpanAt(change.utc).offset, change.after) << name << ' ' << change.utc;
            ASSERT_EQ(zone.ToLocal(change.utc - 1), change.lastLocalBefore) << name;
            ASSERT_EQ(zone.ToLocal(change.utc), change.firstLocalAfter) << name;
        }
    }
}

TEST(TimeZone, ZonesByNameDontChangeWhereTheTableSaysNothing)
{
    for (const auto& [name, changes] : ZoneChanges()) {
        TimeZone zone;
        std::string error;
        ASSERT_TRUE(TimeZone::Find(name, zone, error)) << error;
        std::size_t next = 0;
        for (std::int64_t utc = k2000; utc < k2037;) {
            const TimeZone::Span span = zone.SpanAt(utc);
            // Some changes are of the name alone.
            while (next < changes.size() && changes[next].before == changes[next].after) {
                ++next;
            }
            if (span.begin >= k2000) {
                ASSERT_LT(next, changes.size()) << name;
                ASSERT_EQ(span.begin, changes[next].utc) << name;
                ++next;
            }
            utc = span.end;
        }
    }
}
#endif

TEST(TimeZone, EveryLocalTimeLeadsBackToItself)
{
    for (const auto& [name, changes] : ZoneChanges()) {
        const TimeZone zone = test::ZoneOfTable(name);
        for (const ZoneChange& change : changes) {
            for (std::int64_t utc = change.utc - 90000; utc < change.utc + 90000; utc += 1799) {
                const std::int64_t local = zone.ToLocal(utc);
                const std::int64_t back = zone.ToUtc(local);
                ASSERT_LE(back, utc) << name;
                ASSERT_EQ(zone.ToLocal(back), local) << name;
            }
        }
    }
}

TEST(TimeZone, AtEveryChangeASkippedTimeIsItsMomentAndADoubledOneTheFirst)
{
    for (const auto& [name, changes] : ZoneChanges()) {
        const TimeZone zone = test::ZoneOfTable(name);
        for (const ZoneChange& change : changes) {
            for (std::int64_t local = change.lastLocalBefore + 1; local < change.firstLocalAfter; local += 60) {
                ASSERT_EQ(zone.ToUtc(local), change.utc) << name;
            }
            for (std::int64_t local = change.firstLocalAfter; local <= change.lastLocalBefore; local += 60) {
                ASSERT_EQ(zone.ToUtc(local), local - change.before) << name;
            }
        }
    }
}

}  // namespace
}  // namespace zr
