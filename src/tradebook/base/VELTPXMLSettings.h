// Settings in the registry shape, kept in a small XML text file (docs/settings.md).
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Files.h"
#include "toolkit/Registry.h"

// A named element: a value, or children in order. Owns its children.
class CVELTPXMLNode {
 public:
    explicit CVELTPXMLNode(std::string name) : name_(std::move(name)) {}

    const std::string& Name() const { return name_; }
    const std::string& Value() const { return value_; }
    void SetValue(std::string_view value) { value_ = value; }
    const std::vector<std::unique_ptr<CVELTPXMLNode>>& Children() const { return children_; }

    // The first child of that name, or nullptr. `name` has no blanks.
    CVELTPXMLNode* Find(std::string_view name) const;
    // Appends; a node that has children has no value of its own.
    CVELTPXMLNode& Append(std::string name);

 private:
    std::string name_;
    std::string value_;
    std::vector<std::unique_ptr<CVELTPXMLNode>> children_;
};

// Two trees are held, as the registry has two hives; only CURRENT_USER goes to the file. Blanks are removed
// from every name, so "Show Grid Row" and "ShowGridRow" are one. One thread at a time.
class CVELTPXMLSettings final : public CKRVPRegistry {
 public:
    enum class Hive : std::uint8_t { CurrentUser, LocalMachine };

    // Levels of elements under the outermost one. Deeper keys are not made, and not read from a file.
    static constexpr std::size_t kMaxDepth = 32;

    explicit CVELTPXMLSettings(Hive hive = Hive::CurrentUser);

    // While read-only, every write and the making of keys fails.
    void SetReadOnly(bool readOnly) { readOnly_ = readOnly; }

    bool Open(std::string_view key) override;
    bool CreateKey(std::string_view key) override;
    // Also false: no key is open, the name is empty or cannot be an element's name ("<", ">", """, line ends,
    // a leading
    // "/"), or it is the name of a key that holds values.
    bool WriteText(std::string_view name, std::string_view text) override;
    bool WriteInteger(std::string_view name, std::int32_t value) override;
    bool WriteColour(std::string_view name, std::uint32_t colour) override;
    bool WriteBinary(std::string_view name, std::span<const std::uint8_t> bytes) override;
    // Also false: the value's text is not of the asked kind from end to end, or out of its range.
    bool ReadText(std::string_view name, std::string& text) const override;
    bool ReadInteger(std::string_view name, std::int32_t& value) const override;
    bool ReadColour(std::string_view name, std::uint32_t& colour) const override;
    bool ReadBinary(std::string_view name, std::vector<std::uint8_t>& bytes) const override;

    // False when the file cannot be read or holds no CURRENT_USER element; the store is then as it was. After
    // a load no key is open.
    bool LoadFile(Dravel::IFiles& files, const std::filesystem::path& path);
    // Writes the file anew, in one step that never leaves half a file; makes missing folders. An empty store
    // writes no file and is no failure.
    bool SaveFile(Dravel::IFiles& files, const std::filesystem::path& path) const;

    // The text of the file, with LF; the CURRENT_USER tree.
    bool LoadTextForm(std::string_view text);
    // Whether the text ends as a file does that was written to its end. One that was cut short loads all the
    // same, without what stood behind the cut.
    static bool IsWhole(std::string_view text);
    // Puts every value of `changes` into this store; where one of the two has a key and the other a value of
    // that name, this store's stays. No key is open afterwards.
    void LayOver(const CVELTPXMLSettings& changes);
    std::string TextForm() const;

    const CVELTPXMLNode& CurrentUser() const { return *currentUser_; }

 private:
    CVELTPXMLNode& Root() const { return hive_ == Hive::CurrentUser ? *currentUser_ : *localMachine_; }
    const std::string* Find(std::string_view name) const;

    Hive hive_;
    std::unique_ptr<CVELTPXMLNode> localMachine_;
    std::unique_ptr<CVELTPXMLNode> currentUser_;
    CVELTPXMLNode* current_ = nullptr;  // the key that is open
    bool readOnly_ = false;
};
