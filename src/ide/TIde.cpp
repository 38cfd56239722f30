#include "TIde.h"

#include "Modules/FileNames.h"
#include "Services/OtaEditors.h"
#include "Source/EditorKeys.h"
#include "rtl/SysUtils.h"
#include "vcl/StandardIdents.h"

namespace tarn {

TIde::TIde() : FMainForm(*this), FModules(*this), FServices(new TIdeServices(*this)) {
    RegisterStandardIdents();
    FApplication.Title = "Embedded IDE";
    FMainForm.SetCaption(FApplication.Title);
    FApplication.ExeName = OS().GetModuleFileName();
    FApplication.MainForm = &FMainForm;
    SetIDEServices(TIntf<IOTAWizardServices>(FServices));
    FMainForm.Show();
}

TIde::~TIde() {
    FPackages.UnloadAll();
    ResumeProgram();
    FModules.CloseAll(true);
    const TIntf<IOTAWizardServices> services(FServices);
    SetIDEServices(nullptr);
    FServices->Detach();
    FApplication.MainForm = nullptr;
}

// --- What is in front -------------------------------------------------------------------------

TSourceView* TIde::CurrentView() {
    TSourceBuffer* const buffer = CurrentBuffer();
    return buffer ? buffer->View() : nullptr;
}

TIdeModule* TIde::CurrentModule() {
    if (TForm* const active = FScreen.ActiveForm())
        for (const auto& module : FModules)
            if (const TFormEditor* const editor = module->FormEditor();
                editor && editor->ExistingForm() == active)
                return module.get();
    TSourceBuffer* const buffer = CurrentBuffer();
    return buffer ? &buffer->Module() : nullptr;
}

bool TIde::ActivateTab(int index) {
    const auto buffers = FEditWindow.Tabs();
    if (index < 0 || index >= static_cast<int>(buffers.size())) return false;
    return RunCommand([&] { buffers[static_cast<std::size_t>(index)]->Show(); });
}

bool TIde::ActivateTab(std::string_view fileName) {
    const std::string fullName = NormalFileName(fileName);
    for (TSourceBuffer* buffer : FEditWindow.Tabs())
        if (AnsiSameText(ExtractFileName(buffer->FileName()), fileName) ||
            IsSameFile(buffer->FileName(), fullName))
            return RunCommand([&] { buffer->Show(); });
    return false;
}

void TIde::ToggleFormUnit() {
    TIdeModule* const module = CurrentModule();
    TFormEditor* const form = module ? module->FormEditor() : nullptr;
    if (!form) return;
    if (FScreen.ActiveForm() && FScreen.ActiveForm() == form->ExistingForm())
        module->Source().Show();
    else
        form->Show();
}

// --- The debugger -----------------------------------------------------------------------------

void TIde::StopAt(TStoppedState state) {
    FStoppedProgram = std::move(state);
    if (FCpuWindow) FCpuWindow->ShowState(FStoppedProgram);
    ShowCpuWindow();
}

void TIde::ResumeProgram() {
    CloseCpuWindow();
    FStoppedProgram = nullptr;
}

bool TIde::ShowCpuWindow() {
    if (!FStoppedProgram) return false;
    if (!FCpuWindow) FCpuWindow = new TCpuWindow(FStoppedProgram);
    FCpuWindow->Show();
    return true;
}

void TIde::CloseCpuWindow() {
    // No longer the IDE's before its end begins, which may ask for it.
    TCpuWindow* const window = FCpuWindow.Get();
    const bool wasActive = window && FScreen.ActiveForm() == window;
    FCpuWindow = nullptr;
    FreeObject(window);
    // What was behind it comes to the front.
    for (int i = 0; wasActive && !FScreen.ActiveForm() && i < FScreen.FormCount(); ++i)
        if (FScreen.Forms(i)->Visible()) FScreen.SetActiveForm(FScreen.Forms(i));
}

// --- Commands ---------------------------------------------------------------------------------

bool TIde::RunCommand(const std::function<void()>& command, TGroupKind kind) {
    // Buffers that the command opens join it by themselves, see TSourceBuffer::Load.
    if (FCommandDepth++ == 0)
        for (TSourceBuffer* buffer : FEditWindow.LoadedBuffers()) buffer->BeginCommand(kind);
    bool succeeded = true;
    try {
        command();
    } catch (...) {
        FApplication.HandleException(&FApplication);
        succeeded = false;
    }
    if (--FCommandDepth == 0)
        for (TSourceBuffer* buffer : FEditWindow.LoadedBuffers()) buffer->EndCommand();
    return succeeded;
}

bool TIde::PressKey(TShortCut key) {
    bool taken = false;
    // A key whose command fails has been taken by that command.
    return !RunCommand([&] { taken = OfferKey(key) || OfferEditorKey(key); }) || taken;
}

bool TIde::PressShortCut(TShortCut key) {
    bool taken = false;
    return !RunCommand([&] { taken = OfferKey(key); }) || taken;
}

bool TIde::OfferKey(TShortCut key) {
    if (FEditWindow.EditorHasFocus() && CurrentBuffer()) {
        const TIntf<IOTAKeyContext> context = MakeKeyContext(*CurrentBuffer());
        if (FKeyboard.Press(key, *context)) return true;
    }
    TForm* const active = FScreen.ActiveForm();
    if (active && active->IsShortCut(key)) return true;
    // The commands of the main form wait until a modal form is closed.
    return active != &FMainForm && !(active && active->Modal()) && FMainForm.IsShortCut(key);
}

bool TIde::OfferEditorKey(TShortCut key) {
    return FEditWindow.EditorHasFocus() && CurrentView() && PressEditorKey(*CurrentView(), key);
}

bool TIde::TypeText(std::string_view text, TGroupKind kind) {
    if (!FEditWindow.EditorHasFocus() || !CurrentView()) return false;
    return RunCommand([&] { CurrentView()->TypeText(text); }, kind);
}

bool TIde::ClickMenuItem(TMenuItem& item) {
    bool clicked = false;
    RunCommand([&] {
        if (!OpenMenus(item)) return;
        clicked = true;
        item.Click();
    });
    return clicked;
}

/// Opens the menus from the top down to the item's own; whether the item can be clicked there.
bool TIde::OpenMenus(TMenuItem& item) {
    const auto canChoose = [](const TMenuItem& choice) {
        return choice.Visible() && choice.Enabled() && !choice.IsLine();
    };
    // The root of a menu is no item that one sees. A handler may free what is below its menu.
    std::vector<TWeak<TMenuItem>> path;
    for (TMenuItem* at = &item; at->Parent(); at = at->Parent()) path.emplace_back(at);
    if (path.empty()) return false;
    path.back()->InitiateAction();
    for (; path.size() > 1; path.pop_back()) {
        TMenuItem& menu = *path.back();
        if (!canChoose(menu)) return false;
        menu.Click();
        const TMenuItem* const next = path[path.size() - 2].Get();
        if (!path.back() || !next || next->Parent() != path.back().Get()) return false;
        for (int i = 0; i < menu.Count(); ++i) menu.Items(i)->InitiateAction();
    }
    return canChoose(item);
}

bool TIde::Undo() {
    bool done = false;
    RunCommand([&] { done = CurrentBuffer() && CurrentBuffer()->Undo(); });
    return done;
}

bool TIde::Redo() {
    bool done = false;
    RunCommand([&] { done = CurrentBuffer() && CurrentBuffer()->Redo(); });
    return done;
}

void TIde::PumpMessages() {
    RunCommand([&] { FApplication.ProcessMessages(); });
    FApplication.Idle();
}

} // namespace tarn
