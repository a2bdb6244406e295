// Where everything lies that the plug-in keeps.
#pragma once

#include <filesystem>

namespace Dravel {

// Paths under the plug-in's data folder, PLUGINDLLS\Dravel\Dravel\ of the host's working folder. The working
// folder is read once, when the library is loaded: file dialogs change it later.
class DataFolder {
 public:
    explicit DataFolder(const std::filesystem::path& workingFolder)
        : root_(workingFolder / "PLUGINDLLS" / "Dravel" / "Dravel"),
          masterFile_(workingFolder / "SecurityMaster.csv") {}

    const std::filesystem::path& Root() const { return root_; }
    std::filesystem::path Data() const { return root_ / "Data"; }
    std::filesystem::path Settings() const { return root_ / "Settings.xml"; }
    std::filesystem::path Divisors() const { return root_ / "PriceDivisor.csv"; }
    std::filesystem::path Csv() const { return root_ / "CSV"; }
    std::filesystem::path FormatSets() const { return root_ / "CSV" / "DravelFormateSet"; }
    std::filesystem::path Log() const { return root_ / "Log"; }
    // The terminal's own file, in its working folder.
    const std::filesystem::path& MasterFile() const { return masterFile_; }

 private:
    std::filesystem::path root_, masterFile_;
};

}  // namespace Dravel
