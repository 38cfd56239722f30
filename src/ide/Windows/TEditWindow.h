#pragma once

#include "vcl/Forms.h"
#include "vcl/TTabControl.h"

#include <unordered_set>

namespace tarn {

class TSourceBuffer;

/// The window of the source editor: a row of tabs, one for each loaded buffer with the buffer as
/// its companion object, and the control that shows the current one. It is visible while it has a
/// buffer.
///
/// The tabs may be changed by others: after a change of their order the current buffer stays
/// current, wherever its tab is; after a change of the tab index it is the buffer of that tab.
class TEditWindow : public TForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TEditWindow();

    TTabControl& TabControl() { return *FTabControl; }
    TControl& Editor() { return *FEditor; }
    /// Whether keys go to the editor.
    bool EditorHasFocus() const;

    /// The loaded buffers, in the order of loading.
    const std::vector<TSourceBuffer*>& LoadedBuffers() const { return FBuffers; }
    /// The same in the order of their tabs.
    std::vector<TSourceBuffer*> Tabs();
    TSourceBuffer* CurrentBuffer(); ///< null when no file is open

    /// Adds a tab at the end; the first one is made current.
    void AddBuffer(TSourceBuffer& buffer);
    /// Makes the buffer current, and the window active with the focus in the editor.
    void ShowBuffer(TSourceBuffer& buffer);
    /// Takes the tab out; the one that comes into its place is made current when it was.
    void RemoveBuffer(TSourceBuffer& buffer);
    void UpdateCaptions();

private:
    void Synchronize();
    TSourceBuffer* BufferOf(int tab) const;
    int TabOf(const TSourceBuffer* buffer) const;
    int ShownTab(TSourceBuffer& buffer);
    void SetCurrent(int index);
    void TabChosen(TObject*);

    TTabControl* FTabControl;
    TControl* FEditor;
    std::vector<TSourceBuffer*> FBuffers;
    std::unordered_set<const TObject*> FKnown; ///< the same, to be looked up
    TSourceBuffer* FCurrent = nullptr;
    int FLastIndex = -1; ///< the tab index when FCurrent was last looked up
};

} // namespace tarn
