#include "siblings/tools/XmlDocument.h"

#include "platform/FileReplace.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/XmlStorage.h"
#include "siblings/tools/XmlTreeBuilder.h"
#include "siblings/tools/XmlWriter.h"

#include <new>
#include <utility>

std::string XmlError::Message() const
{
    std::string message = file;
    if (line != 0) {
        message += (file.empty() ? "" : ":") + std::to_string(line);
    }
    return message.empty() ? reason : message + ": " + reason;
}

XmlDocument::XmlDocument() : m_storage(std::make_unique<XmlNode::Storage>()) {}

XmlDocument::~XmlDocument()
{
    delete root;
}

XmlDocument::XmlDocument(const XmlDocument& other) : XmlDocument()
{
    *this = other;
}

XmlDocument& XmlDocument::operator=(const XmlDocument& other)
{
    if (this == &other) {
        return *this;
    }
    Reset();
    m_fileName = other.m_fileName;
    m_error = {};
    root = other.root != nullptr ? Copy(*other.root).release() : nullptr;
    return *this;
}

std::unique_ptr<XmlDocument::XmlNode> XmlDocument::Copy(const XmlNode& source)
{
    auto top = std::unique_ptr<XmlNode>(new XmlNode(*m_storage));
    std::vector<std::pair<const XmlNode*, XmlNode*>> pending = {{&source, top.get()}};
    while (!pending.empty()) {
        const auto [from, to] = pending.back();
        pending.pop_back();
        to->tag = from->tag;
        to->m_line = from->m_line;
        to->m_values.reserve(from->m_values.size());
        for (const XmlNode::NamedValue& value : from->m_values) {
            to->m_values.push_back(
                {m_storage->Intern(*value.name), m_storage->Store({value.text, value.length}), value.length});
        }
        to->children.reserve(from->children.size());
        for (const XmlNode* child : from->children) {
            pending.emplace_back(child, to->NewChild(nullptr));
        }
    }
    return top;
}

void XmlDocument::Create(const wchar* rootTag)
{
    Reset();
    root = new XmlNode(*m_storage);
    root->tag = ZRBasicString(rootTag);
}

void XmlDocument::Reset()
{
    delete std::exchange(root, nullptr);
    m_storage = std::make_unique<XmlNode::Storage>();
}

void XmlDocument::SetFileName(const wchar* path)
{
    m_fileName = ZRBasicString(path);
}

bool XmlDocument::Load(const wchar* path)
{
    return Load(zr::PathFromText(ZRBasicString(path).Text()));
}

bool XmlDocument::Load(const std::filesystem::path& path)
{
    Reset();
    const std::string name = zr::TextOfPath(path);
    m_fileName = Utf8ToUtf16(name);
    std::string bytes;
    std::string reason;
    try {
        if (!zr::ReadWholeFile(path, kMaxBytes, bytes, reason)) {
            return Fail(name, 0, std::move(reason));
        }
        return Read(bytes, name);
    } catch (const std::bad_alloc&) {
        return Fail(name, 0, "not enough memory");
    }
}

bool XmlDocument::LoadText(std::string_view bytes, const std::string& name)
{
    Reset();
    try {
        std::string text(bytes);
        return Read(text, name);
    } catch (const std::bad_alloc&) {
        return Fail(name, 0, "not enough memory");
    }
}

bool XmlDocument::Read(std::string& bytes, const std::string& name)
{
    m_error = {};
    xml::Encoding encoding = xml::Encoding::Utf8;
    std::size_t line = 0;
    std::string reason;
    if (!xml::ConvertToUtf8(bytes, encoding, line, reason)) {
        return Fail(name, line, std::move(reason));
    }
    xml::XmlGate gate(bytes, encoding);
    if (!gate.Check()) {
        return Fail(name, gate.Line(), gate.Reason());
    }
    XmlTreeBuilder builder(*m_storage, gate.Elements());
    root = builder.Build(bytes, reason).release();
    return root != nullptr || Fail(name, 0, std::move(reason));
}

bool XmlDocument::Fail(const std::string& file, std::size_t line, std::string reason)
{
    Reset();
    m_error = {file, line, std::move(reason)};
    return false;
}

bool XmlDocument::Save()
{
    const std::string name = Utf16ToUtf8(m_fileName);
    std::string reason = m_fileName.IsEmpty() ? "the document has no file name" : "the document is empty";
    XmlWriter writer;
    if (!m_fileName.IsEmpty() && root != nullptr) {
        reason = writer.Write(*root) ? "" : writer.Reason();
    }
    if (!reason.empty() || !zr::WriteFileReplacing(zr::PathFromText(m_fileName.Text()), writer.Text(), reason)) {
        m_error = {name, 0, std::move(reason)};
        return false;
    }
    return true;
}

std::string XmlDocument::SaveText() const
{
    XmlWriter writer;
    return root != nullptr && writer.Write(*root) ? writer.Text() : std::string();
}
