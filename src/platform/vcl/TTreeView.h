#pragma once

#include "vcl/TAction.h"
#include "vcl/TControl.h"
#include "vcl/TTreeNodes.h"

namespace tarn {

/// Whether the user may do something with the node, which `allow` says, true before; null stands
/// for no node.
using TTreeAllowEvent = TMethod<void(TObject* sender, TTreeNode* node, bool& allow)>;
using TTreeNodeEvent = TMethod<void(TObject* sender, TTreeNode* node)>;
inline constexpr std::string_view TreeAllowEventParams[] = {"Sender", "Node", "Allow"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TTreeAllowEvent> =
    MethodType("TTreeAllowEvent", MethodSignatureOf<TTreeAllowEvent>, TreeAllowEventParams);
template <>
inline constexpr TTypeInfo
    TypeInfoOf<TTreeNodeEvent> = MethodType("TTreeNodeEvent", MethodSignatureOf<TTreeNodeEvent>,
                                            std::span(TreeAllowEventParams).first(2));

/// A tree of captions, of which one is selected. Events may change or free the tree.
class TTreeView : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TTreeView(TComponent* owner = nullptr) : TControl(owner), FItems(*this) {}

    TTreeNodes& Items() { return FItems; }
    const TTreeNodes& Items() const { return FItems; }

    /// Null when no node is. The node that goes leaves the selection to its next sibling, the one
    /// before, or else its parent: OnChange is told, OnChanging not asked. Items().Clear() tells
    /// neither.
    TTreeNode* Selected() const { return FSelected; }
    /// Selects the node, null for none, by the program or the user: OnChanging, and OnChange when
    /// that has allowed it. The node's parents are expanded. False when it was not allowed; true,
    /// without events, when the node is selected already. Raises EInvalidOperation for the node of
    /// another tree.
    bool SetSelected(TTreeNode* node);
    /// Whether all parents of the node are expanded, so that it can be scrolled to.
    bool IsVisible(const TTreeNode& node) const;

    bool ReadOnly() const { return FReadOnly; } ///< whether a user cannot edit captions
    void SetReadOnly(bool value);
    TImageList* ImageList() const { return Images.Get(); } ///< published as "Images"
    void SetImageList(TImageList* value);
    TWeak<TImageList> Images; ///< the pictures of the nodes

    /// Clicks a node as a user does, which takes the focus and selects it. False when the selection
    /// was not allowed, and, without effect, for a node that is not visible or while the tree is
    /// disabled or hidden.
    bool ClickNode(TTreeNode& node);
    /// A click, then OnDblClick; it turns over whether the node is expanded.
    bool DblClickNode(TTreeNode& node);
    /// The user goes so many visible nodes down, or up when below 0, with the keyboard, at most to
    /// the last or first one. Without a selection, the first step is to the first node. False when
    /// the selection stays as it is.
    bool Step(int delta);
    /// The user edits a caption, after OnEditing. False when that was not allowed, while the tree
    /// is read-only, disabled or hidden, and for a node that is not visible.
    bool EditCaption(TTreeNode& node, std::string_view text);

    TTreeNodeEvent OnChange;    ///< another node, or none, is selected
    TTreeAllowEvent OnChanging; ///< another node, or none, is to be selected
    TNotifyEvent OnDblClick;
    TTreeAllowEvent OnEditing; ///< the user is to edit a caption

private:
    friend class TTreeNodes;
    /// Asks about a node; false as well when the node or the tree went meanwhile.
    bool Allowed(TTreeAllowEvent handler, TTreeNode* node);
    bool CanClick(const TTreeNode& node) const { return CanFocus() && IsVisible(node); }
    void Select(TTreeNode* node);

    TTreeNode* FSelected = nullptr;
    bool FReadOnly = false;
    TTreeNodes FItems;
};

} // namespace tarn
