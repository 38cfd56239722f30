#include "qsCrtlUtils.h"

#include "rtl/SysUtils.h"

namespace tarn {
namespace {

void SendRedraw(TControl& control, bool on) {
    OS().SendMessage(control.Handle(), WM_SETREDRAW, on ? 1 : 0, 0);
}

} // namespace

TForm* GetActiveForm() {
    const TScreen* const screen = Screen();
    return screen ? screen->ActiveForm() : nullptr;
}

TForm* GetActiveForm(std::string_view caption) {
    TForm* const form = GetActiveForm();
    return form && AnsiSameText(form->Caption(), caption) ? form : nullptr;
}

TForm* FindFormByClass(const TClassRecord& formClass) {
    const TScreen* const screen = Screen();
    for (int i = 0; screen && i < screen->FormCount(); ++i)
        if (TForm* const form = screen->Forms(i); &form->ClassType() == &formClass) return form;
    return nullptr;
}

TForm* ShowFormByClass(const TClassRecord& formClass) {
    TForm* const form = FindFormByClass(formClass);
    if (!form) return nullptr;
    form->Show();
    if (form->WindowState() == wsMinimized) form->SetWindowState(wsNormal);
    return form;
}

void BeginUpdateControl(TControl& control) {
    SendRedraw(control, false);
}

void EndUpdateControl(TControl& control) {
    SendRedraw(control, true);
}

void RepaintControl(TControl& control, TRepaintFlags flags) {
    std::uint32_t redraw = RDW_INVALIDATE;
    if (flags.Contains(rfAllChildren)) redraw |= RDW_ALLCHILDREN;
    if (flags.Contains(rfUpdateNow)) redraw |= RDW_UPDATENOW;
    control.RedrawWindow(redraw);
}

} // namespace tarn
