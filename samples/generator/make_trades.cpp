// Writes the sample files: trades to import, the security master and the clients that go with them.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <string>

#include "formatset/NumberText.h"
#include "generator/TradeGenerator.h"
#include "generator/Universe.h"

namespace {

using namespace Dravel;

constexpr const char* kUsage =
    "make_trades --csv FILE --trades N [--seed S] [--duplicates D]\n"
    "            [--unknown-lines L --unknown-clients C] [--format keys|bare]\n"
    "make_trades --master FILE\n"
    "make_trades --clients FILE\n";

int Usage() {
    std::fputs(kUsage, stderr);
    return 2;
}

// False when a word is no option or lacks its value.
bool ReadOptions(int count, char** words, std::map<std::string, std::string>& options) {
    for (int i = 1; i < count; i += 2) {
        if (std::strncmp(words[i], "--", 2) != 0 || i + 1 == count) return false;
        options[words[i] + 2] = words[i + 1];
    }
    return true;
}

int Report(std::ofstream& out, const std::string& path) {
    out.close();
    if (out) return 0;
    std::fprintf(stderr, "%s could not be written\n", path.c_str());
    return 1;
}

int WriteText(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
    return Report(out, path);
}

int WriteTrades(std::map<std::string, std::string>& options) {
    SampleFile file;
    file.trades = ReadUnsigned(options["trades"]);
    if (options.contains("seed")) file.seed = ReadUnsigned(options["seed"]);
    file.duplicates = ReadUnsigned(options["duplicates"]);
    file.unknownLines = ReadUnsigned(options["unknown-lines"]);
    if (options.contains("unknown-clients")) file.unknownClients = ReadUnsigned(options["unknown-clients"]);
    file.header = options["format"] != "bare";
    std::ofstream out(options["csv"], std::ios::binary);
    WriteSampleFile(file, [&out](std::string_view line) {
        out.write(line.data(), static_cast<std::streamsize>(line.size()));
    });
    return Report(out, options["csv"]);
}

}  // namespace

int main(int count, char** words) {
    std::map<std::string, std::string> options;
    if (!ReadOptions(count, words, options)) return Usage();
    if (options.contains("csv")) return WriteTrades(options);
    if (options.contains("master")) return WriteText(options["master"], Sample::SecurityMasterCsv());
    if (options.contains("clients")) return WriteText(options["clients"], Sample::ClientsCsv());
    return Usage();
}
