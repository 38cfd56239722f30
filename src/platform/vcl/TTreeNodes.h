#pragma once

#include "rtl/TObject.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class TTreeNodes;
class TTreeView;

/// A node of a tree view, which owns it: a caption, an object behind it, which is not owned, and
/// the nodes below it.
class TTreeNode : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    const std::string& Text() const { return FText; }
    void SetText(std::string_view value);
    TObject* Data() const { return FData; }
    void SetData(TObject* value) { FData = value; }

    // Pictures by their index in the tree's image list; -1 for none.
    int ImageIndex() const { return FImages[0]; }
    void SetImageIndex(int value) { SetImage(0, value); }
    int SelectedIndex() const { return FImages[1]; } ///< in place of ImageIndex while selected
    void SetSelectedIndex(int value) { SetImage(1, value); }
    int StateIndex() const { return FImages[2]; } ///< beside it
    void SetStateIndex(int value) { SetImage(2, value); }
    int OverlayIndex() const { return FImages[3]; } ///< over it
    void SetOverlayIndex(int value) { SetImage(3, value); }

    TTreeView& TreeView() const;
    TTreeNode* Parent() const;           ///< null for a node of the first level
    int Level() const;                   ///< 0 for a node of the first level
    int Index() const { return FIndex; } ///< among its siblings
    int Count() const { return static_cast<int>(FItems.size()); }
    TTreeNode* Item(int index) const;              ///< raises EListError outside the nodes below
    bool HasAsParent(const TTreeNode& node) const; ///< whether it stands below `node`, at any depth

    // Each is null when there is none.
    TTreeNode* GetFirstChild() const { return Count() == 0 ? nullptr : FItems.front().get(); }
    TTreeNode* GetLastChild() const { return Count() == 0 ? nullptr : FItems.back().get(); }
    TTreeNode* GetNextSibling() const;
    TTreeNode* GetPrevSibling() const;
    TTreeNode* GetNext() const; ///< depth first: the node below, else the next one further up
    /// The nodes below and above in the list of those whose parents are expanded.
    TTreeNode* GetNextVisible() const;
    TTreeNode* GetPrevVisible() const;

    /// Whether the nodes below are seen, or will be once there are any.
    bool Expanded() const { return FExpanded; }
    void SetExpanded(bool value) { value ? Expand(false) : Collapse(false); }
    void Expand(bool recurse); ///< with `recurse` the nodes below, too
    /// When the selected node is one that is hidden by that, this one is selected if it is allowed.
    void Collapse(bool recurse);

    /// Moves the node with all below it to a place before or behind a sibling. Raises
    /// EInvalidOperation for a node that is none.
    void MoveBefore(TTreeNode& sibling) { MoveTo(sibling, false); }
    void MoveBehind(TTreeNode& sibling) { MoveTo(sibling, true); }

private:
    friend class TTreeNodes;
    friend class TTreeView;
    TTreeNode(TTreeNodes& nodes, TTreeNode* parent) : FNodes(nodes), FParent(parent) {}

    void SetImage(int which, int value);
    void SetExpandedBelow(bool value, bool recurse);
    void MoveTo(TTreeNode& sibling, bool behind);
    void Renumber(int first);       ///< the nodes below, from that index on
    TTreeNode* NextOutside() const; ///< the next node in depth-first order that is not below

    TTreeNodes& FNodes;
    TTreeNode* FParent; ///< null for the root, which holds the first level and is not seen
    std::vector<std::unique_ptr<TTreeNode>> FItems;
    int FIndex = 0;
    std::string FText;
    TObject* FData = nullptr;
    int FImages[4] = {-1, -1, -1, -1};
    bool FExpanded = false;
};

/// The nodes of a tree view, which tell its front end of their changes.
class TTreeNodes {
public:
    explicit TTreeNodes(TTreeView& view) : FView(view) {}
    TTreeNodes(const TTreeNodes&) = delete;
    TTreeNodes& operator=(const TTreeNodes&) = delete;

    int Count() const { return FCount; }                              ///< at all levels
    TTreeNode* GetFirstNode() const { return FRoot.GetFirstChild(); } ///< null when there is none
    /// The node at that place of the depth-first order; raises EListError outside the nodes. Takes
    /// time with the place: walk with GetNext.
    TTreeNode* Item(int absoluteIndex) const;

    /// A new last node below `parent`, or of the first level when that is null.
    TTreeNode* AddChild(TTreeNode* parent, std::string_view text, TObject* data = nullptr);
    void Delete(TTreeNode& node); ///< with all below it; see TTreeView::Selected
    void Clear();

    /// Between the two the front end is not told of changes, but once at the end of the outermost
    /// pair. See UpdateOnce.
    void BeginUpdate() { ++FUpdateCount; }
    void EndUpdate();

private:
    friend class TTreeNode;
    friend class TTreeView;
    void Changed();
    void Require(const TTreeNode& node) const; ///< a node of this tree

    TTreeView& FView;
    TTreeNode FRoot{*this, nullptr};
    int FCount = 0;
    int FUpdateCount = 0;
};

} // namespace tarn
