#pragma once

#include "vcl/Forms.h"

#include <string>

namespace tarn {

/// A form that keeps its place between sessions. Its owner calls SetProperties before the form is
/// shown; the form itself calls ReadFormData when the user asks for it, and, when that is switched
/// on, when it is hidden.
class TSmartForm : public TForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TSmartForm(TComponent* owner = nullptr);

    std::string PlacementText;      ///< the stored window placement
    bool AutoSavePlacement = false; ///< whether it is stored when the form is hidden
    TAction& SavePlacementAction() { return *FSavePlacementAction; }
    TActionList& ActionList() { return *FActionList; } ///< the form's shortcuts

    /// Takes over what is stored about the form, before it is shown.
    virtual void SetProperties() {}
    /// Gives back what is to be stored about the form.
    virtual void ReadFormData() {}

    void SetVisible(bool value) override;

private:
    void SavePlacement(TObject*) { ReadFormData(); }
    TActionList* FActionList; ///< components of the form
    TAction* FSavePlacementAction;
};

} // namespace tarn
