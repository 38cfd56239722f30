#include "Services/TIdeServices.h"

#include "TIde.h"
#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {
namespace {

/// Whether the command ran without an error; the caller learns no more.
template <class F> bool Succeeds(F&& command) {
    try {
        return command();
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

HResult TIdeServices::QueryInterface(const TGUID& iid, void*& obj) {
    obj = nullptr;
    const bool withheld = std::find(FWithheld.begin(), FWithheld.end(), iid) != FWithheld.end();
    if (!FIde || withheld) return E_NOINTERFACE;
    return TInterfacedObject::QueryInterface(iid, obj);
}

// --- IOTAWizardServices -----------------------------------------------------------------------

int TIdeServices::AddWizard(const TIntf<IOTAWizard>& wizard) {
    if (!FIde) throw EInvalidOperation("the IDE has ended");
    return FIde->Packages().AddWizard(wizard);
}

void TIdeServices::RemoveWizard(int index) {
    if (FIde) FIde->Packages().RemoveWizard(index);
}

// --- INTAServices -----------------------------------------------------------------------------

TMainMenu* TIdeServices::GetMainMenu() {
    return FIde ? &FIde->MainForm().MainMenu() : nullptr;
}

TActionList* TIdeServices::GetActionList() {
    return FIde ? &FIde->MainForm().ActionList() : nullptr;
}

TImageList* TIdeServices::GetImageList() {
    return FIde ? &FIde->MainForm().Images() : nullptr;
}

// --- IOTAEditorServices -----------------------------------------------------------------------

TIntf<IOTAEditBuffer> TIdeServices::GetTopBuffer() {
    TSourceBuffer* const buffer = FIde ? FIde->CurrentBuffer() : nullptr;
    return buffer ? buffer->BufferInterface() : nullptr;
}

TIntf<IOTAEditView> TIdeServices::GetTopView() {
    TSourceView* const view = FIde ? FIde->CurrentView() : nullptr;
    return view ? view->Interface() : nullptr;
}

// --- IOTAModuleServices -----------------------------------------------------------------------

int TIdeServices::GetModuleCount() {
    return FIde ? FIde->Modules().Count() : 0;
}

TIntf<IOTAModule> TIdeServices::GetModule(int index) {
    if (index < 0 || index >= GetModuleCount()) return nullptr;
    return FIde->Modules().Items(index).Interface();
}

TIntf<IOTAModule> TIdeServices::CurrentModule() {
    TIdeModule* const module = FIde ? FIde->CurrentModule() : nullptr;
    return module ? module->Interface() : nullptr;
}

// --- IOTAActionServices -----------------------------------------------------------------------

TIdeModule* TIdeServices::FindModule(std::string_view fileName) const {
    return FIde ? FIde->Modules().Find(fileName) : nullptr;
}

bool TIdeServices::OpenFile(std::string_view fileName) {
    return FIde && Succeeds([&] {
               FIde->Modules().OpenFile(fileName);
               return true;
           });
}

bool TIdeServices::SaveFile(std::string_view fileName) {
    TIdeModule* const module = FindModule(fileName);
    return module && Succeeds([&] {
               module->Save();
               return true;
           });
}

bool TIdeServices::CloseFile(std::string_view fileName) {
    TIdeModule* const module = FindModule(fileName);
    return module && Succeeds([&] { return FIde->Modules().Close(*module); });
}

// --- IOTAKeyboardServices ---------------------------------------------------------------------

int TIdeServices::AddKeyboardBinding(const TIntf<IOTAKeyboardBinding>& binding) {
    return FIde ? FIde->Keyboard().Add(binding) : -1;
}

void TIdeServices::RemoveKeyboardBinding(int index) {
    if (FIde) FIde->Keyboard().Remove(index);
}

} // namespace tarn
