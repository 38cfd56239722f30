#include "vcl/TTreeNodes.h"

#include "rtl/SysUtils.h"
#include "vcl/TTreeView.h"

#include <algorithm>

namespace tarn {

constinit const TClassRecord TTreeNode::ClassRecord{"TTreeNode", &TPersistent::ClassRecord};

// --- TTreeNode: what it shows -----------------------------------------------------------------

void TTreeNode::SetText(std::string_view value) {
    FText = value;
    FNodes.Changed();
}

void TTreeNode::SetImage(int which, int value) {
    FImages[which] = value;
    FNodes.Changed();
}

// --- TTreeNode: its place ---------------------------------------------------------------------

TTreeView& TTreeNode::TreeView() const {
    return FNodes.FView;
}

TTreeNode* TTreeNode::Parent() const {
    return FParent == &FNodes.FRoot ? nullptr : FParent;
}

int TTreeNode::Level() const {
    int level = 0;
    for (const TTreeNode* above = Parent(); above; above = above->Parent()) ++level;
    return level;
}

TTreeNode* TTreeNode::Item(int index) const {
    if (index < 0 || index >= Count()) throw EListError(Format(SListIndexError, {index}));
    return FItems[static_cast<std::size_t>(index)].get();
}

bool TTreeNode::HasAsParent(const TTreeNode& node) const {
    const TTreeNode* above = FParent;
    while (above && above != &node) above = above->FParent;
    return above != nullptr;
}

TTreeNode* TTreeNode::GetNextSibling() const {
    return FParent && FIndex + 1 < FParent->Count() ? FParent->Item(FIndex + 1) : nullptr;
}

TTreeNode* TTreeNode::GetPrevSibling() const {
    return FParent && FIndex > 0 ? FParent->Item(FIndex - 1) : nullptr;
}

TTreeNode* TTreeNode::NextOutside() const {
    for (const TTreeNode* node = this; node; node = node->FParent)
        if (TTreeNode* const next = node->GetNextSibling()) return next;
    return nullptr;
}

TTreeNode* TTreeNode::GetNext() const {
    return Count() > 0 ? GetFirstChild() : NextOutside();
}

TTreeNode* TTreeNode::GetNextVisible() const {
    return FExpanded ? GetNext() : NextOutside();
}

TTreeNode* TTreeNode::GetPrevVisible() const {
    TTreeNode* node = GetPrevSibling();
    if (!node) return Parent();
    while (node->FExpanded && node->Count() > 0) node = node->GetLastChild();
    return node;
}

void TTreeNode::MoveTo(TTreeNode& sibling, bool behind) {
    if (sibling.FParent != FParent)
        throw EInvalidOperation(Format("%s is no sibling of %s", {sibling.FText, FText}));
    const auto place = [this](int index) { return FParent->FItems.begin() + index; };
    const int from = FIndex;
    const int to = sibling.FIndex + (behind ? 1 : 0);
    if (to > from)
        std::rotate(place(from), place(from + 1), place(to));
    else
        std::rotate(place(to), place(from), place(from + 1));
    FParent->Renumber(std::min(from, to));
    FNodes.Changed();
}

void TTreeNode::Renumber(int first) {
    for (int i = first; i < Count(); ++i) Item(i)->FIndex = i;
}

// --- TTreeNode: what is seen below it ---------------------------------------------------------

void TTreeNode::SetExpandedBelow(bool value, bool recurse) {
    const TTreeNode* const end = NextOutside();
    FExpanded = value;
    for (TTreeNode* node = recurse ? GetNext() : nullptr; node != nullptr && node != end;
         node = node->GetNext())
        node->FExpanded = value;
    FNodes.Changed();
}

void TTreeNode::Expand(bool recurse) {
    SetExpandedBelow(true, recurse);
}

void TTreeNode::Collapse(bool recurse) {
    TTreeView& view = FNodes.FView;
    SetExpandedBelow(false, recurse);
    const TTreeNode* const selected = view.Selected();
    if (selected && selected->HasAsParent(*this) && view.IsVisible(*this)) view.SetSelected(this);
}

// --- TTreeNodes -------------------------------------------------------------------------------

TTreeNode* TTreeNodes::Item(int absoluteIndex) const {
    if (absoluteIndex < 0 || absoluteIndex >= FCount)
        throw EListError(Format(SListIndexError, {absoluteIndex}));
    TTreeNode* node = GetFirstNode();
    for (int i = 0; i < absoluteIndex; ++i) node = node->GetNext();
    return node;
}

TTreeNode* TTreeNodes::AddChild(TTreeNode* parent, std::string_view text, TObject* data) {
    if (parent) Require(*parent);
    TTreeNode& above = parent ? *parent : FRoot;
    std::unique_ptr<TTreeNode> node(new TTreeNode(*this, &above));
    node->FIndex = above.Count();
    node->FText = text;
    node->FData = data;
    above.FItems.push_back(std::move(node));
    ++FCount;
    Changed();
    return above.GetLastChild();
}

void TTreeNodes::Delete(TTreeNode& node) {
    Require(node);
    const TTreeNode* const selected = FView.FSelected;
    const bool takesSelection = selected && (selected == &node || selected->HasAsParent(node));
    TTreeNode* heir = node.GetNextSibling();
    if (!heir) heir = node.GetPrevSibling();
    if (!heir) heir = node.Parent();

    const TTreeNode* const end = node.NextOutside();
    for (const TTreeNode* each = &node; each != end; each = each->GetNext()) --FCount;
    TTreeNode& parent = *node.FParent;
    const int index = node.FIndex;
    if (takesSelection) FView.FSelected = nullptr;
    parent.FItems.erase(parent.FItems.begin() + index);
    parent.Renumber(index);
    if (takesSelection)
        FView.Select(heir);
    else
        Changed();
}

void TTreeNodes::Clear() {
    FView.FSelected = nullptr;
    FRoot.FItems.clear();
    FCount = 0;
    Changed();
}

void TTreeNodes::Require(const TTreeNode& node) const {
    if (&node.FNodes != this)
        throw EInvalidOperation(Format("%s is a node of another tree", {node.FText}));
}

void TTreeNodes::EndUpdate() {
    if (--FUpdateCount == 0) FView.StateChanged();
}

void TTreeNodes::Changed() {
    if (FUpdateCount == 0) FView.StateChanged();
}

} // namespace tarn
