// The settings editor's tree: its nodes, the start node, and collections that change.

#include "TAllSteps.h"
#include "qsSpcEditor.h"
#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {

// --- Properties -------------------------------------------------------------------------------

/// All published properties of a class that its objects answer to, in the order of the rows.
const TSpcEditor::TProps& TSpcEditor::PropsOf(const TClassRecord& record) {
    const bool sorted = Options.Contains(eoSortProps);
    if (sorted != FPropsSorted) FProps.clear();
    FPropsSorted = sorted;
    const auto [at, isNew] = FProps.try_emplace(&record);
    TProps& props = at->second;
    if (!isNew) return props;
    // A class may publish an inherited property again, for another place.
    ForEachProp(record, [&](const TPropInfo& prop) {
        if (record.FindProp(prop.Name) == &prop) props.push_back(&prop);
    });
    if (sorted)
        std::stable_sort(props.begin(), props.end(), [](const TPropInfo* a, const TPropInfo* b) {
            return CompareText(a->Name, b->Name) < 0;
        });
    return props;
}

TBaseClassIdent TSpcEditor::GetInstanceID(const TObject* object) {
    return BaseClassIdent(object);
}

/// The object of a property that is a node; null when there is none.
TPersistent* TSpcEditor::ValueOf(TPersistent& instance, const TPropInfo& prop) const {
    if (!BecomesNode(prop)) return nullptr;
    TObject* value = nullptr;
    prop.Get(instance, &value);
    return ClassCast<TPersistent>(value);
}

bool TSpcEditor::BecomesNode(const TPropInfo& prop) const {
    return prop.PropType->Kind == tkClass;
}

/// A property that gives the node's name, and is no row.
bool TSpcEditor::NamesNode(const TPropInfo& prop) {
    const TTypeKind kind = prop.PropType->Kind;
    return (kind == tkString || kind == tkLString || kind == tkWString) &&
           SameText(prop.Name, "NodeName");
}

/// The object that an item wraps is shown with the item.
bool TSpcEditor::SharesNode(TPersistent& parent, const TPropInfo& prop) {
    return prop.Name == "NestedObject" && GetInstanceID(&parent) == ciSpcItem;
}

// --- Building ---------------------------------------------------------------------------------

namespace {

/// An update of a tree, for as long as the object lives. A handler may free the tree.
class TTreeUpdate {
public:
    explicit TTreeUpdate(TTreeView& tree) : FTree(&tree) { tree.Items().BeginUpdate(); }
    TTreeUpdate(const TTreeUpdate&) = delete;
    TTreeUpdate& operator=(const TTreeUpdate&) = delete;
    ~TTreeUpdate() {
        if (FTree) FTree->Items().EndUpdate();
    }

private:
    TWeak<TTreeView> FTree;
};

} // namespace

void TSpcEditor::BuildTree() {
    if (!FForm) return;
    ClearPaintAreas();
    if (!FForm) return;
    InState(esTreeBuilding, [&] {
        const TTreeUpdate update(FForm->Tree());
        AddRoot();
        PlaceNodeImages();
    });
    if (FForm) OS().PostMessage(FForm->Handle(), CM_SELECTSTARTNODE, 0, 0);
}

void TSpcEditor::AddRoot() {
    TTreeNodes& nodes = FForm->Tree().Items();
    nodes.Clear();
    FOnWay.clear();
    TPersistent* const root = GetUpdatingSpc();
    if (!root) return;
    ProcessItem(*root, nullptr, FindNodeNameEx(*root, root->ClassName(), root->ClassName()));
    if (TTreeNode* const first = nodes.GetFirstNode()) first->Expand(false);
}

/// An object that refers to one above it would have no end.
bool TSpcEditor::IsOnWay(const TObject& object) const {
    return std::find(FOnWay.begin(), FOnWay.end(), &object) != FOnWay.end();
}

void TSpcEditor::ProcessItem(TPersistent& object, TTreeNode* parent, std::string_view name) {
    if (IsOnWay(object)) return;
    TTreeNode* const node = FForm->Tree().Items().AddChild(parent, name, &object);
    ProcessContent(object, *node);
}

/// Puts what the object holds below its node.
void TSpcEditor::ProcessContent(TPersistent& object, TTreeNode& node) {
    FOnWay.push_back(&object);
    ProcessProps(object, node);
    if (auto* const collection = ClassCast<TCollection>(&object)) ProcessItems(*collection, node);
    FOnWay.pop_back();
}

/// The node's name that the object gives by a property; empty when it gives none.
std::string TSpcEditor::NameByProperty(TPersistent& object) {
    const TPropInfo* const prop = object.ClassType().FindProp("NodeName");
    return prop && NamesNode(*prop) ? GetPropAsText(object, *prop) : std::string();
}

