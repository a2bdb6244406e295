// Commands that look: frames, callbacks, windows, files, resources, time and pictures.
#include <fstream>

#include "Commands.h"
#include "Dialogs.h"
#include "FrameText.h"
#include "Screenshot.h"
#include "Stage.h"
#include "Text.h"
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

template <class Number>
Number NumberOf(const std::string& word) {
    Number number{};
    if (!ParseNumber(word, number)) Fail(word + " is not a number");
    return number;
}

struct KindWord {
    std::string_view word;
    EntryKind kind;
};
constexpr KindWord kKinds[] = {
    {"from", EntryKind::FromPlugin}, {"to", EntryKind::ToPlugin}, {"reply", EntryKind::Reply}};

EntryKind KindOf(const std::string& word) {
    for (const KindWord& kind : kKinds)
        if (word == kind.word) return kind.kind;
    Fail("from, to or reply");
}

void CountFrames(Stage& stage, const Words& words) {
    std::uint16_t code = 0;
    if (!ParseCode(words[0], code)) Fail("unknown message code");
    const EntryKind kind = words.size() > 2 ? KindOf(words[2]) : EntryKind::FromPlugin;
    auto count = [&] { return stage.Host().Log().Count(kind, code, stage.framesFrom); };
    if (words.size() > 1) {
        const auto wanted = NumberOf<std::size_t>(words[1]);
        if (!stage.Holds([&] { return count() >= wanted; }, stage.limit) || count() != wanted)
            Fail("there are " + NumberText(count()));
    }
    stage.Report(NumberText(count()) + " frames " + CodeName(code));
}

void CountCallbacks(Stage& stage, const Words& words) {
    auto count = [&] { return stage.Host().Log().CountTexts(words[0], stage.framesFrom); };
    if (words.size() > 1 && count() != NumberOf<std::size_t>(words[1]))
        Fail("there are " + NumberText(count()));
    stage.Report(NumberText(count()) + " callbacks " + words[0]);
}

// The last frame of a code carries (or lacks, "-") a field.
void ExpectField(Stage& stage, const Words& words) {
    std::uint16_t code = 0;
    if (!ParseCode(words[0], code)) Fail("unknown message code");
    FrameLog& log = stage.Host().Log();
    for (std::size_t i = log.Size(); i-- > stage.framesFrom;) {
        const LogEntry entry = log.At(i);
        const bool frame = entry.kind == EntryKind::FromPlugin || entry.kind == EntryKind::Reply;
        if (!frame || entry.code != code) continue;
        std::string value = "-";
        for (const FieldText& field : Fields(entry.bytes))
            if (field.name == words[1]) value = field.value;
        if (!Matches(FromUtf8(words[2]), Wide(value))) Fail("it is \"" + ToUtf8(Wide(value)) + '"');
        return;
    }
    Fail("there is no such frame");
}

void ForgetFrames(Stage& stage, const Words&) {
    stage.framesFrom = stage.Host().Log().Size();
}

void DumpFrames(Stage& stage, const Words& words) {
    std::ofstream out(stage.File(words[0]), std::ios::binary);
    FrameLog& log = stage.Host().Log();
    for (std::size_t i = stage.framesFrom; i < log.Size(); ++i) {
        const LogEntry entry = log.At(i);
        const bool text = entry.kind == EntryKind::Callback || entry.kind == EntryKind::Note;
        if (text && words.size() > 1) continue;
        out << KindName(entry.kind) << '\t';
        if (text)
            out << entry.bytes << '\n';
        else
            out << entry.code << '\t' << CodeName(entry.code) << '\t' << FieldLine(entry.bytes) << '\n';
    }
}

void SnapScreen(Stage& stage, const Words& words) {
    const bool frameOnly = words.size() > 1 && words[1] == "frame";
    // Everything that is waiting to be listed or painted comes first.
    stage.OnUi([&stage] {
        if (HWND frame = stage.Host().Frame()) SendMessageW(frame, WM_TIMER, 0, 0);
        for (HWND window : TopWindows())
            if (IsWindowVisible(window))
                RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
        GdiFlush();
    });
    if (!SaveScreenshot(frameOnly ? stage.Host().Frame() : nullptr, stage.File(words[0]))) Fail("no picture");
}

