#pragma once

#include "qsLocale.h"
#include "vcl/TMenuItem.h"

#include <span>

namespace tarn {

// The menus of the rows with extended kinds. An item is known by the string id of its caption,
// which is its Tag; 0 is a separator.

inline void AddRowMenuItems(TPopupMenu& menu, std::span<const int> ids, TNotifyEvent click) {
    for (const int id : ids) {
        auto* const item = id ? new TMenuItem : NewLine();
        item->Tag = id;
        if (id) item->SetCaption(LocaleStr(id));
        item->OnClick = click;
        menu.Items()->Add(item);
    }
}

/// Before the menu is shown: gives the items their captions in the language of now, and enables
/// those for which `enabled(id)` is true.
template <class F> void UpdateRowMenuItems(TPopupMenu& menu, F&& enabled) {
    for (int i = 0; i < menu.Items()->Count(); ++i) {
        TMenuItem& item = *menu.Items()->Items(i);
        if (item.IsLine()) continue;
        const int id = static_cast<int>(item.Tag);
        item.SetCaption(LocaleStr(id));
        item.SetEnabled(enabled(id));
    }
}

} // namespace tarn
