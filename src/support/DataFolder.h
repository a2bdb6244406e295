// Where everything lies that the plug-in keeps.
#pragma once

#include <filesystem>

namespace Dravel {

// Paths under the plug-in's data folder, PLUGINDLLS\Dravel\Dravel\ of the host's working folder. The working
// folder is read once, when the library is loaded: file dialogs change it later.
class DataFolder {
 public:
    explicit DataFolder(const std::filesystem::path& workingFolder)
        : root_(workingFolder / "PLUGINDLLS" / "Dravel" / "Dravel") {}

    const std::filesystem::path& Root() const { return root_; }
    std::filesystem::path Data() const { return root_ / "Data"; }
    std::filesystem::path Settings() const { return root_ / "Settings.xml"; }
    std::filesystem::path Divisors() const { return root_ / "PriceDivisor.csv"; }
    std::filesystem::path Csv() const { return root_ / "CSV"; }
    std::filesystem::path FormatSets() const { return root_ / "CSV" / "DravelFormateSet"; }
    std::filesystem::path Log() const { return root_ / "Log"; }

 private:
    std::filesystem::path root_;
};

}  // namespace Dravel
