#pragma once

#include "vcl/Forms.h"

namespace tarn {

/// A push button.
class TButton : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TButton(TComponent* owner = nullptr) : TControl(owner) {}

    const std::string& Caption() const { return Text(); }
    void SetCaption(std::string_view value) { SetText(value); }
    /// Whether Enter clicks the button from anywhere in its form, see TForm::IsShortCut.
    bool Default() const { return FDefault; }
    void SetDefault(bool value);
    /// The same for Esc.
    bool Cancel() const { return FCancel; }
    void SetCancel(bool value) { FCancel = value; }

    /// What a click closes the modal form with; mrNone leaves it open.
    TModalResult ModalResult = mrNone;
    std::uint8_t ModalResultNumber() const { return ModalResult; } ///< published as "ModalResult"
    void SetModalResultNumber(std::uint8_t value) {
        ModalResult = static_cast<TModalResult>(value);
    }

    TNotifyEvent OnClick;

    /// Clicks the button as a user does: the form gets the ModalResult, then OnClick runs, which
    /// may take it back. False, and nothing, while the button is disabled or hidden.
    bool Click();

private:
    bool FDefault = false;
    bool FCancel = false;
};

} // namespace tarn