void TSpcEditor::ProcessProps(TPersistent& object, TTreeNode& node) {
    if (const std::string name = NameByProperty(object); !name.empty()) node.SetText(name);
    for (const TPropInfo* const prop : PropsOf(object.ClassType())) {
        if (!CanProcessProperty(object, *prop)) continue;
        TPersistent* const value = ValueOf(object, *prop);
        if (!value) continue;
        if (!SharesNode(object, *prop))
            ProcessItem(*value, &node, FindNodeNameEx(*value, object.ClassName(), prop->Name));
        else if (!IsOnWay(*value)) // it may wrap an item in its turn
            ProcessContent(*value, node);
    }
}

void TSpcEditor::ProcessItems(TCollection& collection, TTreeNode& node) {
    for (int i = 0; i < collection.Count(); ++i) {
        TCollectionItem& item = *collection.Items(i);
        ProcessItem(item, &node, ItemName(item, node, i));
    }
}

std::string TSpcEditor::ItemName(TCollectionItem& item, const TTreeNode& collectionNode,
                                 int index) {
    std::string name = NameByProperty(item);
    if (!name.empty()) return name;
    return FindItemNodeName(item, item.ClassName(), collectionNode.Text(), index);
}

/// False when the handler has freed the node.
bool TSpcEditor::PlaceImages(TTreeNode& node) {
    TObject* const object = ObjectOf(node);
    if (!object) return false;
    const TWeak<TTreeNode> there(&node);
    TPlaceImage images;
    OnPlaceNodeImage(this, node, GetInstanceID(object), object, images);
    if (!there) return false;
    node.SetImageIndex(images[niiImageIndex]);
    node.SetSelectedIndex(images[niiSelectedIndex]);
    node.SetStateIndex(images[niiStateIndex]);
    node.SetOverlayIndex(images[niiOverlayIndex]);
    return true;
}

/// For the node and all below it.
void TSpcEditor::PlaceImagesFrom(TTreeNode& node) {
    TTreeNode* each = &node;
    while (OnPlaceNodeImage && each && (each == &node || each->HasAsParent(node)))
        each = PlaceImages(*each) ? each->GetNext() : nullptr;
}

void TSpcEditor::PlaceNodeImages() {
    TTreeNode* const first = FForm ? FForm->Tree().Items().GetFirstNode() : nullptr;
    if (first) PlaceImagesFrom(*first);
}

int TSpcEditor::AddNewImage() {
    MakeForm();
    return FForm->Images().Count++;
}

// --- Finding ----------------------------------------------------------------------------------

TTreeNode* TSpcEditor::FindNode(const TObject* object) const {
    TTreeNode* node = FForm && object ? FForm->Tree().Items().GetFirstNode() : nullptr;
    while (node && node->Data() != object) node = node->GetNext();
    return node;
}

/// The object that has in the copy the place that `wanted` has in the original; null when there is
/// none.
TPersistent* TSpcEditor::Counterpart(TPersistent& original, TPersistent& copy,
                                     const TObject& wanted) {
    if (&original == &wanted) return &copy;
    if (IsOnWay(original)) return nullptr;
    FOnWay.push_back(&original);
    TPersistent* found = ItemCounterpart(original, copy, wanted);
    const TProps props = PropsOf(original.ClassType());
    for (std::size_t i = 0; !found && i < props.size(); ++i)
        found = PropCounterpart(original, copy, *props[i], wanted);
    FOnWay.pop_back();
    return found;
}

/// The copy may be of a class of its own with the same properties.
TPersistent* TSpcEditor::PropCounterpart(TPersistent& original, TPersistent& copy,
                                         const TPropInfo& prop, const TObject& wanted) {
    const TPropInfo* const same = copy.ClassType().FindProp(prop.Name);
    TPersistent* const value = same ? ValueOf(original, prop) : nullptr;
    TPersistent* const copied = value ? ValueOf(copy, *same) : nullptr;
    return copied ? Counterpart(*value, *copied, wanted) : nullptr;
}

TPersistent* TSpcEditor::ItemCounterpart(TPersistent& original, TPersistent& copy,
                                         const TObject& wanted) {
    auto* const items = ClassCast<TCollection>(&original);
    auto* const copied = ClassCast<TCollection>(&copy);
    TPersistent* found = nullptr;
    for (int i = 0; items && copied && !found && i < std::min(items->Count(), copied->Count()); ++i)
        found = Counterpart(*items->Items(i), *copied->Items(i), wanted);
    return found;
}

TTreeNode* TSpcEditor::FindInstanceID(TTreeNode* from, TBaseClassIdent ident) {
    while (from && GetInstanceID(from->Data()) != ident) from = from->GetNext();
    return from;
}

