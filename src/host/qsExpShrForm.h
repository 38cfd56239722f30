#pragma once

#include "TCustomExpert.h"
#include "qsSpcEditor.h"

#include <memory>

namespace tarn {

class TSharedForm;

/// The base of experts that own a form: keeps the form's settings.
class TSharedManager : public TCustomExpert {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TFormSetting* FormSetting() const { return FFormSetting.get(); }
    void SetFormSetting(TFormSetting* value) { FFormSetting->Assign(value); }
    /// What is published and saved: before that, a form on the screen that keeps its place by
    /// itself gives it back.
    TFormSetting* StoredFormSetting() const;

private:
    friend class TSharedForm;
    std::unique_ptr<TFormSetting> FFormSetting = std::make_unique<TFormSetting>();
    TWeak<TSharedForm> FForm;
};

/// The form of such an expert: it takes its place and its shortcut from the expert's settings and
/// gives the place back.
class TSharedForm : public TSmartForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// \param manager outlives the form
    TSharedForm(TComponent* owner, TSharedManager* manager);

    /// A stored place that is none leaves the form where it is.
    void SetProperties() override;
    void ReadFormData() override;

    /// Shows the form and makes it active. One that was hidden takes over what is stored about it
    /// before; one that is seen stays where the user has put it, unless that is among the icons.
    void Open();

protected:
    TSharedManager* Manager() const { return FManager; }
    /// An action of the form, in its list, with the caption as its hint as well.
    TAction* NewAction(std::string_view name, std::string_view caption, TNotifyEvent execute,
                       TShortCut shortCut = 0);
    /// Runs a command of the form as the manager runs those of the menu.
    static void RunCommand(TObject* sender, TNotifyEvent command);

private:
    TSharedManager* FManager;
};

} // namespace tarn
