// The dialog in which import format sets are made, edited, tried on a sample file and managed.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "formatset/FormatSetFolder.h"
#include "formatset/dialog/FormatSetGrid.h"
#include "host/User.h"
#include "support/DataFolder.h"
#include "toolkit/DialogBase.h"

// The name's field says what the set is to be called: saving under another name than the set's own makes a
// copy. Nothing that was changed is lost without a question.
class CDlgFormatSet final : public Dravel::DialogBase {
 public:
    // `titles` and `keys` outlive the dialog.
    CDlgFormatSet(Dravel::IFiles& files, Dravel::IUser& user, const Dravel::DataFolder& folder,
                  Dravel::ColumnTexts titles, Dravel::ColumnTexts keys);

    // Shows the set of that name first; without one the first there is, else a new one. Returns the name of
    // the set that was stored last; when none was, `name`, as it is called now; empty: none.
    std::filesystem::path Open(void* owner, const std::filesystem::path& name);

 private:
    void OnInit() override;
    bool OnCommand(int id, int code) override;
    void OnOk() override { Save(); }
    void OnCancel() override;
    void OnDestroy() override;

    bool MakeGrid();
    void List();
    void ChooseListed();
    void ShowStored(const std::filesystem::path& name);
    void Show(const Dravel::FormatSet& set);
    void ShowNew();
    void ShowFirst();
    Dravel::FormatSet Shown();

    void New();
    void Duplicate();
    void Rename();
    void Delete();
    void SaveShown() { Save(); }
    bool Save();
    void Reset();
    void BrowseSample();
    void TestSample();

    bool LeaveSet();
    bool NameIsUsable(const std::filesystem::path& name);
    void SetName(const std::filesystem::path& name);
    std::filesystem::path TypedName() const;
    void Refuse(const std::string& text);
    bool Ask(const std::string& text);
    void Say(const std::string& text);
    bool Store(const std::filesystem::path& name, const Dravel::FormatSet& set);

    Dravel::IFiles& files_;
    Dravel::IUser& user_;
    const Dravel::DataFolder& folder_;
    Dravel::ColumnTexts titles_, keys_;
    Dravel::FormatSetFolder sets_;
    CFormatSetGrid grid_;

    std::vector<std::filesystem::path> names_;  // as listed
    std::filesystem::path result_;              // of Open
    std::filesystem::path current_;             // the stored set that is shown; empty: a new one
    bool unread_ = false;                       // the stored set could not be read: what is shown is another
    std::wstring typed_;                        // in the name's field, before the list overwrote it
    Dravel::FormatSet saved_;                   // what was shown when it was last stored
};
