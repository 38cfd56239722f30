#pragma once

#include "vcl/TListBox.h"

namespace tarn {

/// A list each line of which has a box that is checked or not. The check goes with its line. An
/// index outside the lines raises EStringListError where nothing else is said.
class TCheckListBox : public TListBox {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TCheckListBox(TComponent* owner = nullptr) : TListBox(owner) {}

    bool Checked(int index) const { return Lines().Checked(index); }
    /// The program's own change does not fire OnClickCheck.
    void SetChecked(int index, bool value);

    /// Clicks the box of a line as a user does: a click on the line, then its check is turned over.
    /// False, and nothing, for a line that is not there or while the list is disabled or hidden.
    bool ClickCheck(int index);
    TNotifyEvent OnClickCheck; ///< the user has turned a check over
};

} // namespace tarn
