#pragma once

#include "preview/TChoiceForm.h"
#include "preview/qsInspectorView.h"

#include <vector>

namespace tarn {

/// The list of the open windows by their captions, from the front to the back.
class TSelectorForm : public TChoiceForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// \param manager outlives the form
    explicit TSelectorForm(TInspectorViewMng* manager);

protected:
    void FillList(TStrings& lines) override;
    void Choose(int index) override;

private:
    std::vector<TWeak<TForm>> FForms; ///< of the lines
};

} // namespace tarn
