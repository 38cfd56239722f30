#pragma once

#include "ota/ToolsAPI.h"

#include <string_view>
#include <vector>

namespace tarn {

/// The name of the pack for the IDE's keyboard services, and the first part of its bindings' names.
inline constexpr std::string_view KeyBindingName = "Tarn&QS.ServiceDelphiWizards";

/// One hot key in the source editor, which clicks a menu item. The IDE holds it once it is
/// registered.
class TBaseKeyBinding : public TInterfacedObject<IOTAKeyboardBinding> {
public:
    /// \param menuItem stays its owner's
    TBaseKeyBinding(TMenuItem* menuItem, TShortCut shortCut)
        : FMenuItem(menuItem), FShortCut(shortCut) {}

    TBindingType GetBindingType() override { return btPartial; }
    std::string GetDisplayName() override;
    std::string GetName() override;
    void BindKeyboard(const TIntf<IOTAKeyBindingServices>& services) override;

    /// Brings the item up to date and clicks it when it is enabled. The key goes no further in any
    /// case.
    void KeyProc(IOTAKeyContext& context, TShortCut keyCode, TKeyBindingResult& result);

    int Index = -1; ///< the number that the IDE gave; -1 when it refused the binding

private:
    TWeak<TMenuItem> FMenuItem;
    TShortCut FShortCut;
};

/// The hot keys of the pack's menu in the source editor. Clear comes before its end: whoever
/// forgets leaves the bindings with the IDE.
class TKeyBind {
public:
    /// Registers a binding. Nothing for a shortcut without a text, without keyboard services, and
    /// when these refuse it.
    void AddKey(TMenuItem* menuItem, TShortCut shortCut);
    /// Takes the bindings back, the newest first. The first error is raised when all are gone.
    void Clear();

    int Count() const { return static_cast<int>(FBindings.size()); }

private:
    std::vector<TIntf<TBaseKeyBinding>> FBindings;
};

} // namespace tarn
