// The real disk of this system keeps the promises of platform/Files.h, on which the book relies.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>

#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/LongPath.h"
#ifdef _WIN32
#include "platform/win32/UniqueHandle.h"
#endif

using namespace Dravel;
namespace fs = std::filesystem;

namespace {

struct Disk : ::testing::Test {
    Disk() : root(fs::temp_directory_path() / ("dravel-files-" + std::to_string(std::random_device()()))) {
        EXPECT_TRUE(files.MakeFolders(root / "a" / "b"));
    }
    ~Disk() override {
#ifdef _WIN32
        RemoveTree(LongPathForm(root.wstring()));
#else
        fs::remove_all(root);
#endif
        EXPECT_FALSE(fs::exists(root));
    }
#ifdef _WIN32
    // The standard library's loses its way in long paths.
    static void RemoveTree(const std::wstring& folder) {
        WIN32_FIND_DATAW found;
        if (unique_find search(FindFirstFileW((folder + L"\\*").c_str(), &found)); search) {
            do {
                const std::wstring name = found.cFileName, path = folder + L'\\' + name;
                if (!DeleteFileW(path.c_str()) && name != L"." && name != L"..") RemoveTree(path);
            } while (FindNextFileW(search.get(), &found));
        }
        RemoveDirectoryW(folder.c_str());
    }
#endif

    bool Put(const char* name, std::string_view text, FileMode mode = FileMode::Create) {
        std::unique_ptr<IFile> file;
        return files.Open(root / name, mode, FileShare::DenyAll, file) &&
               file->Write(text.data(), text.size()) && file->Flush() && file->Close();
    }
    std::string Get(const fs::path& name) {
        std::unique_ptr<IFile> file;
        std::string text(1000, '?');
        std::size_t got = 0;
        if (!files.Open(root / name, FileMode::Read, FileShare::DenyNone, file)) return "(none)";
        EXPECT_TRUE(file->Read(text.data(), text.size(), got));
        return text.substr(0, got);
    }
    FileFault Opening(const char* name, FileMode mode, FileShare share) {
        std::unique_ptr<IFile> file;
        return files.Open(root / name, mode, share, file).fault;
    }

    IFiles& files = SystemFiles();
    fs::path root;
};

}  // namespace

TEST_F(Disk, ModesOfOpening) {
    EXPECT_EQ(Opening("x", FileMode::Read, FileShare::DenyNone), FileFault::NotFound);
    EXPECT_EQ(Opening("x", FileMode::ReadWrite, FileShare::DenyNone), FileFault::NotFound);
    EXPECT_EQ(Opening("no/x", FileMode::Create, FileShare::DenyNone), FileFault::PathNotFound);
    ASSERT_TRUE(Put("x", "hello"));
    ASSERT_TRUE(Put("x", "HE", FileMode::ReadWrite));
    ASSERT_TRUE(Put("x", " you", FileMode::Append));
    EXPECT_EQ(Get("x"), "HEllo you");
    FileInfo info;
    ASSERT_TRUE(files.Info(root / "x", info));
    EXPECT_EQ(info.size, 9u);
    EXPECT_NEAR(static_cast<double>(info.modified), static_cast<double>(SystemClock().Now()), 5);
    ASSERT_TRUE(Put("x", ""));
    EXPECT_EQ(Get("x"), "");

    std::vector<fs::path> names;
    ASSERT_TRUE(Put("y", ""));
    ASSERT_TRUE(files.List(root, names));
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<fs::path>{"x", "y"})) << "plain files, not folders";
    EXPECT_TRUE(files.List(root / "no", names));
    EXPECT_TRUE(names.empty());
}

TEST_F(Disk, NamesMoveLinkAndReplace) {
    ASSERT_TRUE(Put("old", "old") && Put("new", "new"));
    EXPECT_EQ(files.Rename(root / "new", root / "old").fault, FileFault::Exists);
    EXPECT_EQ(files.Rename(root / "new", root / "no" / "new").fault, FileFault::PathNotFound);
    EXPECT_EQ(files.Rename(root / "none", root / "other").fault, FileFault::NotFound);
    ASSERT_TRUE(files.Link(root / "old", root / "a" / "kept"));
    EXPECT_EQ(files.Link(root / "old", root / "a" / "kept").fault, FileFault::Exists);
    ASSERT_TRUE(files.Replace(root / "new", root / "old"));
    EXPECT_EQ(Get("old") + Get("a/kept") + Get("new"), "newold(none)");
    ASSERT_TRUE(files.Rename(root / "old", root / "a" / "b" / "moved"));
    EXPECT_EQ(Get("a/b/moved") + Get("old"), "new(none)");
    ASSERT_TRUE(files.Remove(root / "a" / "b" / "moved"));
    EXPECT_EQ(files.Remove(root / "a" / "b" / "moved").fault, FileFault::NotFound);
    EXPECT_TRUE(files.MakeFolders(root / "a")) << "is there already";
    ASSERT_TRUE(Put("plain", ""));
    EXPECT_FALSE(files.MakeFolders(root / "plain"));
}

