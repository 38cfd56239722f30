#include "Windows/TEditWindow.h"

#include "Source/TSourceBuffer.h"
#include "rtl/SysUtils.h"

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
    for (int i = 0; i < tabs.Count(); ++i)
        if (tabs.GetObject(i) == buffer) return i;
    return -1;
}

/// The buffer of a tab; null for a tab that somebody else has added, which may carry anything.
TSourceBuffer* TEditWindow::BufferOf(int tab) const {
    if (tab < 0) return nullptr;
    TObject* const companion = FTabControl->Tabs().GetObject(tab);
    const auto found = std::find(FBuffers.begin(), FBuffers.end(), companion);
    return found == FBuffers.end() ? nullptr : *found;
}

/// Brings the current buffer and the tabs together again.
void TEditWindow::Synchronize() {
    TStrings& tabs = FTabControl->Tabs();
    const int index = FTabControl->TabIndex();
    const bool sameSize = tabs.Count() == static_cast<int>(FBuffers.size());
    if (FCurrent && sameSize && index == FLastIndex && tabs.GetObject(index) == FCurrent) return;

    for (TSourceBuffer* buffer : FBuffers)
        if (TabOf(buffer) < 0) tabs.AddObject(TabCaption(*buffer), buffer);
    if (index != FLastIndex)
        if (TSourceBuffer* const chosen = BufferOf(index)) FCurrent = chosen;
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
    if (TSourceBuffer* const buffer = CurrentBuffer()) ShowBuffer(*buffer);
}

// --- Buffers come and go ----------------------------------------------------------------------

void TEditWindow::AddBuffer(TSourceBuffer& buffer) {
    if (std::find(FBuffers.begin(), FBuffers.end(), &buffer) != FBuffers.end()) return;
    Synchronize();
    FBuffers.push_back(&buffer);
    FTabControl->Tabs().AddObject(TabCaption(buffer), &buffer);
    if (FCurrent) return;
    SetCurrent(FTabControl->Tabs().Count() - 1);
    Show();
}

void TEditWindow::ShowBuffer(TSourceBuffer& buffer) {
    AddBuffer(buffer);
    Synchronize();
    SetCurrent(TabOf(&buffer));
    SetActiveControl(FEditor);
    Show();
    FEditor->Invalidate();
}

void TEditWindow::RemoveBuffer(TSourceBuffer& buffer) {
    const auto place = std::find(FBuffers.begin(), FBuffers.end(), &buffer);
    if (place == FBuffers.end()) return;
    Synchronize();
    const int index = TabOf(&buffer);
    const bool wasCurrent = FCurrent == &buffer;
    TSourceBuffer* const current = FCurrent;
    FBuffers.erase(place);
    FTabControl->Tabs().Delete(index);
    SetCurrent(wasCurrent ? std::min(index, FTabControl->Tabs().Count() - 1) : TabOf(current));
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
}

void TEditWindow::UpdateCaptions() {
    Synchronize();
    for (const TSourceBuffer* buffer : FBuffers)
        FTabControl->Tabs().Put(TabOf(buffer), TabCaption(*buffer));
}

} // namespace tarn
