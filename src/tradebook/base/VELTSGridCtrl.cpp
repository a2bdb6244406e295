// The column profile of a grid: columns are made through it and written back to it.
#include "tradebook/base/VELTSGridCtrl.h"

#include <utility>

using namespace Dravel;

void CVELTSGridCtrl::LoadProfile(IFiles& files, const std::filesystem::path& dataFolder, std::string name) {
    profile_ = std::make_unique<ColumnProfile>(files, dataFolder, std::move(name));
}

void CVELTSGridCtrl::LoadMultipleSort() {
    EnableMultipleSort(profile_->MultipleSort());
}

void CVELTSGridCtrl::AddColumn(GridColumn defaults) {
    profile_->AddColumn(MutableModel(), std::move(defaults), MultipleSort());
}

void CVELTSGridCtrl::RestoreColumnOrder() {
    profile_->Restore(MutableModel());
    ModelChanged();
    if (Model().Groups().Grouped()) {
        OnGroupsChanged();
    } else if (IsSorted()) {
        OnSortChanged();
    }
}

void CVELTSGridCtrl::RetryProfile() {
    if (profile_ == nullptr || Editing()) return;
    bool multipleSort = MultipleSort();
    if (profile_->Retry(MutableModel(), multipleSort)) {
        EnableMultipleSort(multipleSort);
        ModelChanged();
        OnGroupsChanged();
    }
    const std::string notice = profile_->TakeNotice();
    if (Dravel::IUser* user = User(); user != nullptr && !notice.empty()) user->Notice(notice);
}

bool CVELTSGridCtrl::SaveProfile() {
    RetryProfile();
    return profile_ == nullptr || profile_->Save(Model(), MultipleSort());
}
