// How a connection is made, what is said when it isn't, and that no password is ever said.
#include "integration/postgres/LoopbackListener.h"
#include "integration/postgres/PostgresFixture.h"
#include "support/Environment.h"
#include "support/ManualClock.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <thread>

namespace zr::test {
namespace {

constexpr const char* kSecret = "s3cr3t-of-the-plant";

std::string ErrorOf(const std::string& text)
{
    PostgresConnection connection(text, PostgresRole::Writer, {});
    EXPECT_FALSE(connection.Open());
    EXPECT_FALSE(Contains(connection.Error(), kSecret)) << connection.Error();
    return connection.Error();
}

TEST(PostgresConnection, AWrongPasswordIsToldButNotSaid)
{
    const std::string error = ErrorOf(ServerTcpText(1) + " password=" + kSecret);
    EXPECT_TRUE(error.starts_with("127.0.0.1:")) << error;
    EXPECT_TRUE(Contains(error, "/postgres: ")) << error;
    EXPECT_TRUE(Contains(error, "password authentication failed for user")) << error;
}

TEST(PostgresConnection, ThePasswordComesFromTheTextOrFromAFile)
{
    const std::string password = FromEnvironment("ZR_POSTGRES_PASSWORD");
    PostgresConnection byText(ServerTcpText(1) + " password=" + password, PostgresRole::Writer, {});
    EXPECT_TRUE(byText.Open()) << byText.Error();
    const TempFolder folder;
    const std::filesystem::path file = folder.Write("pgpass", "127.0.0.1:*:postgres:kestrix:" + password + "\n");
    std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    PostgresConnection byFile(ServerTcpText(1) + " passfile=" + file.string(), PostgresRole::Writer, {});
    EXPECT_TRUE(byFile.Open()) << byFile.Error();
}

TEST(PostgresConnection, AMissingPasswordIsTold)
{
    const Environment none("PGPASSFILE", "/nowhere");
    EXPECT_TRUE(Contains(ErrorOf(ServerTcpText(1)), "no password supplied"));
}

TEST(PostgresConnection, ADatabaseThatIsNotThereIsNamed)
{
    const std::string error = ErrorOf(ServerText(1) + " dbname=nowhere");
    EXPECT_TRUE(Contains(error, "/nowhere: ")) << error;
    EXPECT_TRUE(Contains(error, "does not exist")) << error;
}

TEST(PostgresConnection, AHostThatIsNotThereIsNamed)
{
    EXPECT_TRUE(ErrorOf("host=/nowhere port=5433 dbname=plant password=" + std::string(kSecret))
                    .starts_with("/nowhere:5433/plant: "));
}

TEST(PostgresConnection, ATextThatCannotBeReadIsNotShown)
{
    const std::string secret = kSecret;
    const std::string rows[] = {
        "host=127.0.0.1 password=two " + secret,        // blanks want quotes
        "host=127.0.0.1 password='" + secret,           // an open quote
        "host=127.0.0.1 passwort=" + secret,            // no such name
        "postgresql://user:" + secret + "%zz@host/db",  // a wrong escape
        secret,
    };
    for (const std::string& row : rows) {
        EXPECT_EQ(ErrorOf(row), "PostgreSQL: the connection text can't be read: name=value pairs or postgresql://...")
            << row;
    }
}

TEST(PostgresConnection, AnAddressThatIsCutInsideThePasswordIsRefused)
{
    const std::string secret = kSecret;
    for (const std::string& password : {"a@" + secret, "a/" + secret, "a?" + secret, "a#" + secret, secret + "@"}) {
        EXPECT_TRUE(Contains(ErrorOf("postgresql://user:" + password + "@127.0.0.1/db"), "ambiguous")) << password;
    }
}

TEST(PostgresConnection, AnAddressIsAsGoodAsPairs)
{
    const std::string pairs = ServerTcpText(1);
    const std::size_t port = pairs.find("port=") + 5;
    PostgresConnection connection("postgresql://kestrix:" + FromEnvironment("ZR_POSTGRES_PASSWORD") +
                                      "@127.0.0.1:" + pairs.substr(port, pairs.find(' ', port) - port) + "/postgres",
                                  PostgresRole::Writer, {});
    EXPECT_TRUE(connection.Open()) << connection.Error();
    EXPECT_TRUE(Contains(connection.Name(), "127.0.0.1:"));
    EXPECT_TRUE(connection.Name().ends_with("/postgres"));
}

TEST(PostgresConnection, TriesAgainAfterPausesThatGrow)
{
    ManualClock clock;
    LoopbackListener listener;
    PostgresLimits limits;
    limits.connect = std::chrono::milliseconds(50);
    PostgresConnection connection("host=127.0.0.1 sslmode=disable gssencmode=disable port=" + listener.Port(),
                                  PostgresRole::Writer, limits);
    EXPECT_FALSE(connection.Open());
    EXPECT_EQ(listener.HangUpAll(), 1);
    for (const int pause : {250, 500, 1000, 2000, 4000, 5000, 5000}) {
        clock.Advance(std::chrono::milliseconds(pause - 1));
        EXPECT_FALSE(connection.Open());
        EXPECT_FALSE(connection.Error().empty());
        EXPECT_EQ(listener.HangUpAll(), 0) << pause;
        clock.Advance(std::chrono::milliseconds(1));
        EXPECT_FALSE(connection.Open());
        EXPECT_EQ(listener.HangUpAll(), 1) << pause;
    }
}

TEST(PostgresConnection, ACommitIsOnTheDiskWhateverTheServersSettingsSay)
{
    Sql sql(ServerText(1) + " options=-csynchronous_commit=off");
    const PostgresResult result = sql.Run({"select setting from pg_settings where name = 'synchronous_commit'"});
    ASSERT_EQ(result.Rows(), 1);
    EXPECT_EQ(result.Text(0, 0), "on");
}

TEST(PostgresConnection, AStatementThatFailsTellsWhyAndLeavesNothing)
{
    const std::string text = FreshDatabase(1);
    Sql(text).Run({"create table t (v bigint not null)"});
    PostgresConnection connection(text, PostgresRole::Writer, {});
    ASSERT_TRUE(connection.Open());
    const std::vector<PostgresStatement> statements = {{"insert into t values (1)", {}},
                                                       {"insert into t values (null)", {}}};
    EXPECT_FALSE(connection.Run(statements));
    EXPECT_TRUE(Contains(connection.Error(), "null value")) << connection.Error();
    EXPECT_FALSE(connection.IsOpen());
    EXPECT_TRUE(connection.Open());
    EXPECT_EQ(Sql(text).Integer("select count(*) from t"), 0);
}

TEST(PostgresConnection, ValuesOfEveryKindComeBack)
{
    PostgresConnection connection(ServerText(1), PostgresRole::Reader, {});
    ASSERT_TRUE(connection.Open());
    const std::vector<std::uint8_t> bytes = {0, 1, 255};
    PostgresStatement statement{
        "select $1::bigint, $2::double precision, $3::text, $4::bytea, null::bigint,"
        " (-7)::smallint, (-70000)::integer, 'x'::text",
        {}};
    statement.values.Integer(std::numeric_limits<std::int64_t>::min()).Double(-0.0).Text("Zähler").Bytes(bytes);
    PostgresConnection::Results results;
    ASSERT_TRUE(connection.Run({&statement, 1}, results)) << connection.Error();
    const PostgresResult& row = results[0];
    EXPECT_EQ(row.Integer(0, 0), std::numeric_limits<std::int64_t>::min());
    EXPECT_TRUE(std::signbit(row.Double(0, 1)));
    EXPECT_EQ(row.Text(0, 2), "Zähler");
    EXPECT_EQ(std::vector<std::uint8_t>(row.Bytes(0, 3).begin(), row.Bytes(0, 3).end()), bytes);
    EXPECT_TRUE(row.IsNull(0, 4));
    EXPECT_EQ(row.Integer(0, 4), 0);
    EXPECT_EQ(row.Integer(0, 5), -7);
    EXPECT_EQ(row.Integer(0, 6), -70000);
    // Of another type than is asked for.
    EXPECT_EQ(row.Integer(0, 7), 0);
    EXPECT_EQ(row.Double(0, 7), 0.0);
}

}  // namespace
}  // namespace zr::test
