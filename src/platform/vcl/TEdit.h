#pragma once

#include "vcl/TControl.h"

namespace tarn {

/// A text that the user can edit and select. Places are offsets in bytes of Text, from 0; none lies
/// inside a line break CR LF.
class TCustomEdit : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TCustomEdit(TComponent* owner = nullptr) : TControl(owner) {}

    /// Another text puts the caret before it.
    void SetText(std::string_view value) override;
    bool ReadOnly() const { return FReadOnly; }
    void SetReadOnly(bool value);

    /// The selection, which is the caret's place when its length is 0. What lies outside the text
    /// is cut off.
    int SelStart() const { return FSelStart; }
    void SetSelStart(int value) { Select(value, 0); }
    int SelLength() const { return FSelLength; }
    void SetSelLength(int value) { Select(FSelStart, value); }
    void Select(int start, int length);
    void SelectAll();
    std::string SelText() const;
    /// Puts the text in place of the selection and the caret behind it.
    void SetSelText(std::string_view value);

    void CopyToClipboard() const; ///< the selection; nothing when there is none

    /// What the user types or pastes in place of the selection. False, and nothing, while the
    /// control is read-only, disabled or hidden.
    bool TypeText(std::string_view text);
    bool CutToClipboard();
    bool PasteFromClipboard();

    TNotifyEvent OnChange; ///< the text has changed, by the user or by the program

protected:
    /// The text as the control keeps it.
    virtual std::string Kept(std::string_view text) const { return std::string(text); }
    /// The part of a text that can be typed.
    virtual std::string_view Typed(std::string_view text) const { return text; }
    /// Keeps a text, which differs from the one that there is, and tells the front end.
    virtual void Store(const std::string& text) { TControl::SetText(text); }
    void ForgetSelection() { FSelStart = FSelLength = 0; }
    void Changed();

private:
    /// The offset, or that of the break in which it lies.
    int Place(int offset) const;
    void Replace(const std::string& text, int caret);

    bool FReadOnly = false;
    int FSelStart = 0;
    int FSelLength = 0;
};

/// A line of text. Of what is typed or pasted, the first line is taken.
class TEdit : public TCustomEdit {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TCustomEdit::TCustomEdit;

protected:
    std::string_view Typed(std::string_view text) const override;
};

} // namespace tarn
