// Writes a tree of settings as text, and reads text that anybody may have had hands on.
#include "tradebook/base/VELTPXMLText.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "tradebook/base/VELTPXMLSettings.h"

namespace VELTPXMLText {
namespace {

// Values are written as they are, without escaping: a file format that other programs read as it stands.
void WriteNode(const CVELTPXMLNode& node, std::string& text) {
    text.append("<").append(node.Name()).append(">");
    if (node.Children().empty()) {
        text.append("\"").append(node.Value()).append("\"");
    } else {
        text += '\n';
        for (const auto& child : node.Children())
            WriteNode(*child, text);
    }
    text.append("</").append(node.Name()).append(">\n");
}

// The name that an opening "<" or "</" at `at` starts, up to its ">"; empty when it is none. Looks at no more
// than a name's length.
std::string_view NameAt(std::string_view text, std::size_t at) {
    const std::string_view window = text.substr(std::min(at, text.size()), kMaxName + 1);
    const std::size_t end = window.find_first_of("<>\"\r\n");
    if (end == std::string_view::npos || window[end] != '>') return {};
    const std::string_view name = window.substr(0, end);
    return IsName(name) ? name : std::string_view();
}

// Where values of each name end: the positions of "</name>" with a quote in front, ascending. Found in one
// pass, so that a file full of values without an end costs no more than its bytes.
class ValueEnds {
 public:
    explicit ValueEnds(std::string_view text) {
        for (std::size_t at = text.find("\"</"); at != std::string_view::npos;
             at = text.find("\"</", at + 1)) {
            const std::string_view name = NameAt(text, at + 3);
            if (!name.empty()) ends_[name].push_back(at);
        }
    }
    std::size_t After(std::string_view name, std::size_t from) const {
        const auto found = ends_.find(name);
        if (found == ends_.end()) return std::string_view::npos;
        const auto end = std::lower_bound(found->second.begin(), found->second.end(), from);
        return end == found->second.end() ? std::string_view::npos : *end;
    }

 private:
    std::unordered_map<std::string_view, std::vector<std::size_t>> ends_;
};

class Reader {
 public:
    Reader(std::string_view text, std::size_t maxDepth) : text_(text), ends_(text), maxDepth_(maxDepth) {}

    std::unique_ptr<CVELTPXMLNode> Run() {
        constexpr std::string_view kStart = "<CURRENT_USER>";
        const std::size_t start = text_.find(kStart);
        if (start == std::string_view::npos) return nullptr;
        auto root = std::make_unique<CVELTPXMLNode>(std::string(kRootName));
        open_.push_back(root.get());
        at_ = start + kStart.size();
        while (!open_.empty() && NextTag()) {
        }
        return root;
    }

 private:
    bool NextTag() {
        at_ = text_.find('<', at_);
        if (at_ == std::string_view::npos) return false;
        const bool closing = text_.substr(at_ + 1, 1) == "/";
        const std::string_view name = NameAt(text_, at_ + (closing ? 2 : 1));
        if (name.empty()) {
            ++at_;  // no tag: stray text
        } else if (closing) {
            at_ += name.size() + 3;
            Close(name);
        } else {
            at_ += name.size() + 2;
            Element(name);
        }
        return true;
    }

    void Element(std::string_view name) {
        const bool roomLeft = open_.size() <= maxDepth_;
        if (text_.substr(at_, 1) == "\"") {
            const std::size_t end = ends_.After(name, at_ + 1);
            if (end == std::string_view::npos) return;  // a value without an end is no value
            if (roomLeft)
                open_.back()->Append(std::string(name)).SetValue(text_.substr(at_ + 1, end - at_ - 1));
            at_ = end + 1 + name.size() + 3;
        } else if (roomLeft) {
            open_.push_back(&open_.back()->Append(std::string(name)));
        }
    }

    // Closes the innermost open element of that name, and with it those inside it that were left open. A
    // closing tag that nothing opened is passed over.
    void Close(std::string_view name) {
        const auto opener = std::find_if(open_.rbegin(), open_.rend(),
                                         [name](const CVELTPXMLNode* open) { return open->Name() == name; });
        if (opener != open_.rend()) open_.erase(opener.base() - 1, open_.end());
    }

    std::string_view text_;
    ValueEnds ends_;
    std::size_t maxDepth_;
    std::size_t at_ = 0;
    std::vector<CVELTPXMLNode*> open_;  // never longer than maxDepth_ + 1
};

}  // namespace

std::string WithoutBlanks(std::string_view name) {
    std::string bare(name);
    std::erase(bare, ' ');
    return bare;
}

bool IsName(std::string_view name) {
    return !name.empty() && name.size() <= kMaxName && name.front() != '/' &&
           name.find_first_of("<>\" \r\n") == std::string_view::npos;
}

std::string Write(const CVELTPXMLNode& root) {
    std::string text;
    if (!root.Children().empty()) WriteNode(root, text);
    return text;
}

std::unique_ptr<CVELTPXMLNode> Read(std::string_view text, std::size_t maxDepth) {
    return Reader(text, maxDepth).Run();
}

}  // namespace VELTPXMLText
