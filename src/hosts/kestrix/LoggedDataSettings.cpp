#include "hosts/kestrix/LoggedDataSettings.h"

#include "platform/FileReplace.h"
#include "siblings/tools/FormatText.h"

#include <algorithm>
#include <set>
#include <span>
#include <system_error>
#include <utility>

namespace zr::desktop {
namespace {

constexpr const wchar* kRoot = u"LoggedDataWindows";
constexpr const wchar* kVersion = u"Version";
constexpr const wchar* kVersionInForce = u"1";
constexpr const wchar* kWindow = u"Window";
constexpr const wchar* kName = u"Name";
constexpr const wchar* kViewer = u"Viewer";
constexpr const wchar* kTree = u"main";
constexpr int kMostViewer = 99;
constexpr int kMostAside = 100;  // files put aside, of which each has a number

using Views = LoggedDataSettings::Views;

std::size_t CountElements(const XmlNode& node)
{
    std::size_t count = 1;
    for (const XmlNode* const child : node.children) {
        count += CountElements(*child);
    }
    return count;
}

void CopyNode(const XmlNode& from, XmlNode& to)
{
    for (const ZRBasicString& name : from.ValueNames()) {
        to.SetValue(name.CStr(), from.Value(name.CStr(), u""));
    }
    for (const XmlNode* const child : from.children) {
        CopyNode(*child, *to.NewChild(child->tag.CStr()));
    }
}

// One or two digits and nothing else.
bool TakeViewer(const ZRBasicString& text, int& viewer)
{
    const bool isNumber = !text.IsEmpty() && text.Length() <= 2 &&
                          std::all_of(text.Text().begin(), text.Text().end(),
                                      [](char16_t digit) { return digit >= u'0' && digit <= u'9'; });
    viewer = 0;
    for (const char16_t digit : isNumber ? text.Text() : std::u16string_view()) {
        viewer = viewer * 10 + (digit - u'0');
    }
    return isNumber;
}

// What is wrong with an element of the file; empty for nothing.
std::string TakeWindow(const XmlNode& window, LoggedDataSettings::View& view)
{
    if (window.tag != kWindow || window.Value(kName, u"").IsEmpty()) {
        return "no window with a name";
    }
    if (!TakeViewer(window.Value(kViewer, u""), view.viewer)) {
        return "Viewer is no number";
    }
    if (window.children.size() != 1 || window.children.front()->tag != kTree) {
        return "a window has one element \"main\"";
    }
    if (CountElements(*window.children.front()) > LoggedDataSettings::kMaxElements) {
        return "more than " + std::to_string(LoggedDataSettings::kMaxElements) + " elements in a window";
    }
    view.tree.Create(kTree);
    CopyNode(*window.children.front(), *view.tree.root);
    return {};
}

// Likewise of the whole, with its line.
std::string TakeDocument(const XmlDocument& document, Views& views)
{
    if (document.root->tag != kRoot || document.root->Value(kVersion, u"") != kVersionInForce) {
        return "no settings of this version";
    }
    std::set<ZRBasicString> names;
    for (const XmlNode* const window : document.root->children) {
        const ZRBasicString name = window->Value(kName, u"");
        views.emplace_back(name, LoggedDataSettings::View());
        std::string wrong = TakeWindow(*window, views.back().second);
        if (wrong.empty() && !names.insert(name).second) {
            wrong = "a window stands twice";
        }
        if (!wrong.empty()) {
            return std::to_string(window->Line()) + ": " + wrong;
        }
    }
    return {};
}

std::string TextOf(std::span<const Views::value_type> views)
{
    XmlDocument document;
    document.Create(kRoot);
    document.root->SetValue(kVersion, kVersionInForce);
    for (const auto& [name, view] : views) {
        XmlNode& window = *document.root->NewChild(kWindow);
        window.SetValue(kName, name);
        window.SetValue(kViewer, FormatText(u"%d", {std::clamp(view.viewer, 0, kMostViewer)}));
        CopyNode(*view.tree.root, *window.NewChild(kTree));
    }
    return document.SaveText();
}

}  // namespace

bool LoggedDataSettings::PutAside(const std::string& why, std::string& problem)
{
    problem = TextOfPath(m_file) + ": " + why;
    for (int number = 1; number <= kMostAside; ++number) {
        std::filesystem::path aside = m_file;
        aside += ".damaged" + std::to_string(number);
        std::error_code error;
        if (std::filesystem::exists(std::filesystem::symlink_status(aside, error))) {
            continue;
        }
        std::filesystem::rename(m_file, aside, error);
        if (!error) {
            problem += "; kept as " + TextOfPath(aside.filename());
            return false;
        }
        problem += "; " + error.message();
        break;
    }
    m_isStuck = true;
    return false;
}

bool LoggedDataSettings::Read(Views& views, std::string& problem)
{
    std::error_code error;
    if (std::filesystem::symlink_status(m_file, error).type() == std::filesystem::file_type::not_found) {
        m_isStuck = false;
        return true;
    }
    std::string bytes;
    std::string why;
    XmlDocument document;
    if (!ReadWholeFile(m_file, kMaxBytes, bytes, why)) {
        return PutAside(why, problem);
    }
    if (!document.LoadText(bytes)) {
        return PutAside(std::to_string(document.Error().line) + ": " + document.Error().reason, problem);
    }
    if (why = TakeDocument(document, views); !why.empty()) {
        views.clear();
        return PutAside(why, problem);
    }
    m_isStuck = false;
    return true;
}

bool LoggedDataSettings::Load(const std::filesystem::path& file, std::string& problem)
{
    m_file = file;
    Views views;
    if (!Read(views, problem)) {
        return false;
    }
    for (auto& [name, view] : views) {
        m_entries[name].view = std::move(view);
    }
    return true;
}

LoggedDataSettings::View& LoggedDataSettings::Of(const ZRBasicString& name)
{
    Entry& entry = m_entries[name];
    entry.used = ++m_uses;
    return entry.view;
}

bool LoggedDataSettings::Store(std::string& problem)
{
    if (m_file.empty()) {
        return true;
    }
    Views views;
    if (!Read(views, problem) && m_isStuck) {
        return false;
    }
    TakeOwn(views);
    std::size_t first = views.size() > kMaxViews ? views.size() - kMaxViews : 0;
    std::string text = TextOf(std::span(views).subspan(first));
    while (text.size() > kMaxBytes) {
        first += (views.size() - first + 3) / 4;
        text = TextOf(std::span(views).subspan(first));
    }
    return MakePrivateFolder(m_file.parent_path(), problem) && WriteFileReplacing(m_file, text, problem);
}

// Those of this program take the places of what the file says of them, behind all others: what is used least goes first
// where there are too many.
void LoggedDataSettings::TakeOwn(Views& views) const
{
    std::vector<Entries::const_iterator> own;
    for (auto entry = m_entries.cbegin(); entry != m_entries.cend(); ++entry) {
        const XmlNode* const root = entry->second.view.tree.root;
        if (entry->second.used > 0 && root != nullptr && CountElements(*root) <= kMaxElements) {
            own.push_back(entry);
        }
    }
    std::sort(own.begin(), own.end(), [](auto a, auto b) { return a->second.used < b->second.used; });
    for (const auto entry : own) {
        std::erase_if(views, [&](const auto& view) { return view.first == entry->first; });
        views.emplace_back(entry->first, entry->second.view);
    }
}

}  // namespace zr::desktop
