#include "siblings/driversupport/recorder/RecordingFile.h"

#include "platform/FileReplace.h"
#include "siblings/driversupport/VariableReference.h"
#include "siblings/tools/Numbers.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/XmlDocument.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <set>
#include <utility>

namespace zr {
namespace {

constexpr std::size_t kShown = 80;  // characters of a wrong text that a message repeats
constexpr const char* kIdRule = "1 to 64 letters, digits, blanks, \"-\" or \"_\"";

// Fit for one line of a log: without control characters, and cut when long.
std::string Shown(const ZRBasicString& text)
{
    std::u16string shown(text.Text().substr(0, kShown));
    std::replace_if(
        shown.begin(), shown.end(), [](wchar character) { return character < u' ' || character == 0x7F; }, u'?');
    return '"' + Utf16ToUtf8(shown) + (text.Length() > kShown ? "...\"" : "\"");
}

// Without what it quotes from the file: where a quotation mark is missing that may be a torn password.
std::string WithoutQuotations(const std::string& reason)
{
    std::string result;
    bool isQuoted = false;
    for (const char character : reason) {
        if (character == '"') {
            result += isQuoted ? "...\"" : "\"";
            isQuoted = !isQuoted;
        } else if (!isQuoted) {
            result += character;
        }
    }
    return isQuoted ? result + "..." : result;
}

// Reads one document; the first fault found ends it.
class Reader {
public:
    Reader(std::string file, std::string& error) : m_file(std::move(file)), m_error(error) {}

    bool ReadRoot(const XmlNode& root);

    RecordingFile recording;

private:
    bool Refuse(const XmlNode& node, const std::string& reason)
    {
        m_error = m_file + ":" + std::to_string(node.Line()) + ": " + reason;
        return false;
    }
    static std::string Tag(const XmlNode& node) { return Utf16ToUtf8(node.tag); }

    bool Known(const XmlNode& node, std::initializer_list<const wchar*> names);
    bool NoChildren(const XmlNode& node);
    // Leaves the number as it is when the value is absent.
    bool Number(const XmlNode& node, const wchar* name, std::int32_t least, std::int32_t most, std::int32_t& number);
    bool Path(const XmlNode& node, const wchar* name, std::filesystem::path& path);
    bool ReadStore(const XmlNode& node);
    bool ReadNode(const XmlNode& node);
    bool ReadSpool(const XmlNode& node);
    bool ReadDataSet(const XmlNode& node);
    bool ReadEntry(const XmlNode& node, RecordingFile::Entry& entry);
    bool ReadVariable(const XmlNode& node, const ZRBasicString& name, RecordingFile::Entry& entry);