struct ClassWord {
    std::string_view word;
    const wchar_t* type;
};
constexpr ClassWord kClasses[] = {{"bar", kBarClass}, {"grid", kGridClass}, {"notice", kNoticeClass}};

std::size_t CountClass(const std::wstring& type) {
    std::size_t count = 0;
    for (HWND top : TopWindows()) {
        count += ClassOf(top) == type;
        for (HWND child : Descendants(top))
            count += ClassOf(child) == type;
    }
    return count;
}

void ExpectWindows(Stage& stage, const Words& words) {
    std::wstring type = FromUtf8(words[0]);
    for (const ClassWord& known : kClasses)
        if (words[0] == known.word) type = known.type;
    const auto wanted = NumberOf<std::size_t>(words[1]);
    if (!stage.Holds([&] { return CountClass(type) == wanted; }, stage.limit))
        Fail("there are " + NumberText(CountClass(type)));
}

void ExpectVisible(Stage& stage, const Words& words) {
    if (words[1] != "yes" && words[1] != "no") Fail("yes or no");
    const bool wanted = words[1] == "yes";
    auto window = [&] { return words[0] == "grid" ? FindGrid() : FindBar(); };
    stage.Until([&] { return (window() && IsWindowVisible(window())) == wanted; }, "it is not so");
}

void ExpectFocus(Stage& stage, const Words& words) {
    std::wstring type = FromUtf8(words[0]);
    for (const ClassWord& known : kClasses)
        if (words[0] == known.word) type = known.type;
    auto focused = [&] { return ClassOf(stage.AskUi<HWND>([] { return GetFocus(); })); };
    if (!stage.Holds([&] { return focused() == type; }, stage.limit))
        Fail("the focus is with " + ToUtf8(focused()));
}

void WaitFile(Stage& stage, const Words& words) {
    const auto path = stage.Host().Folder() / std::filesystem::path(FromUtf8(words[0]));
    const bool wanted = words.size() < 2 || words[1] != "gone";
    std::error_code ignored;
    stage.Until([&] { return std::filesystem::exists(path, ignored) == wanted; }, "it is not so");
}

void ResourcesCommand(Stage& stage, const Words& words) {
    if (words[0] == "mark") {
        stage.resources = CountResources();
        return stage.Report(ResourceText(stage.resources));
    }
    if (words[0] != "compare") Fail("mark or compare");
    const auto tolerance = words.size() > 1 ? NumberOf<std::uint32_t>(words[1]) : 0;
    const auto kilobytes = words.size() > 2 ? NumberOf<std::uint32_t>(words[2]) : 0;
    const ResourceCount before = stage.resources;
    ResourceCount now;
    // Threads of the system's pool that carried the last unloading may still be on their way out.
    const bool same = stage.Holds(
        [&] {
            now = CountResources();
            return now.handles <= before.handles + tolerance && now.threads <= before.threads + tolerance &&
                   now.windows <= before.windows && now.user <= before.user + tolerance &&
                   now.gdi <= before.gdi + tolerance &&
                   (kilobytes == 0 || now.memory <= before.memory + std::uint64_t{kilobytes} * 1024);
        },
        stage.limit);
    stage.Report(ResourceText(now));
    if (!same) Fail("before: " + ResourceText(before) + "; now: " + ResourceText(now));
}

void Timing(Stage& stage, const Words& words) {
    LARGE_INTEGER now, frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    if (words[0] == "start") return void(stage.timings[words[1]] = now);
    if (words[0] != "stop" || !stage.timings.contains(words[1])) Fail("start NAME, then stop NAME");
    const auto passed = (now.QuadPart - stage.timings[words[1]].QuadPart) * 1000 / frequency.QuadPart;
    stage.Report(words[1] + ": " + NumberText(passed) + " ms");
}

