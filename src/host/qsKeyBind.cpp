#include "qsKeyBind.h"

#include "qsOTAUtils.h"
#include "rtl/SysUtils.h"
#include "vcl/ShortCuts.h"

#include <exception>

namespace tarn {

// --- One binding ------------------------------------------------------------------------------

std::string TBaseKeyBinding::GetDisplayName() {
    return FMenuItem ? FMenuItem->Caption() : std::string();
}

std::string TBaseKeyBinding::GetName() {
    return Format("%s.%s", {KeyBindingName, FMenuItem ? FMenuItem->Name() : std::string()});
}

void TBaseKeyBinding::BindKeyboard(const TIntf<IOTAKeyBindingServices>& services) {
    services->AddKeyBinding({&FShortCut, 1}, TKeyBindingProc::Of<&TBaseKeyBinding::KeyProc>(this),
                            nullptr, kfImplicitShift, KeyBindingName,
                            FMenuItem ? FMenuItem->Name() : std::string());
}

void TBaseKeyBinding::KeyProc(IOTAKeyContext&, TShortCut, TKeyBindingResult& result) {
    // What brings the item up to date may have the menu rebuilt, and the IDE let the binding go.
    const TIntf<IOTAKeyboardBinding> alive(this);
    result = krHandled;
    if (FMenuItem) FMenuItem->InitiateAction();
    if (FMenuItem && FMenuItem->Enabled()) FMenuItem->Click();
}

// --- All of them ------------------------------------------------------------------------------

void TKeyBind::AddKey(TMenuItem* menuItem, TShortCut shortCut) {
    if (ShortCutToText(shortCut).empty()) return;
    const TIntf<IOTAKeyboardServices> services = OTAKeyboardServices();
    if (!services) return;
    const TIntf<TBaseKeyBinding> binding(new TBaseKeyBinding(menuItem, shortCut));
    binding->Index = services->AddKeyboardBinding(binding);
    if (binding->Index != -1) FBindings.push_back(binding);
}

void TKeyBind::Clear() {
    const std::vector<TIntf<TBaseKeyBinding>> bindings = std::exchange(FBindings, {});
    const TIntf<IOTAKeyboardServices> services = OTAKeyboardServices();
    std::exception_ptr first;
    for (auto binding = bindings.rbegin(); services && binding != bindings.rend(); ++binding) {
        try {
            services->RemoveKeyboardBinding((*binding)->Index);
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    }
    if (first) std::rethrow_exception(first);
}

} // namespace tarn
