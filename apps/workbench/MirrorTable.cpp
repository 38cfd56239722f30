// Which widget shows a control of which class.

#include "CpuMirrors.h"
#include "Mirrors.h"
#include "TEditorMirror.h"
#include "TFormMirror.h"
#include "TFrontEnd.h"

namespace tarn {
namespace {

struct TMirrorRow {
    const TClassRecord* Class;
    std::unique_ptr<TMirror> (*Make)(TFrontEnd& frontEnd, TControl& control);
};

template <class Mirror> std::unique_ptr<TMirror> Make(TFrontEnd& frontEnd, TControl& control) {
    return std::make_unique<Mirror>(frontEnd, static_cast<typename Mirror::TMirrored&>(control));
}

template <class Mirror> constexpr TMirrorRow Row() {
    return {&Mirror::TMirrored::ClassRecord, Make<Mirror>};
}

/// A class comes before those that it descends from.
constexpr TMirrorRow Rows[] = {
    Row<TMainFormMirror>(),   Row<TEditWindowMirror>(), Row<TFormMirror>(),
    Row<TSpinEditMirror>(),   Row<TMemoMirror>(),       Row<TEditMirror>(),
    Row<TComboBoxMirror>(),   Row<TCheckListMirror>(),  Row<TListBoxMirror>(),
    Row<TCheckBoxMirror>(),   Row<TButtonMirror>(),     Row<TLabelMirror>(),
    Row<TTreeMirror>(),       Row<THeaderMirror>(),     Row<TStatusBarMirror>(),
    Row<TScrollBoxMirror>(),  Row<TSplitterMirror>(),   Row<TToolBarMirror>(),
    Row<TToolButtonMirror>(), Row<TTabsMirror>(),       Row<TGridMirror>(),
    Row<TColorMirror>(),      Row<TFontMirror>(),       Row<TDateTimeMirror>(),
    Row<THotKeyMirror>(),     Row<TImageMirror>(),      Row<TAddressMirror>(),
    Row<TCpuValuesMirror>(),  Row<TPanelMirror>(),
};

/// Whether the control is a form that has no window: it stands for a question that the desktop asks
/// in one of its own.
bool IsSign(TControl& control) {
    return &control.ClassType() == &TForm::ClassRecord && control.ControlCount() == 0 &&
           control.Width() == 0 && control.Height() == 0;
}

} // namespace

std::unique_ptr<TMirror> MakeMirror(TFrontEnd& frontEnd, TControl& control) {
    if (IsSign(control)) return nullptr;
    if (auto editor = TEditorMirror::For(frontEnd, control)) return editor;
    for (const TMirrorRow& row : Rows)
        if (control.InheritsFrom(*row.Class)) return row.Make(frontEnd, control);
    return nullptr;
}

} // namespace tarn
