#include "TExpertRegistry.h"

#include "qsLocale.h"

#include <array>
#include <memory>

namespace tarn {
namespace {

using TSlots = std::array<std::optional<TExpertSlot>, ExpertSlotCount>;

std::unique_ptr<TSlots>& Registry() {
    static std::unique_ptr<TSlots> slots;
    return slots;
}

} // namespace

std::string TExpertSlot::Caption() const {
    return CaptionId == -1 ? Name : LocaleStr(CaptionId);
}

void RegisterExpClass(TExpertClass expClass, int index, std::string_view name, int captionId) {
    if (!Registry()) Registry() = std::make_unique<TSlots>();
    if (index < 1 || index > ExpertSlotCount) throw EExpMngError(Format(SListIndexError, {index}));
    std::optional<TExpertSlot>& place = (*Registry())[static_cast<std::size_t>(index - 1)];
    if (place) throw EExpMngError(Format(LocaleStr(51002), {index}));
    for (const std::optional<TExpertSlot>& slot : *Registry()) {
        if (!slot) continue;
        if (slot->ExpClass == expClass)
            throw EExpMngError(Format(LocaleStr(51004), {expClass.Name()}));
        if (slot->Name == name) throw EExpMngError(Format(LocaleStr(51003), {name}));
    }
    place = TExpertSlot{expClass, std::string(name), captionId};
}

const TExpertSlot* ExpertSlot(int index) {
    if (!Registry()) return nullptr;
    const std::optional<TExpertSlot>& slot = Registry()->at(static_cast<std::size_t>(index - 1));
    return slot ? &*slot : nullptr;
}

void FreeExpertRegistry() {
    Registry().reset();
}

} // namespace tarn
