#include "qsSpcMng.h"
#include "rtl/SysUtils.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

/// An item that is told from the others by one of several properties.
class TEntry : public TSpcItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    std::string GetNodeName() override { return "node " + Key; }

    std::string Key;
    int Number = 0;
    const std::string& Fixed() const { return Key; }
};
constexpr TPropInfo EntryProps[] = {
    Published<&TEntry::Key>("Key"),
    Published<&TEntry::Number>("Number"),
    Published<&TEntry::Fixed>("Fixed"),
};
const TClassRecord TEntry::ClassRecord{"TEntry", &TSpcItem::ClassRecord, CreateObject<TEntry>,
                                       EntryProps};

class TEntries : public TFixedCollection {
public:
    explicit TEntries(std::string_view updateName = "Key")
        : TFixedCollection(TClassRef<TCollectionItem>::Of<TEntry>()), FUpdateName(updateName) {}
    std::string GetUpdateName() const override { return FUpdateName; }

private:
    std::string FUpdateName;
};

class TReferences : public TFreeCollection {
public:
    TReferences() : TFreeCollection(TClassRef<TCollectionItem>::Of<TWrapperItem>()) {}
};

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

} // namespace
} // namespace tarn
