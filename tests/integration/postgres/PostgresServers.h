// The private servers that scripts/test-postgres has started for this program.
#pragma once

#include "siblings/driversupport/store/PostgresConnection.h"
#include "support/Process.h"

#include <gtest/gtest.h>
#include <atomic>
#include <cstdlib>
#include <string>
#include <vector>

namespace zr::test {

inline std::string FromEnvironment(const std::string& name)
{
    const char* const value = std::getenv(name.c_str());
    EXPECT_NE(value, nullptr) << name << ": run this program by scripts/test-postgres";
    return value != nullptr ? value : "";
}

// The servers count from 1.
inline std::string ServerText(int server)
{
    return FromEnvironment("ZR_POSTGRES_" + std::to_string(server)) + " gssencmode=disable";
}

// Over loopback; wants a password.
inline std::string ServerTcpText(int server)
{
    return FromEnvironment("ZR_POSTGRES_TCP_" + std::to_string(server));
}

// start, crash, freeze or thaw.
inline void Control(int server, const std::string& verb)
{
    Process process({FromEnvironment("ZR_POSTGRES_CONTROL"), std::to_string(server), verb});
    ASSERT_EQ(process.WaitForExit(), 0) << verb << ": " << process.Output() << process.Errors();
}

// Runs statements without values, and gives the result of the last one.
class Sql {
public:
    explicit Sql(const std::string& text) : m_connection(text, PostgresRole::Writer, {}) {}

    PostgresResult Run(const std::vector<std::string>& statements)
    {
        PostgresConnection::Results results;
        EXPECT_TRUE(m_connection.Open()) << m_connection.Error();
        std::vector<PostgresStatement> list;
        for (const std::string& statement : statements) {
            list.push_back({Kept(statement), {}});
        }
        EXPECT_TRUE(m_connection.Run(list, results)) << m_connection.Error();
        return results.empty() ? PostgresResult() : std::move(results.back());
    }
    std::int64_t Integer(const std::string& statement)
    {
        const PostgresResult result = Run({statement});
        return result.Rows() == 1 ? result.Integer(0, 0) : -1;
    }

private:
    // The connection knows statements by where they are.
    const char* Kept(const std::string& statement)
    {
        m_texts.push_back(std::make_unique<std::string>(statement));
        return m_texts.back()->c_str();
    }

    std::vector<std::unique_ptr<std::string>> m_texts;
    PostgresConnection m_connection;
};

// The connection text of an empty schema of that server, which serves as a database of its own.
inline std::string FreshDatabase(int server)
{
    static std::atomic<int> count = 0;
    const std::string name = "test_" + std::to_string(++count);
    Sql(ServerText(server)).Run({"drop schema if exists " + name + " cascade", "create schema " + name});
    return ServerText(server) + " options=-csearch_path=" + name;
}

}  // namespace zr::test
