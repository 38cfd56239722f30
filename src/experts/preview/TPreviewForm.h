#pragma once

#include "preview/TChoiceForm.h"
#include "preview/qsViewForm.h"
#include "qsOTAUtils.h"

#include <vector>

namespace tarn {

/// The list of the active project's forms, by their names, and its units, by their files.
class TPreviewForm : public TChoiceForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// \param manager outlives the form
    explicit TPreviewForm(TViewFormMng* manager);

protected:
    void FillList(TStrings& lines) override;
    void Choose(int index) override;

private:
    struct TEntry {
        std::string Name;
        TModuleNameKind Kind;
    };
    std::vector<TEntry> FEntries; ///< of the lines
};

} // namespace tarn