TTreeNode* TSpcEditor::NextDescendantID(TTreeNode& node, TTreeNode* after, TBaseClassIdent ident) {
    TTreeNode* const found = FindInstanceID(after ? after->GetNext() : node.GetNext(), ident);
    return found && found->HasAsParent(node) ? found : nullptr;
}

// --- Selecting --------------------------------------------------------------------------------

void TSpcEditor::SelectStartNode() {
    if (!FForm) return;
    TTreeView& tree = FForm->Tree();
    bool defaultSelect = true;
    if (OnSelectStartNode) OnSelectStartNode(this, tree, defaultSelect);
    if (!FForm || !defaultSelect || tree.Selected()) return;
    TTreeNode* const wanted = FindNode(FStartObject.Get());
    tree.SetSelected(wanted ? wanted : tree.Items().GetFirstNode());
}

void TSpcEditor::FormSettled() {
    SelectStartNode();
}

/// Leaving a node on a copy writes its rows into the copy; what cannot be written is mended first.
/// So it is where changes are written at once: only then there is something left to be written.
bool TSpcEditor::MayLeaveRows() {
    return (!FClone && !Options.Contains(eoSaveSpcOnChange)) || GetControlsData();
}

void TSpcEditor::SpcTreeChanging(TObject*, TTreeNode*, bool& allow) {
    if (FState.Contains(esTreeBuilding) || FState.Contains(esNodeDeleting)) return;
    allow = false; // and stays so when that raises
    allow = MayLeaveRows();
}

void TSpcEditor::SpcTreeChange(TObject*, TTreeNode* node) {
    if (FState.Contains(esTreeBuilding) || FState.Contains(esFormDestroying)) return;
    CreateNodeControls(node ? ClassCast<TPersistent>(ObjectOf(*node)) : nullptr);
}

// --- Collections that change -------------------------------------------------------------------

/// The object behind a node; null when the tree that is shown was freed.
TObject* TSpcEditor::ObjectOf(const TTreeNode& node) const {
    return GetUpdatingSpc() ? node.Data() : nullptr;
}

/// The collection of the node, or that of the node above, in which the node's item stands; null
/// when there is none.
TCollection* TSpcEditor::CollectionOf(const TTreeNode& node) const {
    TObject* const object = ObjectOf(node);
    auto* const item = ClassCast<TCollectionItem>(object);
    if (!item) return ClassCast<TCollection>(object);
    const TTreeNode* const above = node.Parent();
    return above && above->Data() == item->Collection() ? item->Collection() : nullptr;
}

namespace {

/// The items of those stand for things of the program.
bool HasFixedItems(const TCollection& collection) {
    return collection.InheritsFrom(TFixedCollection::ClassRecord) ||
           collection.InheritsFrom(TFreeCollection::ClassRecord);
}

} // namespace

bool TSpcEditor::CanAddNode(const TTreeNode& node) const {
    const TCollection* const collection = CollectionOf(node);
    return collection && !HasFixedItems(*collection) && collection->ItemClass().Record().Create;
}

bool TSpcEditor::CanDeleteNode(const TTreeNode& node) const {
    const TCollection* const collection = CollectionOf(node);
    return collection && !HasFixedItems(*collection) && collection->Count() > 0;
}

bool TSpcEditor::CanMoveNode(const TTreeNode& node, TNodeMotion motion) const {
    const TCollection* const collection = CollectionOf(node);
    const auto* const item = collection ? ClassCast<TCollectionItem>(node.Data()) : nullptr;
    if (!item) return false;
    return motion == nmUp ? item->Index() > 0 : item->Index() + 1 < collection->Count();
}

bool TSpcEditor::AllowCollectionChange(TCollection& collection, TCollectionItem* item,
                                       TCollNotification action) {
    bool allow = true;
    if (OnCollectionChanging) OnCollectionChanging(this, collection, item, action, allow);
    return allow;
}

void TSpcEditor::CollectionChanged(TCollection& collection, TCollectionItem* item,
                                   TCollNotification action) {
    FModified = true;
    if (OnCollectionChange) OnCollectionChange(this, collection, item, action);
}

namespace {

/// Calls `visit(node, item)` for the nodes of a collection's items, the last one first.
template <class F>
void ForEachItem(TTreeNode& collectionNode, const TCollection& collection, F&& visit) {
    TTreeNode* before = nullptr;
    for (TTreeNode* node = collectionNode.GetLastChild(); node; node = before) {
        before = node->GetPrevSibling();
        auto* const item = ClassCast<TCollectionItem>(node->Data());
        if (item && item->Collection() == &collection) visit(*node, *item);
    }
}

} // namespace