    std::string m_file;
    std::string& m_error;
    bool m_hasStore = false;
    bool m_hasSpool = false;
    std::set<ZRBasicString> m_names;  // of data sets
};

bool Reader::Known(const XmlNode& node, std::initializer_list<const wchar*> names)
{
    for (const ZRBasicString& given : node.ValueNames()) {
        const bool known = std::any_of(names.begin(), names.end(), [&](const wchar* name) { return given == name; });
        if (!known) {
            return Refuse(node, "unknown value " + Utf16ToUtf8(given) + " of " + Tag(node));
        }
    }
    return true;
}

bool Reader::NoChildren(const XmlNode& node)
{
    if (node.children.empty()) {
        return true;
    }
    const XmlNode& child = *node.children.front();
    return Refuse(child, "unknown element " + Tag(child) + " in " + Tag(node));
}

bool Reader::Number(const XmlNode& node, const wchar* name, std::int32_t least, std::int32_t most, std::int32_t& number)
{
    if (!node.HasValue(name)) {
        return true;
    }
    const std::string text = Utf16ToUtf8(node.Value(name, u""));
    std::int32_t value = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (code != std::errc() || end != text.data() + text.size() || value < least || value > most) {
        return Refuse(node, Utf16ToUtf8(name) + " of " + Tag(node) + " must be a whole number from " +
                                std::to_string(least) + " to " + std::to_string(most));
    }
    number = value;
    return true;
}

bool Reader::Path(const XmlNode& node, const wchar* name, std::filesystem::path& path)
{
    const ZRBasicString text = node.Value(name, u"");
    const std::u16string_view characters = text.Text();
    const bool isGood = !characters.empty() && std::none_of(characters.begin(), characters.end(),
                                                            [](wchar character) { return character < u' '; });
    if (!isGood) {
        return Refuse(node, Utf16ToUtf8(name) + " of " + Tag(node) + " must be a path");
    }
    path = PathFromText(characters);
    return true;
}

bool Reader::ReadRoot(const XmlNode& root)
{
    if (Tag(root) != "Recording") {
        return Refuse(root, "the root must be Recording, not " + Tag(root));
    }
    if (!Known(root, {})) {
        return false;
    }
    for (const XmlNode* child : root.children) {
        const std::string tag = Tag(*child);
        const bool isGood = tag == "Store"     ? ReadStore(*child)
                            : tag == "Spool"   ? ReadSpool(*child)
                            : tag == "DataSet" ? ReadDataSet(*child)
                                               : Refuse(*child, "unknown element " + tag + " in Recording");
        if (!isGood) {
            return false;
        }
    }
    return true;
}

bool Reader::ReadStore(const XmlNode& node)
{
    if (std::exchange(m_hasStore, true)) {
        return Refuse(node, "a second Store");
    }
    if (!Known(node, {u"File"})) {
        return false;
    }
    if (node.HasValue(u"File")) {
        if (!node.children.empty()) {
            return Refuse(node, "Store has a File or Node elements, not both");
        }
        return Path(node, u"File", recording.store);
    }
    if (node.children.empty()) {
        return Refuse(node, "Store needs a File, or a Node element");
    }
    if (node.children.size() > RecordingFile::kMostNodes) {
        return Refuse(node, "more than " + std::to_string(RecordingFile::kMostNodes) + " Node elements");
    }
    return std::all_of(node.children.begin(), node.children.end(),
                       [this](const XmlNode* child) { return ReadNode(*child); });
}

bool Reader::ReadNode(const XmlNode& node)
{
    if (Tag(node) != "Node") {
        return Refuse(node, "unknown element " + Tag(node) + " in Store");
    }
    // What stands beside it may be a torn password, so the message doesn't repeat it.
    if (node.ValueNames() != std::vector<ZRBasicString>{u"Connection"}) {
        return Refuse(node, "Node needs the value Connection and no other");
    }
    if (!NoChildren(node)) {
        return false;
    }
    const std::string text = Utf16ToUtf8(node.Value(u"Connection", u""));
    const bool isGood = !text.empty() && text.size() <= RecordingFile::kLongestConnection &&
                        std::none_of(text.begin(), text.end(),
                                     [](char character) { return static_cast<unsigned char>(character) < ' '; });
    if (!isGood) {
        return Refuse(node, "Connection of Node must be a connection text of 1 to " +
                                std::to_string(RecordingFile::kLongestConnection) + " bytes in one line");
    }
    if (std::find(recording.nodes.begin(), recording.nodes.end(), text) != recording.nodes.end()) {
        return Refuse(node, "two Node elements with the same Connection");
    }
    recording.nodes.push_back(text);
    return true;
}

bool Reader::ReadSpool(const XmlNode& node)
{
    if (std::exchange(m_hasSpool, true)) {
        return Refuse(node, "a second Spool");
    }
    if (!Known(node, {u"Folder", u"LimitMb"}) || !NoChildren(node)) {
        return false;
    }
    if (node.HasValue(u"Folder") && !Path(node, u"Folder", recording.spoolFolder)) {
        return false;
    }
    return Number(node, u"LimitMb", 1, RecordingFile::kLargestSpool, recording.spoolLimit);
}

bool Reader::ReadDataSet(const XmlNode& node)
{
    if (!Known(node, {u"Name", u"Period", u"Retention"})) {
        return false;
    }
    RecordingFile::DataSet set;
    set.name = node.Value(u"Name", u"");
    if (!IsValidId(set.name, true)) {
        return Refuse(node, std::string("Name of DataSet must be ") + kIdRule);
    }
    if (!m_names.insert(set.name).second) {
        return Refuse(node, "a second DataSet " + Shown(set.name));
    }
    if (recording.dataSets.size() == RecordingFile::kMostDataSets) {
        return Refuse(node, "more than " + std::to_string(RecordingFile::kMostDataSets) + " DataSet elements");
    }
    if (!Number(node, u"Period", 1, RecordingFile::kLongestPeriod, set.period) ||
        !Number(node, u"Retention", 0, RecordingFile::kLongestRetention, set.retention)) {
        return false;
    }
    std::set<std::pair<ZRBasicString, ZRBasicString>> seen;
    for (const XmlNode* child : node.children) {
        RecordingFile::Entry entry;
        if (!ReadEntry(*child, entry)) {
            return false;
        }
        if (!seen.emplace(entry.device, entry.variable).second) {
            return Refuse(*child, Tag(*child) + " " + Shown(child->Value(u"Name", u"")) + " stands twice in DataSet " +
                                      Shown(set.name));
        }
        set.entries.push_back(std::move(entry));
    }
    if (set.entries.empty()) {
        return Refuse(node, "DataSet " + Shown(set.name) + " names no Variable and no Device");
    }
    recording.dataSets.push_back(std::move(set));
    return true;
}

bool Reader::ReadEntry(const XmlNode& node, RecordingFile::Entry& entry)
{
    const std::string tag = Tag(node);
    if (tag != "Variable" && tag != "Device") {
        return Refuse(node, "unknown element " + tag + " in DataSet");
    }
    if (!Known(node, {u"Name"}) || !NoChildren(node)) {
        return false;
    }
    const ZRBasicString name = node.Value(u"Name", u"");
    if (tag == "Variable") {
        return ReadVariable(node, name, entry);
    }
    if (!IsValidId(name, true)) {
        return Refuse(node, std::string("Name of Device must be ") + kIdRule + ", not " + Shown(name));
    }
    entry.device = name;
    return true;
}

bool Reader::ReadVariable(const XmlNode& node, const ZRBasicString& name, RecordingFile::Entry& entry)
{
    if (name.Text().find(u'#') != std::u16string_view::npos) {
        return Refuse(node, "Name of Variable must be DEVICE.VARIABLE without a filter, not " + Shown(name) +
                                ": what is recorded is split by hour types when it is read");
    }
    SplitDriverVariable(name, entry.device, entry.variable);
    if (!IsValidId(entry.device, true) || !IsValidId(entry.variable, true)) {
        return Refuse(node, "Name of Variable must be DEVICE.VARIABLE, not " + Shown(name));
    }
    return true;
}

}  // namespace

bool RecordingFile::Load(const std::filesystem::path& file, std::string& error)
{
    std::string bytes;
    std::string reason;
    if (!ReadWholeFile(file, XmlDocument::kMaxBytes, bytes, reason)) {
        error = TextOfPath(file) + ": " + reason;
        return false;
    }
    return LoadText(bytes, TextOfPath(file), error);
}

bool RecordingFile::LoadText(std::string_view bytes, const std::string& name, std::string& error)
{
    XmlDocument document;
    if (!document.LoadText(bytes, name)) {
        XmlError refusal = document.Error();
        refusal.reason = WithoutQuotations(refusal.reason);
        error = refusal.Message();
        return false;
    }
    Reader reader(name, error);
    if (!reader.ReadRoot(*document.root)) {
        return false;
    }
    *this = std::move(reader.recording);
    return true;
}

std::filesystem::path RecordingFileOf(const std::filesystem::path& document)
{
    std::filesystem::path file = document;
    return file.replace_extension(".recording.xml");
}

}  // namespace zr
