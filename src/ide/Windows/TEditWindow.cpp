#include "Windows/TEditWindow.h"

#include "Source/TSourceBuffer.h"
#include "rtl/SysUtils.h"
#include "rtl/UpdateOnce.h"

#include <algorithm>

namespace tarn {
namespace {

std::string_view TabCaption(const TSourceBuffer& buffer) {
    return ExtractFileName(buffer.FileName());
}

} // namespace

constinit const TClassRecord TEditWindow::ClassRecord{"TEditWindow", &TForm::ClassRecord};

TEditWindow::TEditWindow() : FTabControl(new TTabControl(this)), FEditor(new TControl(this)) {
    SetName("EditWindow_0");
    FTabControl->SetName("TabControl");
    FTabControl->SetParent(this);
    FTabControl->OnChange = TNotifyEvent::Of<&TEditWindow::TabChosen>(this);
    FEditor->SetName("Editor");
    FEditor->SetParent(this);
    SetActiveControl(FEditor);
}

bool TEditWindow::EditorHasFocus() const {
    return Visible() && Screen()->ActiveForm() == this && ActiveControl() == FEditor;
}

// --- Tabs that others may have changed --------------------------------------------------------

int TEditWindow::TabOf(const TSourceBuffer* buffer) const {
    const TStrings& tabs = FTabControl->Tabs();
    // From the end: what was opened last is closed first, more often than not.
    int tab = tabs.Count() - 1;
    while (tab >= 0 && tabs.GetObject(tab) != buffer) --tab;
    return tab;
}

/// The tab of a loaded buffer, which comes back when somebody has put one of his own in its place.
int TEditWindow::ShownTab(TSourceBuffer& buffer) {
    Synchronize();
    const int tab = TabOf(&buffer);
    return tab >= 0 ? tab : FTabControl->Tabs().AddObject(TabCaption(buffer), &buffer);
}

/// The buffer of a tab; null for a tab that somebody else has added, which may carry anything.
TSourceBuffer* TEditWindow::BufferOf(int tab) const {
    if (tab < 0) return nullptr;
    TObject* const companion = FTabControl->Tabs().GetObject(tab);
    return FKnown.contains(companion) ? static_cast<TSourceBuffer*>(companion) : nullptr;
}

/// Brings the current buffer and the tabs together again.
void TEditWindow::Synchronize() {
    TStrings& tabs = FTabControl->Tabs();
    const int index = FTabControl->TabIndex();
    const bool sameSize = tabs.Count() == static_cast<int>(FBuffers.size());
    if (FCurrent && sameSize && index == FLastIndex && tabs.GetObject(index) == FCurrent) return;

    std::unordered_set<const TObject*> shown;
    for (int i = 0; i < tabs.Count(); ++i) shown.insert(tabs.GetObject(i));
    for (TSourceBuffer* buffer : FBuffers)
        if (!shown.contains(buffer)) tabs.AddObject(TabCaption(*buffer), buffer);
    if (index != FLastIndex)
        if (TSourceBuffer* const chosen = BufferOf(index)) {
            FCurrent = chosen;
            SetCaption(TabCaption(*chosen));
        }
    FLastIndex = TabOf(FCurrent);
    if (FLastIndex != index) FTabControl->SetTabIndex(FLastIndex);
}

std::vector<TSourceBuffer*> TEditWindow::Tabs() {
    Synchronize();
    std::vector<TSourceBuffer*> buffers;
    for (int i = 0; i < FTabControl->Tabs().Count(); ++i)
        if (TSourceBuffer* const buffer = BufferOf(i)) buffers.push_back(buffer);
    return buffers;
}

TSourceBuffer* TEditWindow::CurrentBuffer() {
    Synchronize();
    return FCurrent;
}

void TEditWindow::TabChosen(TObject*) {
    // The tab that was chosen is meant, even where the order was changed before and its index is
    // the one that the current buffer had.
    TSourceBuffer* const chosen = BufferOf(FTabControl->TabIndex());
    if (TSourceBuffer* const buffer = chosen ? chosen : CurrentBuffer()) ShowBuffer(*buffer);
}

// --- Buffers come and go ----------------------------------------------------------------------

void TEditWindow::AddBuffer(TSourceBuffer& buffer) {
    if (FKnown.contains(&buffer)) return;
    Synchronize();
    FBuffers.push_back(&buffer);
    FKnown.insert(&buffer);
    FTabControl->Tabs().AddObject(TabCaption(buffer), &buffer);
    if (FCurrent) return;
    SetCurrent(FTabControl->Tabs().Count() - 1);
    Show();
}

void TEditWindow::ShowBuffer(TSourceBuffer& buffer) {
    AddBuffer(buffer);
    SetCurrent(ShownTab(buffer));
    SetActiveControl(FEditor);
    Show();
    FEditor->Invalidate();
}

void TEditWindow::RemoveBuffer(TSourceBuffer& buffer) {
    if (!FKnown.contains(&buffer)) return;
    const int index = ShownTab(buffer);
    const int current = FLastIndex;
    FBuffers.erase(std::prev(std::find(FBuffers.rbegin(), FBuffers.rend(), &buffer).base()));
    FKnown.erase(&buffer);
    FTabControl->Tabs().Delete(index);
    SetCurrent(index < current ? current - 1 : std::min(current, FTabControl->Tabs().Count() - 1));
    // The tab that came into the place may be a stranger's.
    if (!FCurrent && !FBuffers.empty()) SetCurrent(TabOf(FBuffers.back()));
    FEditor->Invalidate();
    if (!FBuffers.empty()) return;
    const bool wasActive = Screen()->ActiveForm() == this;
    Hide();
    if (wasActive && Application()->MainForm) Application()->MainForm->Show();
}

void TEditWindow::SetCurrent(int index) {
    FTabControl->SetTabIndex(index);
    FLastIndex = index;
    FCurrent = BufferOf(index);
    SetCaption(FCurrent ? TabCaption(*FCurrent) : std::string_view());
}

void TEditWindow::UpdateCaptions() {
    Synchronize();
    TStrings& tabs = FTabControl->Tabs();
    UpdateOnce(tabs, [&] {
        for (int i = 0; i < tabs.Count(); ++i)
            if (const TSourceBuffer* const buffer = BufferOf(i)) tabs.Put(i, TabCaption(*buffer));
    });
    if (FCurrent) SetCaption(TabCaption(*FCurrent));
}

} // namespace tarn
