#pragma once

#include "qsExpShrForm.h"

namespace tarn {

class TPreviewForm;

/// The list of the forms and units of the active project, from which they are opened. It shows no
/// source of its own: what it opens stands in the IDE's editor, where the block tools find it.
class TViewFormMng : public TSharedManager {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TViewFormMng();
    ~TViewFormMng() override;

    bool CloseFormOnShowUnit =
        true; ///< whether the window closes when something was opened from it

    void Init(TGetItemData getItemData) override;

    void ShowList(TObject* sender);        ///< shows the window, which is made at the first time
    void UpdateMenuState(TObject* sender); ///< enables the sender while there is an active project
    TPreviewForm* Form() const;            ///< null until it is shown

private:
    TWeak<TPreviewForm> FForm; ///< owned
};

// Initialization and finalization of the unit, counted.
void InitializeViewForm();
void FinalizeViewForm();

} // namespace tarn
