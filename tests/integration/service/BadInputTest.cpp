// What the service says of input that it can't use, as a process.
#include "integration/service/ServiceFixture.h"

#include <algorithm>
#include <fstream>
#include <string_view>

namespace zr::test {
namespace {

struct BadText {
    const char* what;
    std::string text;
};

std::vector<BadText> BadXml()
{
    std::string deep;
    for (int i = 0; i < 300; ++i) {
        deep += "<a>\n";
    }
    std::string binary;
    for (int i = 0; i < 1024; ++i) {
        binary += static_cast<char>(i * 37 % 256);
    }
    return {{"empty", ""},
            {"truncated", "<Configuration>\n<CommSystem>\n<Connections>\n<Connection Name=\"LI"},
            {"of a document type", "<!DOCTYPE a [<!ENTITY b \"c\">]>\n<a>&b;</a>"},
            {"too deep", deep},
            {"with a NUL", std::string("<a>\n<b c=\"\0\"/></a>", 18)},
            {"binary", binary}};
}

class BadInputTest : public ServiceFixture {
protected:
    BadInputTest() { m_document = m_folder.Write("document.xml", DocumentText("", {})); }

    void Spoil(const std::filesystem::path& file, const std::string& text)
    {
        std::ofstream out(file, std::ios::binary | std::ios::trunc);
        out << text;
        ASSERT_TRUE(out.flush().good());
    }

    // One line that begins with the file (and one of its lines, where told), nothing on standard output, status 2.
    void ExpectRefused(const std::filesystem::path& file, const std::string& what, bool tellsLine = true,
                       const std::vector<std::string>& more = {})
    {
        SCOPED_TRACE(file.filename().string() + " " + what);
        std::vector<std::string> arguments{m_document.string(), "--for", "20", "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const auto service = StartService(arguments);
        EXPECT_EQ(service->WaitForExit(std::chrono::seconds(10)), 2);
        EXPECT_EQ(service->Output(), "");
        const std::string& errors = service->Errors();
        EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
        const std::string name = file.string() + ":";
        EXPECT_EQ(errors.find(name), 0u) << errors;
        if (tellsLine && errors.size() > name.size()) {
            const std::size_t end = errors.find_first_not_of("0123456789", name.size());
            EXPECT_GT(end, name.size()) << errors;
            EXPECT_EQ(errors[end], ':') << errors;
        }
        for (const char byte : errors) {
            EXPECT_TRUE(byte == '\n' || static_cast<unsigned char>(byte) >= ' ') << errors;
        }
    }

    std::filesystem::path m_document;
};

TEST_F(BadInputTest, ADocumentThatIsMissingEndsItWithStatusTwo)
{
    m_document = m_folder / "nowhere.xml";
    ExpectRefused(m_document, "missing", false);
    m_document = m_folder.Path();
    ExpectRefused(m_document, "is a folder", false);
}

TEST_F(BadInputTest, ADocumentThatIsBadEndsItWithOneLineAndStatusTwo)
{
    for (const BadText& bad : BadXml()) {
        Spoil(m_document, bad.text);
        ExpectRefused(m_document, bad.what);
    }
}

TEST_F(BadInputTest, AProfileThatIsBadEndsItWithOneLineAndStatusTwo)
{
    CopyResources();
    const std::filesystem::path profile = m_resources / "devices" / "EM3.xml";
    for (const BadText& bad : BadXml()) {
        Spoil(profile, bad.text);
        ExpectRefused(profile, bad.what);
    }
}

TEST_F(BadInputTest, AFilterFileThatIsBadEndsItWithOneLineAndStatusTwo)
{
    m_document = m_folder.Write(
        "document.xml", DocumentText(UdpLine("L", "9", 500), {{"A", "EM3", "L"}, {"B", "EM3", "L", "Unit=\"2\""}}));
    const std::filesystem::path data = m_folder / "filters";
    for (const char* name : {"THREE-TARIFF.MVDF", "THREE-TARIFF.MVDFI"}) {
        std::filesystem::create_directories(data);
        for (const BadText& bad : BadXml()) {
            Spoil(data / name, bad.text);
            ExpectRefused(data / name, bad.what, true, {"--data", data.string()});
        }
        std::filesystem::remove_all(data);
    }
}

TEST_F(BadInputTest, AFilterFileThatIsMissingIsToldByItsName)
{
    m_document = m_folder.Write("document.xml", DocumentText(UdpLine("L", "9", 500), {{"A", "EM3", "L"}}));
    CopyResources();
    std::filesystem::remove_all(m_resources / "filters");
    const std::filesystem::path data = m_folder / "filters";
    std::filesystem::create_directory(data);
    ExpectRefused(data / "THREE-TARIFF.MVDF", "missing", false, {"--data", data.string()});
}

TEST_F(BadInputTest, ALanguageFileThatIsBadEndsItWithOneLineAndStatusTwo)
{
    CopyResources();
    const std::filesystem::path language = m_resources / "language" / "en.txt";
    std::filesystem::remove(language);
    ExpectRefused(language, "missing", false);
    for (const BadText& bad : std::vector<BadText>{{"empty", ""},
                                                   {"of no texts", "# nothing\n"},
                                                   {"truncated", "32647\t%s does not answer\n32649"},
                                                   {"with a NUL", std::string("1\ta\0b\n", 6)},
                                                   {"of another encoding", "1\tcaf\xE9\n"},
                                                   {"with a doubled number", "1\ta\n1\tb\n"}}) {
        Spoil(language, bad.text);
        // What lacks in the whole file lacks in no line of it.
        ExpectRefused(language, bad.what, bad.text.find('\t') != std::string::npos);
    }
}

TEST_F(BadInputTest, WhatIsUnknownIsLeftOutWithAWarningOfItsLine)
{
    m_document = m_folder.Write(
        "document.xml", DocumentText(UdpLine("L", "9", 500) + "<Connection Name=\"X\" Type=\"CARRIER PIGEON\"/>\n",
                                     {{"A", "NO SUCH METER", "L"}, {"B", "ORL1", "NOWHERE"}}));
    const auto service = StartService({m_document.string(), "--for", "1", "--json"});
    ASSERT_EQ(service->WaitForExit(), 0) << service->Errors();
    const std::string file = m_document.string();
    EXPECT_NE(service->Errors().find(file + ":5: warning: "), std::string::npos) << service->Errors();
    EXPECT_NE(service->Errors().find(file + ":8: warning: "), std::string::npos) << service->Errors();
    EXPECT_NE(service->Errors().find(file + ":9: warning: "), std::string::npos) << service->Errors();
    EXPECT_EQ(Figure(service->Output(), "devices"), 1) << service->Output();
    EXPECT_EQ(Figure(service->Output(), "warnings"), 3) << service->Output();
}

TEST_F(BadInputTest, ACommandLineThatIsWrongEndsItWithStatusTwo)
{
    const std::string document = m_document.string();
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {document, "--for"},
                                               {document, "--for", "0"},
                                               {document, "--for", "soon"},
                                               {document, "--port", "1"},
                                               {document, "--port", "0=/dev/null"},
                                               {document, "--loud"}}) {
        const auto service = StartService(arguments);
        EXPECT_EQ(service->WaitForExit(std::chrono::seconds(10)), 2);
        EXPECT_EQ(service->Output(), "");
        EXPECT_NE(service->Errors(), "");
    }
}

}  // namespace
}  // namespace zr::test
