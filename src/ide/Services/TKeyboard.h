#pragma once

#include "ota/ToolsAPI.h"

#include <memory>
#include <vector>

namespace tarn {

/// The key bindings that wizards have added to the editor.
class TKeyboard {
public:
    /// Has the binding bind its keys. Its number, from 0; -1 when its name is taken, it binds no
    /// key, or it is a complete one: the editor's own keys are not to be replaced.
    int Add(const TIntf<IOTAKeyboardBinding>& binding);
    /// Raises EListError for a number that no binding has.
    void Remove(int number);
    int Count() const { return static_cast<int>(FBindings.size()); }

    /// Offers a key to the bindings in the order of adding: krNextProc passes it on to the next
    /// one, krUnhandled to the IDE, krHandled ends its way. True when it was handled.
    bool Press(TShortCut key, IOTAKeyContext& context);

private:
    struct TKey {
        TShortCut Key;
        TKeyBindingProc Handler;
    };
    struct TBinding {
        int Number;
        TIntf<IOTAKeyboardBinding> Binding;
        std::string Name;
        std::vector<TKey> Keys;
    };
    class TBindingServices;

    /// Shared, so that a handler may remove its own binding or another one.
    std::vector<std::shared_ptr<TBinding>> FBindings;
    int FNextNumber = 0;
};

} // namespace tarn
