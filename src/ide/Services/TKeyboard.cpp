#include "Services/TKeyboard.h"

#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {

/// Takes down the keys that a binding names; afterwards it takes none.
class TKeyboard::TBindingServices : public TInterfacedObject<IOTAKeyBindingServices> {
public:
    /// Key sequences of more than one key are refused. The context is the caller's own affair: the
    /// handler is bound to its object.
    bool AddKeyBinding(std::span<const TShortCut> keys, TKeyBindingProc handler, void*, int,
                       std::string_view, std::string_view) override {
        if (!FOpen || keys.size() != 1 || keys.front() == 0 || !handler) return false;
        FKeys.push_back({keys.front(), handler});
        return true;
    }
    std::vector<TKey> Take() {
        FOpen = false;
        return std::move(FKeys);
    }

private:
    bool FOpen = true;
    std::vector<TKey> FKeys;
};

int TKeyboard::Add(const TIntf<IOTAKeyboardBinding>& binding) {
    if (!binding || binding->GetBindingType() != btPartial) return -1;
    const std::string name = binding->GetName();
    if (std::any_of(FBindings.begin(), FBindings.end(),
                    [&](const auto& other) { return other->Name == name; }))
        return -1;
    auto* const services = new TBindingServices;
    const TIntf<IOTAKeyBindingServices> held(services);
    binding->BindKeyboard(held);
    std::vector<TKey> keys = services->Take();
    if (keys.empty()) return -1;
    FBindings.push_back(
        std::make_shared<TBinding>(TBinding{FNextNumber, binding, name, std::move(keys)}));
    return FNextNumber++;
}

void TKeyboard::Remove(int number) {
    const auto place = std::find_if(FBindings.begin(), FBindings.end(),
                                    [=](const auto& binding) { return binding->Number == number; });
    if (place == FBindings.end()) throw EListError(Format(SListIndexError, {number}));
    // The binding's end may call back: it leaves the list first.
    const std::shared_ptr<TBinding> last = *place;
    FBindings.erase(place);
}

bool TKeyboard::Press(TShortCut key, IOTAKeyContext& context) {
    const auto bindings = FBindings;
    for (const auto& binding : bindings)
        for (const TKey& bound : binding->Keys) {
            if (bound.Key != key) continue;
            // A handler before may have removed it.
            if (std::find(FBindings.begin(), FBindings.end(), binding) == FBindings.end()) break;
            TKeyBindingResult result = krUnhandled;
            bound.Handler(context, key, result);
            if (result != krNextProc) return result == krHandled;
        }
    return false;
}

} // namespace tarn
