#pragma once

#include "rtl/TStrings.h"
#include "vcl/TControl.h"

namespace tarn {

/// A row of tabs: their captions with a companion object each, and the current one.
class TTabControl : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TTabControl(TComponent* owner = nullptr);

    TStrings& Tabs() { return FTabs; }
    int TabIndex() const { return FTabIndex; } ///< -1 when no tab is current
    /// An index outside the tabs gives -1. The program's own change does not fire OnChange.
    void SetTabIndex(int value);

    /// The user has chosen another tab.
    TNotifyEvent OnChange;

private:
    void TabsChanged(TObject*);

    TStringList FTabs;
    int FTabIndex = -1;
};

} // namespace tarn