// A terminal may be installed deep down, and a backup's name is long.
TEST_F(Disk, PathsMayBeLong) {
    fs::path chain = "x";
    for (int level = 0; level < 8; ++level)
        chain /= std::string(40, static_cast<char>('a' + level));
    const fs::path back = fs::current_path();
    fs::current_path(root);
    for (const fs::path& folder : {root / chain, chain / "relative", root / chain / ".." / "up"}) {
        const fs::path file = folder / "file", other = folder / "other";
        ASSERT_TRUE(files.MakeFolders(folder)) << folder;
        ASSERT_TRUE(files.MakeFolders(folder)) << folder << " is there already";
        EXPECT_EQ(files.Remove(file).fault, FileFault::NotFound);
        std::unique_ptr<IFile> handle;
        ASSERT_TRUE(files.Open(file, FileMode::Create, FileShare::DenyNone, handle)) << file;
        EXPECT_TRUE(handle->Write("text", 4) && handle->Close());
        ASSERT_TRUE(files.OpenLock(folder / "lock", handle));
        handle.reset();
        FileInfo info;
        EXPECT_TRUE(files.Info(file, info) && info.size == 4 && !info.folder);
        EXPECT_TRUE(files.Info(folder, info) && info.folder);
        EXPECT_TRUE(files.Link(file, other));
        EXPECT_TRUE(files.Remove(file));
        EXPECT_TRUE(files.Rename(other, file));
        EXPECT_TRUE(files.Replace(file, other) && files.Replace(other, file));
        std::vector<fs::path> names;
        EXPECT_TRUE(files.List(folder, names));
        EXPECT_EQ(names, std::vector<fs::path>{"file"});
    }
    fs::current_path(back);
}

TEST(LongPath, FullPathsGetTheLongForm) {
    const std::pair<std::wstring, std::wstring> cases[] = {
        {LR"(C:\a\b.txt)", LR"(\\?\C:\a\b.txt)"},
        {LR"(\\server\share\b)", LR"(\\?\UNC\server\share\b)"},
        {LR"(\\?\C:\a)", LR"(\\?\C:\a)"},
        {LR"(\\?\UNC\s\t)", LR"(\\?\UNC\s\t)"},
        {LR"(\\.\NUL)", LR"(\\.\NUL)"},
        {LR"(C:a)", LR"(C:a)"},
        {LR"(\a)", LR"(\a)"},
        {L"", L""},
    };
    for (const auto& [full, form] : cases)
        EXPECT_EQ(LongPathForm(full), form);
}

TEST_F(Disk, DenyWriteLetsReadersInOnly) {
    ASSERT_TRUE(Put("x", "hello"));
    std::unique_ptr<IFile> file;
    ASSERT_TRUE(files.Open(root / "x", FileMode::ReadWrite, FileShare::DenyWrite, file));
    EXPECT_EQ(Get("x"), "hello");
    for (const FileMode mode : {FileMode::ReadWrite, FileMode::Create, FileMode::Append}) {
        EXPECT_EQ(Opening("x", mode, FileShare::DenyNone), FileFault::InUse);
    }
    EXPECT_EQ(Get("x"), "hello") << "refused before anything was emptied";
    EXPECT_TRUE(file->Close());
    EXPECT_EQ(Opening("x", FileMode::ReadWrite, FileShare::DenyNone), FileFault::None);
}

TEST_F(Disk, ALockHasOneOwnerAndLeavesNothing) {
    std::unique_ptr<IFile> owner, second;
    ASSERT_TRUE(files.OpenLock(root / "lock", owner));
    EXPECT_EQ(files.OpenLock(root / "lock", second).fault, FileFault::InUse);
    EXPECT_EQ(second, nullptr);
    owner.reset();
    EXPECT_FALSE(fs::exists(root / "lock"));
    ASSERT_TRUE(Put("lock", "left by a killed owner"));
    EXPECT_TRUE(files.OpenLock(root / "lock", second));
}

#ifdef _WIN32
TEST(UniqueHandle, GivesBackEachHandleOnce) {
    static std::string closed;
    struct Traits {
        using type = char;
        static type none() { return 0; }
        static bool close(type handle) { return closed += handle, handle != 'b'; }
    };
    using Handle = unique_handle<Traits>;
    {
        Handle a('a'), b('b'), c('c');
        a = std::move(b);
        EXPECT_EQ(closed, "a") << "what it held is given back before it takes another";
        EXPECT_FALSE(b);
        Handle& self = c;
        c = std::move(self);
        EXPECT_EQ(c.get(), 'c');
        EXPECT_FALSE(a.reset('d')) << "the system's refusal is told";
        EXPECT_EQ(c.release(), 'c');
        const Handle moved(std::move(a));
        EXPECT_EQ(moved.get(), 'd');
    }
    EXPECT_EQ(closed, "abd");
}

TEST_F(Disk, WhatIsHeldOpenIsNotReplaced) {
    ASSERT_TRUE(Put("old", "old") && Put("new", "new"));
    std::unique_ptr<IFile> file;
    ASSERT_TRUE(files.Open(root / "old", FileMode::Read, FileShare::DenyNone, file));
    EXPECT_EQ(files.Replace(root / "new", root / "old").fault, FileFault::InUse);
    EXPECT_EQ(Get("old") + Get("new"), "oldnew");
    file.reset();
    EXPECT_TRUE(files.Replace(root / "new", root / "old"));
}
#endif
