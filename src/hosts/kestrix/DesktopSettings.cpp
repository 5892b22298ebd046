#include "hosts/kestrix/DesktopSettings.h"

#include "platform/Registry.h"
#include "siblings/tools/LanguageLocale.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace zr::desktop {
namespace {

constexpr const char16_t* kSubKey = u"\\Desktop";
constexpr int kFarthest = 100000;  // pixels; beyond it a place makes no sense
constexpr int kLeastWidth = 640;
constexpr int kLeastHeight = 400;
constexpr int kDefaultWidth = 1180;
constexpr int kDefaultHeight = 760;
constexpr int kMaxMargin = 50;  // mm
constexpr std::uint32_t kMaxTextBytes = 64 * 1024;

class Reader {
public:
    explicit Reader(const ZRBasicString& key)
    {
        m_isOpen = RegOpenKeyExW(HKEY_CURRENT_USER, (key + kSubKey).CStr(), 0, KEY_READ, &m_key) == ERROR_SUCCESS;
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader()
    {
        if (m_isOpen) {
            RegCloseKey(m_key);
        }
    }

    // The fallback when the number isn't there or not from least to most.
    [[nodiscard]] int Number(const char16_t* name, int fallback, int least, int most) const
    {
        std::int32_t number = 0;
        std::uint32_t size = sizeof number;
        std::uint32_t type = 0;
        std::uint8_t bytes[sizeof number] = {};
        if (!m_isOpen || RegQueryValueExW(m_key, name, nullptr, &type, bytes, &size) != ERROR_SUCCESS ||
            type != REG_DWORD || size != sizeof number) {
            return fallback;
        }
        std::memcpy(&number, bytes, sizeof number);
        return number >= least && number <= most ? number : fallback;
    }

    [[nodiscard]] ZRBasicString Text(const char16_t* name) const
    {
        std::uint32_t size = 0;
        std::uint32_t type = 0;
        if (!m_isOpen || RegQueryValueExW(m_key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS ||
            type != REG_SZ || size > kMaxTextBytes) {
            return {};
        }
        std::vector<std::uint8_t> bytes(size);
        if (RegQueryValueExW(m_key, name, nullptr, &type, bytes.data(), &size) != ERROR_SUCCESS) {
            return {};
        }
        std::u16string text(size / sizeof(char16_t), u'\0');
        std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
        return {text.c_str()};  // up to the terminating zero
    }

private:
    HKEY m_key = nullptr;
    bool m_isOpen = false;
};

class Writer {
public:
    explicit Writer(const ZRBasicString& key)
    {
        m_isGood = RegCreateKeyExW(HKEY_CURRENT_USER, (key + kSubKey).CStr(), 0, nullptr, 0, KEY_WRITE, nullptr, &m_key,
                                   nullptr) == ERROR_SUCCESS;
        m_isOpen = m_isGood;
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer()
    {
        if (m_isOpen) {
            RegCloseKey(m_key);
        }
    }

    void Number(const char16_t* name, std::int32_t number)
    {
        std::uint8_t bytes[sizeof number] = {};
        std::memcpy(bytes, &number, sizeof number);
        Set(name, REG_DWORD, bytes, sizeof number);
    }

    void Text(const char16_t* name, const ZRBasicString& text)
    {
        const std::size_t size = (text.Length() + 1) * sizeof(char16_t);
        std::vector<std::uint8_t> bytes(size);
        std::memcpy(bytes.data(), text.CStr(), size);
        Set(name, REG_SZ, bytes.data(), static_cast<std::uint32_t>(size));
    }

    [[nodiscard]] bool IsGood() const { return m_isGood; }

private:
    void Set(const char16_t* name, std::uint32_t type, const std::uint8_t* bytes, std::uint32_t size)
    {
        m_isGood = m_isGood && RegSetValueExW(m_key, name, 0, type, bytes, size) == ERROR_SUCCESS;
    }

    HKEY m_key = nullptr;
    bool m_isOpen = false;
    bool m_isGood = false;
};

// Empty for one that there are no texts for: what another version has left must not keep this one from starting.
std::string KnownLanguage(const std::string& title)
{
    const auto languages = LanguageLocales();
    const bool isKnown = std::any_of(languages.begin(), languages.end(),
                                     [&](const LanguageLocale& known) { return known.language == title; });
    return isKnown ? title : std::string();
}

bool HoldsMiddle(const WindowPlace& screen, const WindowPlace& place)
{
    const int x = place.left + place.width / 2;
    const int y = place.top + place.height / 2;
    return x >= screen.left && x < screen.left + screen.width && y >= screen.top && y < screen.top + screen.height;
}

}  // namespace

DesktopSettings DesktopSettings::Load(const ZRBasicString& registryKey)
{
    const Reader reader(registryKey);
    DesktopSettings settings;
    settings.window.left = reader.Number(u"WindowLeft", 0, -kFarthest, kFarthest);
    settings.window.top = reader.Number(u"WindowTop", 0, -kFarthest, kFarthest);
    settings.window.width = reader.Number(u"WindowWidth", 0, 1, kFarthest);
    settings.window.height = reader.Number(u"WindowHeight", 0, 1, kFarthest);
    if (settings.window.width == 0 || settings.window.height == 0) {
        settings.window = {};
    }
    settings.window.isMaximised = reader.Number(u"WindowMaximised", 0, 0, 1) != 0;
    settings.treeWidth = reader.Number(u"TreeWidth", 0, 1, kFarthest);
    settings.language = KnownLanguage(Utf16ToUtf8(reader.Text(u"Language")));
    settings.colours = static_cast<Colours>(reader.Number(u"Colours", 0, 0, 2));
    settings.showsToolbar = reader.Number(u"Toolbar", 1, 0, 1) != 0;
    settings.showsStatusBar = reader.Number(u"StatusBar", 1, 0, 1) != 0;
    settings.showsWarnings = reader.Number(u"Warnings", 1, 0, 1) != 0;
    settings.page = reader.Text(u"Page");
    settings.document = reader.Text(u"Document");
    if (const ZRBasicString paper = reader.Text(u"Paper"); !paper.IsEmpty()) {
        settings.paper = Utf16ToUtf8(paper);
    }
    settings.isLandscape = reader.Number(u"Landscape", 0, 0, 1) != 0;
    settings.margin = reader.Number(u"Margin", settings.margin, 0, kMaxMargin);
    return settings;
}

bool DesktopSettings::Store(const ZRBasicString& registryKey) const
{
    Writer writer(registryKey);
    writer.Number(u"WindowLeft", window.left);
    writer.Number(u"WindowTop", window.top);
    writer.Number(u"WindowWidth", window.width);
    writer.Number(u"WindowHeight", window.height);
    writer.Number(u"WindowMaximised", window.isMaximised ? 1 : 0);
    writer.Number(u"TreeWidth", treeWidth);
    writer.Text(u"Language", Utf8ToUtf16(language));
    writer.Number(u"Colours", static_cast<std::int32_t>(colours));
    writer.Number(u"Toolbar", showsToolbar ? 1 : 0);
    writer.Number(u"StatusBar", showsStatusBar ? 1 : 0);
    writer.Number(u"Warnings", showsWarnings ? 1 : 0);
    writer.Text(u"Page", page);
    writer.Text(u"Document", document);
    writer.Text(u"Paper", Utf8ToUtf16(paper));
    writer.Number(u"Landscape", isLandscape ? 1 : 0);
    writer.Number(u"Margin", margin);
    return writer.IsGood();
}

WindowPlace FitToScreens(const WindowPlace& place, std::span<const WindowPlace> screens)
{
    const auto found =
        std::find_if(screens.begin(), screens.end(), [&](const WindowPlace& each) { return HoldsMiddle(each, place); });
    const WindowPlace& screen = found != screens.end() ? *found : screens.front();
    WindowPlace fitted = place;
    if (fitted.width <= 0 || fitted.height <= 0) {
        fitted.width = kDefaultWidth;
        fitted.height = kDefaultHeight;
        fitted.left = screen.left + (screen.width - std::min(kDefaultWidth, screen.width)) / 2;
        fitted.top = screen.top + (screen.height - std::min(kDefaultHeight, screen.height)) / 2;
    }
    fitted.width = std::clamp(fitted.width, std::min(kLeastWidth, screen.width), screen.width);
    fitted.height = std::clamp(fitted.height, std::min(kLeastHeight, screen.height), screen.height);
    fitted.left = std::clamp(fitted.left, screen.left, screen.left + screen.width - fitted.width);
    fitted.top = std::clamp(fitted.top, screen.top, screen.top + screen.height - fitted.height);
    return fitted;
}

}  // namespace zr::desktop
