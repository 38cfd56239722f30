#pragma once

#include "qsExpShrForm.h"

namespace tarn {

class TSelectorForm;

/// The form selector: the list of the open windows, of which one comes to the front.
class TInspectorViewMng : public TSharedManager {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TInspectorViewMng();
    ~TInspectorViewMng() override;

    void Init(TGetItemData getItemData) override;

    void ShowList(TObject* sender); ///< shows the window, which is made at the first time
    TSelectorForm* Form() const;    ///< null until it is shown

private:
    TWeak<TSelectorForm> FForm; ///< owned
};

// Initialization and finalization of the unit, counted.
void InitializeInspectorView();
void FinalizeInspectorView();

} // namespace tarn