void WatchPaints(Stage& stage, const Words&) {
    const HWND grid = FindGrid();
    if (!grid) Fail("the book is not open");
    stage.OnUi([&stage, grid] { stage.Host().Paints().Start(grid); });
}

void ExpectPaints(Stage& stage, const Words& words) {
    PaintWatch& watch = stage.Host().Paints();
    stage.OnUi([&watch] { watch.Stop(); });
    stage.Report(NumberText(watch.Paints()) + " paints, the longest wait for one " +
                 NumberText(watch.LongestWait()) + " ms");
    if (watch.Paints() < NumberOf<std::uint32_t>(words[0])) Fail("too few paints");
}

// One word for the waiting commands, for those who think of a condition first.
void WaitUntil(Stage& stage, const Words& words) {
    constexpr std::pair<std::string_view, std::string_view> kConditions[] = {
        {"rows", "expect-rows"},      {"frames", "count-frames"},   {"box", "wait-dialog"},
        {"notice", "wait-notice"},    {"no-dialogs", "no-dialogs"}, {"file", "wait-file"},
        {"windows", "expect-windows"}};
    for (const auto& [condition, name] : kConditions) {
        if (words[0] != condition) continue;
        const Words arguments(words.begin() + 1, words.end());
        const CommandEntry* command = FindCommand(name);
        if (arguments.size() < command->least || arguments.size() > command->most)
            Fail("use: wait-until " + words[0] + ' ' + command->arguments);
        return command->run(stage, arguments);
    }
    Fail("unknown condition");
}

void Quit(Stage&, const Words&) {
    throw ScriptEnd{};
}

void Echo(Stage& stage, const Words& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    stage.Report(text);
}

void Limit(Stage& stage, const Words& words) {
    stage.limit = NumberOf<std::uint32_t>(words[0]) * 1000;
}

constexpr CommandEntry kCommands[] = {
    {"count-frames", "CODE [COUNT [from|to|reply]]", 1, 3, CountFrames},
    {"count-callbacks", "TEXT [COUNT]", 1, 2, CountCallbacks},
    {"expect-field", "CODE FIELD TEXT", 3, 3, ExpectField},
    {"forget-frames", "", 0, 0, ForgetFrames},
    {"dump-frames", "FILE [frames]", 1, 2, DumpFrames},
    {"screenshot", "FILE [frame]", 1, 2, SnapScreen},
    {"expect-windows", "bar|grid|notice|CLASS COUNT", 2, 2, ExpectWindows},
    {"expect-visible", "bar|grid yes|no", 2, 2, ExpectVisible},
    {"expect-focus", "bar|grid|CLASS", 1, 1, ExpectFocus},
    {"wait-file", "PATH [gone]", 1, 2, WaitFile},
    {"resources", "mark | compare [TOLERANCE [KB]]", 1, 3, ResourcesCommand},
    {"timing", "start|stop NAME", 2, 2, Timing},
    {"watch-paints", "", 0, 0, WatchPaints},
    {"expect-paints", "LEAST", 1, 1, ExpectPaints},
    {"wait-until", "rows|frames|box|notice|no-dialogs|file|windows ...", 1, 4, WaitUntil},
    {"quit", "", 0, 0, Quit},
    {"echo", "TEXT...", 0, 99, Echo},
    {"limit", "SECONDS", 1, 1, Limit},
};

}  // namespace

std::span<const CommandEntry> CheckCommands() {
    return kCommands;
}

const CommandEntry* FindCommand(std::string_view name) {
    for (const auto table : {PluginCommands(), DialogCommands(), GridCommands(), HeaderCommands(),
                             BarCommands(), CheckCommands(), FileCommands(), InputCommands()})
        for (const CommandEntry& command : table)
            if (command.name == name) return &command;
    return nullptr;
}

void SaveEvidence(Stage& stage) {
    SaveScreenshot(nullptr, stage.File("failure.png"));
    DumpFrames(stage, {"failure-frames.txt"});
}

}  // namespace Dravel::DevHost
