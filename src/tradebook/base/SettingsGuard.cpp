#include "tradebook/base/SettingsGuard.h"

#include <utility>

#include "support/FaultText.h"

namespace Dravel {

namespace {

constexpr char kContext[] = "Settings", kCannotBeRead[] = "The settings cannot be read";

}  // namespace

KeptFile::State SettingsGuard::Open() {
    Read();
    since_ = clock_.Ticks();
    if (!Known()) {
        notice_ = FaultText(kCannotBeRead, file_.Fault()) +
                  " No trade is reported until they can be. Trying again.";
        log_.Line(LogLevel::Warning, kContext, notice_);
    }
    return State();
}

void SettingsGuard::Read() {
    if (file_.Try([this](const std::string& text) { return Take(text); }) != KeptFile::State::Damaged) return;
    if (const FileStatus status = file_.KeepDamaged(); !status)
        log_.Line(LogLevel::Warning, kContext, FaultText("The damaged settings cannot be copied", status));
    notice_ = file_.DamageText("The settings");
}

bool SettingsGuard::Take(const std::string& text) {
    CVELTPXMLSettings read;
    const bool taken = read.LoadTextForm(text);
    read.LayOver(settings_);
    settings_ = std::move(read);
    return taken && CVELTPXMLSettings::IsWhole(text);
}

void SettingsGuard::Retry() {
    if (!Known()) {
        Read();
        if (!Known()) return;
        if (State() != KeptFile::State::Damaged) notice_ = "The settings could be read.";
        question_.Now();
        if (const auto known = std::exchange(known_, nullptr)) known();
    }
    if (unsaved_) Write(false);
}

bool SettingsGuard::AskIsDue() const {
    return !Known() && !asked_ && clock_.Ticks() - since_ >= kPatience;
}

void SettingsGuard::Ask(IUser& user) {
    if (!AskIsDue()) return;
    asked_ = true;
    const std::uint32_t answer =
        user.Ask(FaultText(kCannotBeRead, file_.Fault()) +
                     " Open the book with the defaults? All trades are then reported to the terminal.",
                 Buttons::YesNo, question_);
    if (answer != kAnswerYes || Known()) return;
    file_.LeaveAlone();
    log_.Line(LogLevel::Warning, kContext,
              "The book is opened with the default settings; the file is left alone until the next opening.");
    if (const auto known = std::exchange(known_, nullptr)) known();
}

void SettingsGuard::Save() {
    if (State() == KeptFile::State::LeftAlone) return;
    unsaved_ = true;
    if (const FileStatus status = Write(false); !status)
        log_.Line(LogLevel::Warning, kContext, FaultText("The settings wait to be saved", status));
}

FileStatus SettingsGuard::Write(bool patient) {
    const std::string text = settings_.TextForm();
    const FileStatus status = text.empty() ? FileStatus{} : file_.Write(text, patient);
    unsaved_ = !status;
    return status;
}

SettingsGuard::~SettingsGuard() {
    if (!unsaved_) return;
    if (!Known()) Read();
    if (const FileStatus status = Write(true); !status)
        log_.Line(LogLevel::Warning, kContext, FaultText("The settings could not be saved", status));
}

std::string SettingsGuard::TakeNotice() {
    return std::exchange(notice_, {});
}

}  // namespace Dravel
