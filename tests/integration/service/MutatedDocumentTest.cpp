// Documents that were damaged: checked, loaded and reset as the service does it.
#include "hosts/supervision/DocumentCheck.h"
#include "integration/service/RegistryFixture.h"

#include <iterator>
#include <random>

namespace zr::test {
namespace {

using MutatedDocumentTest = RegistryFixture;

std::string Mutated(std::string text, std::mt19937& random)
{
    static constexpr std::string_view kPieces[] = {"\"",          "<", "/>", "Name=\"\"",   "Driver=\"EM3\"",
                                                   "Type=\"RS\"", "0", "-",  "99999999999", "<Device/>",
                                                   "\xC3\xA9"};
    for (std::size_t edits = 1 + random() % 3; edits != 0; --edits) {
        const std::size_t at = random() % text.size();
        switch (random() % 4) {
            case 0:
                text[at] = static_cast<char>(random() % 256);
                break;
            case 1:
                text.erase(at, random() % 12);
                break;
            case 2:
                text.insert(at, kPieces[random() % std::size(kPieces)]);
                break;
            default:
                text.insert(at, text.substr(random() % text.size(), random() % 60));
                break;
        }
    }
    return text;
}

TEST_F(MutatedDocumentTest, TenThousandAreRefusedOrLoadedAndReset)
{
    const std::string text = DocumentText(
        UdpLine("NORTH", "10001", 500) + "<Connection Name=\"SERIAL\" Type=\"RS\" Port=\"1\" BaudRate=\"19200\"/>\n",
        {{"METER-1", "EM3", "NORTH", "Unit=\"1\" Period=\"1\" Description=\"Hall\""},
         {"METER-2", "NA3", "SERIAL", "Unit=\"2\""},
         {"RELAY", "ORL8", "NORTH", "Unit=\"247\" Period=\"0.5\""}});
    std::mt19937 random(5);
    int loaded = 0;
    int withFindings = 0;
    for (int round = 0; round < 10000; ++round) {
        XmlDocument document;
        if (!document.LoadText(Mutated(text, random))) {
            EXPECT_FALSE(document.Error().Message().empty());
            continue;
        }
        const XmlNode* commSystem = document.root->Node(u"CommSystem");
        if (commSystem == nullptr) {
            continue;
        }
        ++loaded;
        const auto findings = supervision::CheckDocument(commSystem);
        withFindings += findings.empty() ? 0 : 1;
        for (const supervision::Finding& finding : findings) {
            EXPECT_GT(finding.line, 0u);
        }
        EXPECT_TRUE(m_system.LoadCfg(*commSystem));
        m_system.Reset();
        EXPECT_TRUE(m_system.DriversBegin() == m_system.DriversEnd());
    }
    EXPECT_GT(loaded, 500);
    EXPECT_GT(withFindings, 100);
}

}  // namespace
}  // namespace zr::test