/// Gives the items of a collection the names of their places.
void TSpcEditor::RenameItems(TTreeNode& collectionNode, const TCollection& collection) {
    int index = collection.Count(); // an item would have to look for its own
    ForEachItem(collectionNode, collection, [&](TTreeNode& node, TCollectionItem& item) {
        node.SetText(ItemName(item, collectionNode, --index));
    });
}

TTreeNode* TSpcEditor::AddNode(TTreeNode& node) {
    const TWeak<TTreeNode> there(&node); // handlers may build the tree anew
    // A row that cannot be written is mended before another node is shown.
    if (!CanAddNode(node) || !MayLeaveRows() || !there) return nullptr;
    TCollection& collection = *CollectionOf(node);
    auto* const before = ClassCast<TCollectionItem>(node.Data());
    if (!AllowCollectionChange(collection, nullptr, cnAdding) || !there) return nullptr;
    TTreeNode& collectionNode = before ? *node.Parent() : node;
    TCollectionItem* const item =
        collection.Insert(before ? before->Index() + 1 : collection.Count());
    FModified = true;
    TWeak<TTreeNode> added;
    TAllSteps steps;
    steps.Run([&] {
        InState(esTreeBuilding, [&] {
            added = AddItemNode(*item, collectionNode);
            if (before) added->MoveBehind(node);
            RenameItems(collectionNode, collection);
            PlaceImagesFrom(*added);
        });
    });
    steps.Run([&] { CollectionChanged(collection, item, cnAdding); });
    if (added) steps.Run([&] { FForm->Tree().SetSelected(added.Get()); });
    steps.Finish();
    return added.Get();
}

TTreeNode* TSpcEditor::AddItemNode(TCollectionItem& item, TTreeNode& collectionNode) {
    FOnWay.clear();
    for (const TTreeNode* above = &collectionNode; above; above = above->Parent())
        FOnWay.push_back(above->Data());
    ProcessItem(item, &collectionNode, ItemName(item, collectionNode, item.Index()));
    FOnWay.clear();
    return collectionNode.GetLastChild();
}

bool TSpcEditor::DeleteNode(TTreeNode& node) {
    if (!CanDeleteNode(node)) return false;
    const TWeak<TTreeNode> there(&node); // handlers may build the tree anew
    TCollection& collection = *CollectionOf(node);
    auto* const item = ClassCast<TCollectionItem>(node.Data());
    const TCollNotification action = item ? cnDeleting : cnClearing;
    if (!AllowCollectionChange(collection, item, action) || !there) return false;
    TAllSteps steps; // a handler's error leaves no half of it
    InState(esNodeDeleting, [&] {
        DropRowsBelow(node, item != nullptr, steps);
        FModified = true;
        TTreeNode* const collectionNode = item && there ? node.Parent() : &node;
        if (there) DeleteNodes(node, collection, steps);
        steps.Run([&] { item ? collection.Delete(item->Index()) : collection.Clear(); });
        if (item || there) steps.Run([&] { RenameItems(*collectionNode, collection); });
    });
    steps.Run([&] { CollectionChanged(collection, nullptr, action); });
    steps.Finish();
    return true;
}

/// The rows of objects that are to go are not written any more.
void TSpcEditor::DropRowsBelow(const TTreeNode& node, bool itself, TAllSteps& steps) {
    const TTreeNode* const selected = FForm->Tree().Selected();
    if (selected && ((itself && selected == &node) || selected->HasAsParent(node)))
        steps.Run([&] { ClearPaintAreas(); });
    steps.Run([&] { DropPendingBelow(node, itself); });
}

/// Deletes the node of an item, or those of all items.
void TSpcEditor::DeleteNodes(TTreeNode& node, const TCollection& collection, TAllSteps& steps) {
    TTreeView& tree = FForm->Tree();
    if (node.Data() != &collection) return steps.Run([&] { tree.Items().Delete(node); });
    // One change of the selection instead of one for each node that goes.
    if (tree.Selected() && tree.Selected()->HasAsParent(node))
        steps.Run([&] { tree.SetSelected(&node); });
    ForEachItem(node, collection, [&](TTreeNode& each, TCollectionItem&) {
        steps.Run([&] { tree.Items().Delete(each); });
    });
}

bool TSpcEditor::MoveNode(TTreeNode& node, TNodeMotion motion) {
    if (!CanMoveNode(node, motion)) return false;
    auto& item = static_cast<TCollectionItem&>(*node.Data());
    TTreeNode* const other = motion == nmUp ? node.GetPrevSibling() : node.GetNextSibling();
    item.SetIndex(item.Index() + (motion == nmUp ? -1 : 1));
    FModified = true;
    if (motion == nmUp)
        node.MoveBefore(*other);
    else
        node.MoveBehind(*other);
    RenameItems(*node.Parent(), *item.Collection());
    return true;
}

} // namespace tarn
