// The tree of every configuration and description file.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class XmlTreeBuilder;
class XmlWriter;

// Why a document was refused, for the host to show.
struct XmlError {
    std::string file;      // as given to Load(); "" for text from memory
    std::size_t line = 0;  // one-based; 0 when the file could not be read at all
    std::string reason;    // English, one line, no line end
    // "FILE:LINE: REASON", without the parts that are missing.
    [[nodiscard]] std::string Message() const;
};

// A document: one tree of elements with named values. Not thread-safe.
//
// Text comes in through a strict gate before any of it is believed: UTF-8 (or UTF-16 with a byte order mark,
// which is converted), no NUL or control characters, no document type, exactly one root and nothing but
// comments and white space around it, no doubled attribute, no undefined entity, no character reference out
// of range, at most kMaxDepth levels, kMaxBytes bytes and kMaxAttributes attributes in one element. A named value is
// an attribute; text between tags and CDATA sections are refused. Comments and processing instructions are read over
// and not kept.
class XmlDocument {
public:
    static constexpr std::size_t kMaxDepth = 256;
    static constexpr std::size_t kMaxBytes = 64u * 1024 * 1024;
    static constexpr std::size_t kMaxAttributes = 1000;

    // An element. Owns its children. Pointers to a node hold until it is removed or the document is reset.
    class XmlNode {
    public:
        XmlNode(const XmlNode&) = delete;
        XmlNode& operator=(const XmlNode&) = delete;
        ~XmlNode();

        ZRBasicString tag;
        // The child elements in document order. Owned by this node.
        std::vector<XmlNode*> children;

        // The first node that the path reaches from here; null if there is none. A path is steps separated by
        // "/"; a step is `tag` or `tag?name=value?`, whose value runs to the closing question mark.
        [[nodiscard]] const XmlNode* Node(const wchar* path) const;
        [[nodiscard]] XmlNode* Node(const wchar* path);
        // Fills each %s of the format with the next argument, then does as Node(); %% stands for "%". An argument is
        // never taken for path syntax, whatever it holds. A %s without an argument stays as it stands.
        template <typename... Texts>
        [[nodiscard]] XmlNode* NodeV(const wchar* format, const Texts&... texts)
        {
            return NodeFilled(format, {ZRBasicString(texts)...});
        }

        // The text of the named value, or a copy of the fallback if the node has none of that name.
        [[nodiscard]] ZRBasicString Value(const wchar* name, const wchar* fallback) const;
        // Whether the node has a value of that name, the empty one included.
        [[nodiscard]] bool HasValue(const wchar* name) const;
        // Sets or replaces.
        void SetValue(const wchar* name, const ZRBasicString& value);
        // False when there was none of that name; the node is then as before.
        bool EraseTag(const wchar* name);
        // The names of the values in document order.
        [[nodiscard]] std::vector<ZRBasicString> ValueNames() const;

        // Appends an empty child and returns it.
        XmlNode* NewChild(const wchar* tag);
        // Destroys a child of this node; anything else is left alone.
        void RemoveChild(XmlNode* child);

        // Line of the start tag in the file it came from, one-based; 0 for a node made in memory.
        [[nodiscard]] std::size_t Line() const { return m_line; }

    private:
        friend class XmlDocument;
        friend class ::XmlTreeBuilder;
        friend class ::XmlWriter;
        struct Storage;
        struct NamedValue {
            const ZRBasicString* name;  // Not owned; interned by the document's Storage.
            wchar* text;                // Not owned; lives in the document's Storage. Null when empty.
            std::size_t length;
        };
        explicit XmlNode(Storage& storage) : m_storage(storage) {}
        [[nodiscard]] NamedValue* Find(std::u16string_view name);
        [[nodiscard]] const NamedValue* Find(std::u16string_view name) const;
        [[nodiscard]] const XmlNode* Child(std::u16string_view childTag) const;
        [[nodiscard]] const XmlNode* Child(std::u16string_view childTag, std::u16string_view name,
                                           std::u16string_view value) const;
        XmlNode* NodeFilled(const wchar* format, std::initializer_list<ZRBasicString> texts);

        Storage& m_storage;
        std::vector<NamedValue> m_values;
        std::size_t m_line = 0;
    };

    XmlDocument();
    virtual ~XmlDocument();
    XmlDocument(const XmlDocument& other);             // deep copy of tree and file name
    XmlDocument& operator=(const XmlDocument& other);  // likewise

    // The top node, on which paths start. Null while the document is empty. Owned.
    XmlNode* root = nullptr;

    // Makes a new tree whose root has that tag.
    void Create(const wchar* rootTag);
    // Reads a file into the tree. False if it can't be read or is refused: the tree is then empty and Error()
    // tells why. Remembers the file name.
    bool Load(const wchar* path);
    bool Load(const std::filesystem::path& path);
    // As Load(), from bytes in memory; name stands for the file in errors.
    bool LoadText(std::string_view bytes, const std::string& name = "");
    // Writes the tree to the remembered file: temporary file (0600), flush, rename, flush of the folder.
    // False on failure; the old file is then as before and Error() tells why.
    bool Save();
    // The document as UTF-8 text, two blanks a level, attributes for values, a line end at the end. White space other
    // than blanks is written by reference; what XML can't carry (NUL, most control characters, unpaired surrogates,
    // U+FFFE, U+FFFF) as U+FFFD. Empty when there is no tree, or when it could not be read again: a tag or a name that
    // is no name of XML, or a limit passed; Save() then tells which.
    [[nodiscard]] std::string SaveText() const;
    // Empties the tree; the file name stays.
    void Reset();
    void SetFileName(const wchar* path);
    [[nodiscard]] const ZRBasicString& FileName() const { return m_fileName; }
    // Of the last Load() or Save() that returned false.
    [[nodiscard]] const XmlError& Error() const { return m_error; }

private:
    bool Read(std::string& bytes, const std::string& name);
    bool Fail(const std::string& file, std::size_t line, std::string reason);
    std::unique_ptr<XmlNode> Copy(const XmlNode& source);

    std::unique_ptr<XmlNode::Storage> m_storage;
    ZRBasicString m_fileName;
    XmlError m_error;
};

using XmlNode = XmlDocument::XmlNode;
