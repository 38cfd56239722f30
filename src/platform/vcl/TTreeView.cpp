#include "vcl/TTreeView.h"

#include "rtl/SysUtils.h"

namespace tarn {
namespace {

constexpr TPropInfo TreeViewProps[] = {
    Published<&TTreeView::ImageList, &TTreeView::SetImageList>("Images"),
    Published<&TTreeView::ReadOnly, &TTreeView::SetReadOnly>("ReadOnly", {.Default = false}),
    Published<&TTreeView::OnChange>("OnChange"),
    Published<&TTreeView::OnChanging>("OnChanging"),
    Published<&TTreeView::OnDblClick>("OnDblClick"),
    Published<&TTreeView::OnEditing>("OnEditing"),
};

} // namespace

constinit const TClassRecord TTreeView::ClassRecord{"TTreeView", &TControl::ClassRecord,
                                                    CreateObject<TTreeView>, TreeViewProps};

void TTreeView::SetReadOnly(bool value) {
    FReadOnly = value;
    StateChanged();
}

void TTreeView::SetImageList(TImageList* value) {
    Images = value;
    StateChanged();
}

bool TTreeView::IsVisible(const TTreeNode& node) const {
    const TTreeNode* above = node.Parent();
    while (above && above->Expanded()) above = above->Parent();
    return !above && &node.TreeView() == this;
}

// --- Selection --------------------------------------------------------------------------------

bool TTreeView::Allowed(TTreeAllowEvent handler, TTreeNode* node) {
    const TWeak<TTreeView> alive(this);
    const TWeak<TTreeNode> there(node);
    bool allow = true;
    if (handler) handler(this, node, allow);
    return allow && alive && there == node;
}

bool TTreeView::SetSelected(TTreeNode* node) {
    if (node) FItems.Require(*node);
    if (node == FSelected) return true;
    if (!Allowed(OnChanging, node)) return false;
    if (node != FSelected) Select(node); // a handler may have done it
    return true;
}

void TTreeView::Select(TTreeNode* node) {
    FSelected = node;
    for (TTreeNode* above = node ? node->Parent() : nullptr; above; above = above->Parent())
        above->FExpanded = true;
    FItems.Changed();
    if (const TTreeNodeEvent handler = OnChange) handler(this, node);
}

// --- The user ---------------------------------------------------------------------------------

bool TTreeView::ClickNode(TTreeNode& node) {
    if (!CanClick(node)) return false;
    const TWeak<TTreeView> alive(this);
    const TWeak<TTreeNode> there(&node);
    if (ParentForm()) SetFocus();
    return alive && there && SetSelected(&node); // they may go as another form becomes active
}

bool TTreeView::DblClickNode(TTreeNode& node) {
    const TWeak<TTreeView> alive(this);
    const TWeak<TTreeNode> there(&node);
    if (!ClickNode(node)) return false;
    if (const TNotifyEvent handler = alive ? OnDblClick : TNotifyEvent()) handler(this);
    if (alive && there) node.SetExpanded(!node.Expanded());
    return true;
}

bool TTreeView::Step(int delta) {
    if (!CanFocus()) return false;
    TTreeNode* node = FSelected ? FSelected : FItems.GetFirstNode();
    if (!FSelected) delta = 0;
    // A selection that is hidden is left from where it would be seen.
    while (node && !IsVisible(*node)) node = node->Parent();
    for (TTreeNode* next = node; next && delta != 0; delta += delta > 0 ? -1 : 1) {
        next = delta > 0 ? node->GetNextVisible() : node->GetPrevVisible();
        if (next) node = next;
    }
    return node && node != FSelected && SetSelected(node);
}

bool TTreeView::EditCaption(TTreeNode& node, std::string_view text) {
    if (FReadOnly || !CanClick(node) || !Allowed(OnEditing, &node)) return false;
    node.SetText(text);
    return true;
}

} // namespace tarn
