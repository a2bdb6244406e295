// Walks the statements of a script, one command after the other.
#include "ScriptRunner.h"

#include <fstream>
#include <iterator>

#include "Commands.h"
#include "Script.h"
#include "Stage.h"
#include "Text.h"
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

void RunCommand(Stage& stage, const Statement& statement) {
    const Words arguments(statement.words.begin() + 1, statement.words.end());
    const CommandEntry* command = FindCommand(statement.words[0]);
    if (!command) Fail("no such command");
    if (arguments.size() < command->least || arguments.size() > command->most)
        Fail("use: " + std::string(command->name) + ' ' + command->arguments);
    command->run(stage, arguments);
}

void RunStatements(Stage& stage, const std::vector<Statement>& statements) {
    for (const Statement& statement : statements) {
        if (!statement.body.empty()) {
            for (std::uint32_t i = 0; i < statement.repeat; ++i)
                RunStatements(stage, statement.body);
            continue;
        }
        try {
            RunCommand(stage, statement);
        } catch (const ScriptFailure& failure) {
            // The innermost line is the one to say.
            if (failure.what.starts_with("line ")) throw;
            Fail("line " + NumberText(statement.line) + ": " + Joined(statement.words) + ": " + failure.what);
        }
    }
}

// Closes what is still open, as a person who leaves does; a box that asks something then is a failure of the
// script.
void Leave(Stage& stage) {
    CloseFrame(stage);
    stage.OnUi([&stage] { stage.Host().UnloadPlugin(); });
    if (stage.Watch().PreparedLeft()) Fail("a prepared answer was not asked for");
}

}  // namespace

ScriptRunner::ScriptRunner(Terminal& terminal, std::filesystem::path script, std::filesystem::path out)
    : terminal_(terminal), script_(std::move(script)), out_(std::move(out)), uiThread_(GetCurrentThreadId()) {
    thread_ = std::thread([this] { Run(); });
}

ScriptRunner::~ScriptRunner() {
    thread_.join();
}

void ScriptRunner::Run() {
    Stage stage(terminal_, out_);
    stage.scriptFolder = script_.parent_path();
    try {
        std::ifstream in(script_, std::ios::binary);
        if (!in) Fail("cannot open the script");
        const std::string text((std::istreambuf_iterator<char>(in)), {});
        std::vector<Statement> statements;
        std::string error;
        if (!ParseScript(text, statements, error)) Fail(error);
        try {
            RunStatements(stage, statements);
        } catch (const ScriptEnd&) {
        }
        Leave(stage);
        stage.Report("OK " + ToUtf8(script_.filename().native()));
        exitCode_ = 0;
    } catch (const ScriptFailure& failure) {
        stage.Report("FAILED " + ToUtf8(script_.filename().native()) + ": " + failure.what);
        SaveEvidence(stage);
        TerminateProcess(GetCurrentProcess(), 1);
    } catch (const std::exception& error) {
        stage.Report("FAILED " + ToUtf8(script_.filename().native()) + ": " + error.what());
        TerminateProcess(GetCurrentProcess(), 1);
    }
    PostThreadMessageW(uiThread_, WM_QUIT, 0, 0);
}

}  // namespace Dravel::DevHost
