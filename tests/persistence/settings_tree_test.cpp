#include "ErrorOf.h"
#include "TTestTree.h"
#include "rtl/SysUtils.h"
#include "vcl/TComponent.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(SettingsTree, ItemsAreFoundByTheirIdentifier) {
    TEntries entries;
    const TSpcItem* const first = entries.Add("Save");
    const TSpcItem* const second = entries.Add("Load");
    entries.Add("SAVE"); // appended as it is: the caller looks first
    EXPECT_EQ(entries.Count(), 3);
    EXPECT_EQ(entries.FindItemID("save"), first);
    EXPECT_EQ(entries.FindItemID("LOAD"), second);
    EXPECT_EQ(entries.FindItemID("Loa"), nullptr);
    EXPECT_EQ(entries.FindItemID(""), nullptr);
    EXPECT_EQ(static_cast<TEntry*>(entries.Items(2))->Key, "SAVE");
    entries.Delete(0);
    EXPECT_EQ(entries.FindItemID("save"), entries.Items(1));
}

TEST(SettingsTree, AnUpdateNameMustNameAWritableText) {
    for (const std::string_view name : {"Missing", "Number", "Fixed", ""}) {
        TEntries entries(name);
        try {
            entries.Add("x");
            ADD_FAILURE() << name;
        } catch (const EInvalidOperation& error) {
            EXPECT_EQ(error.Message(),
                      "TEntry has no writable string property " + std::string(name));
        }
        EXPECT_THROW(entries.FindItemID("x"), EInvalidOperation);
        EXPECT_EQ(entries.Count(), 0);
    }
    TEntries entries("kEY"); // without case
    const TSpcItem* const item = entries.Add("x");
    EXPECT_EQ(entries.FindItemID("x"), item);
}

TEST(SettingsTree, AFreeCollectionRefersToObjects) {
    TReferences references;
    TSpcObject kept, replacing;
    auto freed = std::make_unique<TSpcObject>();
    TWrapperItem* const item = references.Add(&kept, "Form");
    references.Add(freed.get(), "Other");
    EXPECT_EQ(references.Add(&replacing, "FORM"), item);
    EXPECT_EQ(item->AObjectID, "Form"); // the identifier stays as it was
    EXPECT_EQ(item->NestedObject(), &replacing);
    EXPECT_EQ(references.Count(), 2);
    EXPECT_EQ(references.GetItem(0), item);
    EXPECT_THROW(references.GetItem(2), EListError);

    EXPECT_EQ(references.GetItem(1)->NestedObject(), freed.get());
    freed.reset();
    EXPECT_EQ(references.GetItem(1)->NestedObject(), nullptr);
    references.Add(&kept, "Other");
    EXPECT_EQ(references.GetItem(1)->NestedObject(), &kept);

    // The identifier comes first among the item's properties.
    std::string names;
    ForEachProp(item->ClassType(),
                [&](const TPropInfo& prop) { names += prop.Name, names += ' '; });
    EXPECT_EQ(names, "AObjectID NestedObject ");
}

TEST(SettingsTree, NodesAnswerTheirInterfaces) {
    TEntries entries;
    TSpcObject object;
    TEntry& entry = *static_cast<TEntry*>(entries.Add("x"));
    EXPECT_EQ(ObjectInterface<INodeOfItemInfo>(entry)->GetNodeName(), "node x");
    EXPECT_EQ(ObjectInterface<INodeInfo>(entry)->GetNodeName(), "node x");
    EXPECT_FALSE(ObjectInterface<INodeOfItemInfo>(entry)->NeedsIterate());
    for (TObject* node : {static_cast<TObject*>(&object), static_cast<TObject*>(&entries)}) {
        ASSERT_NE(ObjectInterface<INodeInfo>(*node), nullptr);
        EXPECT_EQ(ObjectInterface<INodeInfo>(*node)->GetNodeName(), "");
        EXPECT_FALSE(ObjectInterface<INodeInfo>(*node)->NeedsTranslate());
        EXPECT_EQ(ObjectInterface<INodeOfItemInfo>(*node), nullptr);
    }
    { // references do not own the node
        const TIntf<INodeInfo> node(&object);
        EXPECT_TRUE(Supports<INodeInfo>(node));
        EXPECT_FALSE(Supports<INodeOfItemInfo>(node));
    }
    EXPECT_EQ(object.ClassName(), "TSpcObject");
}

