// The rules by which the house is built, read off the sources themselves.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "SourceFolder.h"

namespace {

namespace fs = std::filesystem;

// An include may only point down these floors; rooms on one floor do not know each other.
const std::map<std::string, int> kFloors = {
    {"platform", 0},         {"message", 1},   {"formatset", 1}, {"host", 2},
    {"support", 3},          {"records", 4},   {"toolkit", 4},   {"tradebook/base", 5},
    {"formatset/dialog", 6}, {"tradebook", 7}, {"entry", 8},     {"plugin", 9},
};

struct Source {
    std::string path;  // relative to src/, with forward slashes
    std::vector<std::string> includes;
    std::size_t lines = 0;
};

std::string RoomOf(const std::string& path) {
    std::string best;
    for (const auto& [room, floor] : kFloors) {
        if (path.starts_with(room + "/") && room.size() > best.size()) best = room;
    }
    return best;
}

Source ReadSource(const fs::path& root, const fs::path& file) {
    Source source{fs::relative(file, root).generic_string(), {}, 0};
    std::ifstream in(file);
    for (std::string line; std::getline(in, line); ++source.lines) {
        if (!line.starts_with("#include")) continue;
        const auto open = line.find_first_of("\"<");
        const auto close = line.find_first_of("\">", open + 1);
        if (close != std::string::npos) source.includes.push_back(line.substr(open + 1, close - open - 1));
    }
    return source;
}

std::vector<Source> AllSources() {
    const fs::path root = fs::path(DRAVEL_SOURCE_DIR) / "src";
    std::vector<Source> sources;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const auto extension = entry.path().extension();
        if (extension == ".h" || extension == ".cpp") sources.push_back(ReadSource(root, entry.path()));
    }
    return sources;
}

bool MayKnowWindows(const std::string& path) {
    const std::string name = fs::path(path).filename().string();
    return path.find("/win32/") != std::string::npos || name.ends_with("Window.cpp") ||
           (name.starts_with("Dlg") && name.ends_with(".cpp"));
}

TEST(House, IncludesPointDown) {
    const auto sources = AllSources();
    ASSERT_GT(sources.size(), 40u);
    for (const Source& source : sources) {
        const std::string room = RoomOf(source.path);
        ASSERT_FALSE(room.empty()) << source.path << " lies in no room";
        for (const std::string& include : source.includes) {
            const std::string other = RoomOf(include);
            if (other.empty() || other == room) continue;
            EXPECT_LT(kFloors.at(other), kFloors.at(room)) << source.path << " includes " << include;
        }
    }
}

TEST(House, OnlyWindowFilesKnowTheSystem) {
    for (const Source& source : AllSources()) {
        for (const std::string& include : source.includes) {
            const bool system = include == "windows.h" || include == "windowsx.h" ||
                                include == "commctrl.h" || include == "commdlg.h" || include == "unistd.h" ||
                                include == "sys/stat.h";
            if (!system) continue;
            const bool posix = source.path.starts_with("platform/posix/");
            EXPECT_TRUE(MayKnowWindows(source.path) || posix) << source.path << " includes " << include;
        }
    }
}

// Whatever the world calls goes through the one shell, or does not go far.
TEST(House, ProceduresAreGuarded) {
    const fs::path root = fs::path(DRAVEL_SOURCE_DIR) / "src";
    const std::set<std::string> bare{
        "FrameProcedure",       // the host's own part is no call of ours; the rest is guarded
        "TakeFirst",            // called by a call of ours
        "WaitAndFree",          // waits and frees; neither computes nor throws
        "DravelForeignFilter",  // runs while an exception is on its way
    };
    std::size_t procedures = 0;
    for (const Source& source : AllSources()) {
        std::ifstream in(root / source.path);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        for (std::size_t at = 0; (at = text.find(" CALLBACK ", at)) != std::string::npos;) {
            const std::size_t name = at + 10;
            at = text.find('(', name);
            const std::size_t body = text.find_first_of(";{", text.find(')', at));
            if (text[body] == ';') continue;  // declared
            std::string function = text.substr(name, at - name);
            function.erase(0, function.rfind(':') + 1);
            const std::string inside = text.substr(body, text.find("\n}", body) - body);
            ++procedures;
            EXPECT_TRUE(inside.find("Guarded(") != std::string::npos || bare.count(function) != 0)
                << source.path << ": " << function;
        }
    }
    EXPECT_GE(procedures, 9u);
}

TEST(House, FilesStayShort) {
    for (const Source& source : AllSources())
        EXPECT_LE(source.lines, 500u) << source.path;
}

}  // namespace
