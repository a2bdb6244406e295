// Splits a script into words and nests its blocks.
#include "Script.h"

#include <algorithm>

#include "Text.h"

namespace Dravel::DevHost {
namespace {

struct Word {
    std::string text;
    int line = 0;
    bool plain = true;  // not quoted: may be a brace or a separator
    bool breaks = false;
    bool Is(std::string_view mark) const { return plain && !breaks && text == mark; }
};

char Escaped(char c) {
    switch (c) {
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        default:
            return c;
    }
}

class Reader {
 public:
    explicit Reader(std::string_view text) : text_(text) {}

    bool Split(std::vector<Word>& words, std::string& error) {
        while (at_ < text_.size()) {
            const char c = text_[at_];
            if (c == '\n' || c == ';') {
                words.push_back({{}, line_, true, true});
                line_ += c == '\n';
                ++at_;
            } else if (c == '#') {
                while (at_ < text_.size() && text_[at_] != '\n')
                    ++at_;
            } else if (c == ' ' || c == '\t' || c == '\r') {
                ++at_;
            } else if (c == '"') {
                if (!Quoted(words))
                    return error = "line " + NumberText(line_) + ": a quote is not closed", false;
            } else {
                const auto end = std::min(text_.find_first_of(" \t\r\n;", at_), text_.size());
                words.push_back({std::string(text_.substr(at_, end - at_)), line_});
                at_ = end;
            }
        }
        return true;
    }

 private:
    bool Quoted(std::vector<Word>& words) {
        Word word{{}, line_, false};
        for (++at_; at_ < text_.size() && text_[at_] != '\n'; ++at_) {
            if (text_[at_] == '"') {
                ++at_;
                words.push_back(std::move(word));
                return true;
            }
            if (text_[at_] == '\\' && at_ + 1 < text_.size())
                word.text += Escaped(text_[++at_]);
            else
                word.text += text_[at_];
        }
        return false;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    int line_ = 1;
};

// Takes statements up to the brace that closes the block, or to the end of the script at depth 0.
bool Nest(const std::vector<Word>& words, std::size_t& at, int depth, std::vector<Statement>& into,
          std::string& error) {
    Statement current;
    auto finish = [&] {
        if (!current.words.empty()) into.push_back(std::move(current));
        current = {};
    };
    for (; at < words.size(); ++at) {
        const Word& word = words[at];
        if (word.breaks) {
            finish();
        } else if (word.Is("}")) {
            finish();
            if (depth == 0) return error = "line " + NumberText(word.line) + ": } without {", false;
            return true;
        } else if (word.Is("{")) {
            const bool repeats = current.words.size() == 2 && current.words[0] == "repeat" &&
                                 ParseNumber(current.words[1], current.repeat);
            if (!repeats)
                return error = "line " + NumberText(word.line) + ": only repeat N opens a block", false;
            if (!Nest(words, ++at, depth + 1, current.body, error)) return false;
            finish();
        } else {
            current.line = current.words.empty() ? word.line : current.line;
            current.words.push_back(word.text);
        }
    }
    finish();
    if (depth > 0) error = "a block is not closed";
    return depth == 0;
}

}  // namespace

bool ParseScript(std::string_view text, std::vector<Statement>& statements, std::string& error) {
    std::vector<Word> words;
    std::size_t at = 0;
    return Reader(text).Split(words, error) && Nest(words, at, 0, statements, error);
}

}  // namespace Dravel::DevHost