TEST(SettingsTree, ObjectsAreOfAKind) {
    TSpcObject object;
    TEntries entries;
    TReferences references;
    TCollection lines(TClassRef<TCollectionItem>::Of<TLine>());
    TComponent component;
    TValues values;
    TObject bare;
    const TObject* const objects[] = {nullptr, &bare,       &object,  &values,     entries.Add("x"),
                                      &lines,  lines.Add(), &entries, &references, &component};
    std::string idents;
    for (const TObject* each : objects) idents += Format("%d ", {int{BaseClassIdent(each)}});
    EXPECT_EQ(idents, "0 0 1 2 3 5 4 5 5 6 ");
}

TEST(SettingsTree, BlocksAreFoundByTheirNames) {
    TPart part;
    EXPECT_TRUE(part.HasStorageProc("NOTE"));
    EXPECT_FALSE(part.HasStorageProc("Raw"));
    EXPECT_TRUE(part.HasBinStorageProc("raw"));
    EXPECT_FALSE(part.HasBinStorageProc("Note"));
    EXPECT_EQ(ErrorOf([&] { part.AddStorageProc("RAW", {}, {}, true); }),
              "EInvalidOperation: TPart stores a block RAW already");
    EXPECT_EQ(ErrorOf([&] { part.AddBinStorageProc("note", {}, {}, true); }),
              "EInvalidOperation: TPart stores a block note already");
}

/// Holds something that only one can have.
class TOnlyChild : public TSpcObject {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    TOnlyChild() { EXPECT_EQ(++Alive, 1); }
    ~TOnlyChild() override { --Alive; }
    static inline int Alive = 0;
};
const TClassRecord TOnlyChild::ClassRecord{"TOnlyChild", &TSpcObject::ClassRecord,
                                           CreateObject<TOnlyChild>};

TEST(SettingsTree, IsMadeAfresh) {
    std::unique_ptr<TSpcObject> tree = std::make_unique<TOnlyChild>();
    const TWeak<TSpcObject> old(tree.get());
    RecreateSpc(tree);
    EXPECT_EQ(old.Get(), nullptr);
    EXPECT_EQ(tree->ClassName(), "TOnlyChild");

    struct TAbstract : TSpcObject {
        const TClassRecord& ClassType() const override {
            static constexpr TClassRecord record{"TAbstract", &TSpcObject::ClassRecord};
            return record;
        }
    };
    tree = std::make_unique<TAbstract>();
    EXPECT_EQ(ErrorOf([&] { RecreateSpc(tree); }), "EInvalidOperation: TAbstract is abstract");
    EXPECT_EQ(tree->ClassName(), "TAbstract");
}

TEST(SettingsTree, EditorsFindWhatTheyStartWith) {
    EXPECT_EQ(ErrorOf([] { GetInitData(); }),
              "ESpcMngError: Necessary to initialize structure InitData.");
    TTree tree;
    FillInitData("file", osfText, &tree);
    EXPECT_EQ(GetInitData().FileName, "file");
    EXPECT_EQ(GetInitData().Format, osfText);
    EXPECT_EQ(GetInitData().Spc, &tree);
    SetInitData({"other"});
    EXPECT_EQ(GetInitData().FileName, "other");

    int one = 1, two = 2;
    TComponent first;
    auto second = std::make_unique<TComponent>();
    AddUserData(first, &one);
    AddUserData(*second, &one);
    AddUserData(first, &two);
    EXPECT_EQ(GetUserData(first), &two);
    EXPECT_EQ(GetUserData(*second), &one);
    AddUserData(first, nullptr);
    EXPECT_EQ(GetUserData(first), nullptr);
    // The next editor at the same address is another one.
    const TComponent* const place = second.get();
    std::destroy_at(second.get());
    std::construct_at(second.get());
    EXPECT_EQ(second.get(), place);
    EXPECT_EQ(GetUserData(*second), nullptr);
}

} // namespace
} // namespace tarn
