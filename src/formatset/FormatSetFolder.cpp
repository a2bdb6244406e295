#include "formatset/FormatSetFolder.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include "formatset/CsvLine.h"
#include "formatset/TextFile.h"

namespace Dravel {
namespace {

namespace fs = std::filesystem;
using Name = fs::path::string_type;

constexpr std::size_t kFirstLineBlock = 64 * 1024;

// Names are wide on one system and narrow on the other; only their ASCII characters are looked at.
char32_t Letter(fs::path::value_type c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char32_t>(c) + ('a' - 'A') : static_cast<char32_t>(c);
}

bool Same(const Name& name, std::string_view text) {
    return std::equal(name.begin(), name.end(), text.begin(), text.end(), [](auto a, char b) {
        return Letter(a) == Letter(static_cast<fs::path::value_type>(b));
    });
}

bool Before(const fs::path& a, const fs::path& b) {
    return std::lexicographical_compare(a.native().begin(), a.native().end(), b.native().begin(),
                                        b.native().end(),
                                        [](auto x, auto y) { return Letter(x) < Letter(y); });
}

bool SameName(const fs::path& a, const fs::path& b) {
    return !Before(a, b) && !Before(b, a);
}

// What the system opens a device by, whatever the name's extension.
bool IsDevice(const Name& name) {
    static constexpr std::array<std::string_view, 7> kDevices = {"con",    "prn",     "aux",   "nul",
                                                                 "conin$", "conout$", "clock$"};
    static constexpr std::array<std::string_view, 2> kPorts = {"com", "lpt"};
    Name base = name.substr(0, name.find('.'));
    while (!base.empty() && base.back() == ' ')
        base.pop_back();
    if (std::any_of(kDevices.begin(), kDevices.end(), [&base](auto device) { return Same(base, device); }))
        return true;
    // A port's number may be a raised 1, 2 or 3.
    if (base.size() != 4) return false;
    const auto number = Letter(base[3]);
    const bool digit = (number >= '0' && number <= '9') || number == 0xB9 || number == 0xB2 || number == 0xB3;
    return digit && std::any_of(kPorts.begin(), kPorts.end(),
                                [&base](auto port) { return Same(base.substr(0, 3), port); });
}

bool MayStandInName(fs::path::value_type c) {
    static constexpr std::string_view kRefused = "<>:\"/\\|?*";
    const auto letter = Letter(c);
    return letter >= ' ' && letter != 0x7F &&
           (letter > 0x7F || kRefused.find(static_cast<char>(letter)) == std::string_view::npos);
}

}  // namespace

bool IsSetName(const fs::path& path) {
    const Name& name = path.native();
    if (name.empty() || name.size() > kSetNameLimit) return false;
    if (name.front() == ' ' || name.back() == ' ' || name.back() == '.') return false;
    return std::all_of(name.begin(), name.end(), &MayStandInName) && !IsDevice(name);
}

fs::path FormatSetFolder::PathOf(const fs::path& name) const {
    fs::path path = folder_ / name;
    path += ".CSV";
    return path;
}

std::vector<fs::path> FormatSetFolder::Names() const {
    std::vector<fs::path> files, names;
    if (!files_.List(folder_, files)) return names;
    for (const fs::path& file : files) {
        if (Same(file.extension().native(), ".csv") && IsSetName(file.stem())) names.push_back(file.stem());
    }
    std::sort(names.begin(), names.end(), &Before);
    return names;
}

fs::path FormatSetFolder::Find(const fs::path& name) const {
    for (const fs::path& one : Names()) {
        if (SameName(one, name)) return one;
    }
    return {};
}

FileStatus FormatSetFolder::Load(const fs::path& name, FormatSet& set) const {
    std::string text;
    if (const FileStatus status = ReadTextFile(files_, PathOf(name), text); !status) return status;
    if (text.size() > kFormatSetLimit || text.find('\0') != std::string::npos) return {FileFault::Other, 0};
    set = ReadFormatSet(text);
    return {};
}

FileStatus FormatSetFolder::Save(const fs::path& name, const FormatSet& set, ColumnTexts titles) const {
    return WriteTextFile(files_, PathOf(name), FormatSetText(set, titles));
}

FileStatus FormatSetFolder::Rename(const fs::path& from, const fs::path& to) const {
    const fs::path there = Find(to);
    if (!there.empty() && !SameName(there, from)) return {FileFault::Exists, 0};
    return files_.Rename(PathOf(from), PathOf(to));
}

FileStatus FormatSetFolder::Remove(const fs::path& name) const {
    return files_.Remove(PathOf(name));
}

fs::path FormatSetFolder::FreeName(const fs::path& wanted) const {
    fs::path name = wanted;
    for (int number = 2; !Find(name).empty(); ++number) {
        name = wanted;
        name += " ";
        name += std::to_string(number);
    }
    return name;
}

FileStatus FirstLineOf(IFiles& files, const fs::path& path, std::string& line) {
    std::unique_ptr<IFile> file;
    FileStatus status = files.Open(path, FileMode::Read, FileShare::DenyNone, file);
    std::string front;
    std::size_t end = std::string::npos, got = 1;
    while (status && got != 0 && end == std::string::npos && front.size() < kFirstLineLimit) {
        const std::size_t before = front.size();
        front.resize(before + kFirstLineBlock);
        status = file->Read(front.data() + before, kFirstLineBlock, got);
        front.resize(before + got);
        end = front.find('\n', before);
    }
    if (!status) return status;
    // A name that is cut off could be another's.
    if (end == std::string::npos && got != 0) {
        const std::size_t comma = front.rfind(',');
        end = comma == std::string::npos ? 0 : comma;
    }
    front.resize(std::min(end, front.size()));
    if (front.ends_with('\r')) front.pop_back();
    line = WithoutByteOrderMark(front);
    return status;
}

}  // namespace Dravel
