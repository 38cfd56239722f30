#pragma once

#include "TCustomExpert.h"
#include "qsSpcEditor.h"

#include <memory>

namespace tarn {

/// The base of experts that own a form: keeps the form's settings.
class TSharedManager : public TCustomExpert {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TFormSetting* FormSetting() const { return FFormSetting.get(); }
    void SetFormSetting(TFormSetting* value) { FFormSetting->Assign(value); }

private:
    std::unique_ptr<TFormSetting> FFormSetting = std::make_unique<TFormSetting>();
};

/// The form of such an expert: it takes its place and its shortcut from the expert's settings and
/// gives the place back.
class TSharedForm : public TSmartForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// \param manager outlives the form
    TSharedForm(TComponent* owner, TSharedManager* manager)
        : TSmartForm(owner), FManager(manager) {}

    void SetProperties() override;
    void ReadFormData() override;

protected:
    TSharedManager* Manager() const { return FManager; }

private:
    TSharedManager* FManager;
};

} // namespace tarn
