#include "siblings/tools/XmlDocument.h"
#include "support/XmlTree.h"

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

using zr::test::DescribeTree;

// A document that uses everything the gate knows.
constexpr std::string_view kSeed =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<!-- a plant -->\n"
    "<Cfg Version='1'>\n"
    "  <CommSystem><?note here?>\n"
    "    <Connections>\n"
    "      <Connection Name=\"Hall &amp; \xC3\xA9t\xC3\xA9 &#x20AC;\" Type='UDP' Address=\"10.0.0.1\" "
    "Socket='10001'/>\n"
    "      <Connection Name=\"Line &lt;1&gt; &quot;&apos;\" Type='RS' Port='1' ></Connection>\n"
    "    </Connections>\n"
    "    <Devices>\n"
    "      <Device Name='Meter \xF0\x9F\x94\x8C' Driver='em3' Connection='Hall' Unit='&#49;' Period='&#10;'/>\n"
    "    </Devices>\n"
    "  </CommSystem>\n"
    "  <DeviceGroups><Groups><G Id='a'><Devices><D Id='b'/></Devices></G></Groups></DeviceGroups>\n"
    "</Cfg>\n";

class Mutator {
public:
    explicit Mutator(std::uint32_t seed) : m_random(seed) {}

    std::string Mutate(std::string text)
    {
        for (std::size_t times = 1 + Below(3); times != 0 && !text.empty(); --times) {
            MutateOnce(text);
        }
        return text;
    }

private:
    std::size_t Below(std::size_t limit) { return m_random() % limit; }

    void MutateOnce(std::string& text)
    {
        static constexpr std::string_view kPieces[] = {"<",
                                                       ">",
                                                       "/>",
                                                       "</",
                                                       "&",
                                                       ";",
                                                       "\"",
                                                       "'",
                                                       "=",
                                                       " ",
                                                       "\n",
                                                       "<!--",
                                                       "-->",
                                                       "--",
                                                       "<![CDATA[",
                                                       "]]>",
                                                       "<?",
                                                       "?>",
                                                       "<!DOCTYPE a>",
                                                       "&#0;",
                                                       "&#x110000;",
                                                       "&lt;",
                                                       "&x;",
                                                       "<a>",
                                                       "</a>",
                                                       "<a/>",
                                                       "x",
                                                       "\xC3",
                                                       "\xA9",
                                                       "\xEF\xBB\xBF"};
        const std::size_t at = Below(text.size());
        const std::size_t length = Below(12);
        switch (Below(7)) {
            case 0:
                text[at] = static_cast<char>(Below(256));
                break;
            case 1:
                text.erase(at, 1 + length);
                break;
            case 2:
                text.insert(at, kPieces[Below(std::size(kPieces))]);
                break;
            case 3:
                text.insert(at, text.substr(Below(text.size()), 1 + 8 * length));
                break;
            case 4:
                text.resize(at);
                break;
            case 5:
                text[at] = static_cast<char>(text[at] ^ (1 << Below(8)));
                break;
            default:
                std::swap(text[at], text[Below(text.size())]);
                break;
        }
    }

    // Its sequence is fixed by the standard, so that every run sees the same texts.
    std::mt19937 m_random;
};

void ExpectRefusedOrLossless(const std::string& text, int& accepted)
{
    XmlDocument document;
    if (!document.LoadText(text, "mutated.xml")) {
        EXPECT_EQ(document.root, nullptr) << text;
        EXPECT_FALSE(document.Error().reason.empty()) << text;
        EXPECT_GE(document.Error().line, 1U) << text;
        return;
    }
    ++accepted;
    XmlDocument again;
    ASSERT_TRUE(again.LoadText(document.SaveText())) << again.Error().Message() << "\n" << text;
    ASSERT_EQ(DescribeTree(again), DescribeTree(document)) << text;
}

TEST(XmlMutation, TenThousandMutatedDocumentsAreRefusedOrLossless)
{
    int accepted = 0;
    for (std::uint32_t i = 0; i < 10000; ++i) {
        ExpectRefusedOrLossless(Mutator(i).Mutate(std::string(kSeed)), accepted);
        if (testing::Test::HasFailure()) {
            FAIL() << "mutation " << i;
        }
    }
    // Both outcomes are met often enough to mean something.
    EXPECT_GT(accepted, 300);
    EXPECT_LT(accepted, 9500);
}

TEST(XmlMutation, EveryCutDocumentIsRefused)
{
    // The last byte is a line end behind the root.
    for (std::size_t length = 0; length + 1 < kSeed.size(); ++length) {
        XmlDocument document;
        ASSERT_FALSE(document.LoadText(kSeed.substr(0, length))) << length;
        ASSERT_EQ(document.root, nullptr) << length;
    }
}

}  // namespace
