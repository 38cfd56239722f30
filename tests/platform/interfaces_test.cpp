#include "rtl/SysUtils.h"
#include "rtl/TCollection.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

class INamed : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{01234567-89AB-CDEF-0123-456789ABCDEF}"};
    virtual std::string Name() = 0;

protected:
    ~INamed() = default;
};

class ITitled : public INamed {
public:
    using Parent = INamed;
    static constexpr TGUID IID{"{01234567-89AB-CDEF-0123-456789ABCDE0}"};

protected:
    ~ITitled() = default;
};

class ISized : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{01234567-89AB-CDEF-0123-456789ABCDE1}"};
    virtual int Size() = 0;

protected:
    ~ISized() = default;
};

class IForeign : public IInterface {
public:
    using Parent = IInterface;
    static constexpr TGUID IID{"{01234567-89AB-CDEF-0123-456789ABCDE2}"};

protected:
    ~IForeign() = default;
};

class TThing : public TInterfacedObject<ITitled, ISized> {
public:
    explicit TThing(bool& alive) : FAlive(alive) { FAlive = true; }
    ~TThing() override { FAlive = false; }
    std::string Name() override { return "thing"; }
    int Size() override { return 7; }

private:
    bool& FAlive;
};

TEST(Interfaces, Identifier) {
    constexpr TGUID id{"{01234567-89AB-CDEF-0123-456789ABCDEF}"};
    EXPECT_EQ(id.D1, 0x01234567u);
    EXPECT_EQ(id.D2, 0x89AB);
    EXPECT_EQ(id.D3, 0xCDEF);
    const std::array<std::uint8_t, 8> rest{0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
    EXPECT_EQ(id.D4, rest);
    EXPECT_EQ(id, INamed::IID);
    EXPECT_NE(id, ITitled::IID);
}

TEST(Interfaces, SupportsUpTheChain) {
    bool alive = false;
    {
        const TIntf<ISized> sized(new TThing(alive));
        const TIntf<INamed> named = Supports<INamed>(sized);
        ASSERT_TRUE(named);
        EXPECT_EQ(named->Name(), "thing");
        EXPECT_EQ((*Supports<ITitled>(named)).Name(), "thing");
        EXPECT_EQ(Supports<ISized>(named)->Size(), 7);
        EXPECT_TRUE(Supports<IInterface>(sized));
        EXPECT_FALSE(Supports<IForeign>(sized));
        EXPECT_FALSE(Supports<INamed>(TIntf<ISized>()));

        void* found = &alive;
        EXPECT_EQ(sized->QueryInterface(IForeign::IID, found), E_NOINTERFACE);
        EXPECT_EQ(found, nullptr);
    }
    EXPECT_FALSE(alive);
}

TEST(Interfaces, AreCounted) {
    bool alive = false;
    TIntf<ITitled> a(new TThing(alive));
    const auto count = [&a] { return a->_AddRef(), a->_Release(); };
    EXPECT_EQ(count(), 1);
    {
        TIntf<ITitled> b = a;
        const TIntf<INamed> base = b;
        EXPECT_EQ(count(), 3);
        TIntf<ITitled> moved = std::move(b);
        EXPECT_EQ(count(), 3);
        moved = moved.Get();
        EXPECT_EQ(count(), 3);
        moved = nullptr;
        EXPECT_EQ(count(), 2);
        EXPECT_EQ(base.Get(), a.Get());
    }
    EXPECT_EQ(count(), 1);
    a = TIntf<ITitled>(a);
    EXPECT_EQ(count(), 1);
    bool other = false;
    a = new TThing(other);
    EXPECT_FALSE(alive);
    EXPECT_TRUE(other);
    a = nullptr;
    EXPECT_FALSE(other);
}

/// An object that its owner alone frees, with interfaces in its class's table.
class TPlain : public TPersistent, public INamed {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    HResult QueryInterface(const TGUID& iid, void*& obj) override {
        return GetInterface(iid, obj) ? S_OK : E_NOINTERFACE;
    }
    int _AddRef() override { return -1; }
    int _Release() override { return -1; }
    std::string Name() override { return "plain"; }
};
constexpr TInterfaceEntry PlainInterfaces[] = {Implements<TPlain, INamed>()};
const TClassRecord TPlain::ClassRecord{
    "TPlain", &TPersistent::ClassRecord, CreateObject<TPlain>, {}, PlainInterfaces};

class TPlainer : public TPlain, public ISized {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    HResult QueryInterface(const TGUID& iid, void*& obj) override {
        return TPlain::QueryInterface(iid, obj);
    }
    int _AddRef() override { return -1; }
    int _Release() override { return -1; }
    int Size() override { return 3; }
};
constexpr TInterfaceEntry PlainerInterfaces[] = {Implements<TPlainer, ISized>()};
const TClassRecord TPlainer::ClassRecord{
    "TPlainer", &TPlain::ClassRecord, CreateObject<TPlainer>, {}, PlainerInterfaces};

TEST(Interfaces, OfTheClassTables) {
    TPlainer object;
    ASSERT_NE(ObjectInterface<ISized>(object), nullptr);
    EXPECT_EQ(ObjectInterface<ISized>(object)->Size(), 3);
    EXPECT_EQ(ObjectInterface<INamed>(object)->Name(), "plain"); // of the ancestor's table
    EXPECT_EQ(ObjectInterface<ITitled>(object), nullptr);
    TPlain plain;
    EXPECT_EQ(ObjectInterface<ISized>(plain), nullptr);
    void* found = &plain;
    EXPECT_FALSE(plain.GetInterface(ISized::IID, found));
    EXPECT_EQ(found, nullptr);

    // References to it come and go without freeing it.
    for (int i = 0; i < 3; ++i) {
        const TIntf<ISized> sized(&object);
        EXPECT_EQ(Supports<INamed>(sized)->Name(), "plain");
    }
}

TEST(Weak, BecomesNullWithItsObject) {
    TWeak<TPlain> a, b, copy;
    TPlain other;
    {
        TPlain object;
        a = &object;
        b = TWeak<TPlain>(&object);
        copy = a;
        const TWeak<TPlain> constructed = copy;
        { const TWeak<TPlain> inner = &object; }
        TWeak<TPlain>& same = a;
        a = same;
        EXPECT_EQ(a.Get(), &object);
        EXPECT_EQ(constructed, a);
        EXPECT_TRUE(a == &object);
        EXPECT_EQ(b->Name(), "plain");
        EXPECT_EQ((*copy).Name(), "plain");
        b = &other; // out of the middle of the object's list
    }
    EXPECT_FALSE(a);
    EXPECT_EQ(copy.Get(), nullptr);
    EXPECT_EQ(b.Get(), &other);
    b = nullptr;
    EXPECT_EQ(b, a);
}

TEST(Objects, FreeRunsTheDestructorInAnyCase) {
    class TLogged : public TObject {
    public:
        TLogged(std::string& log, bool fails) : FLog(log), FFails(fails) {}
        ~TLogged() override { FLog += "~"; }
        void BeforeDestruction() override {
            FLog += "before";
            if (FFails) throw EInvalidOperation("stuck");
        }

    private:
        std::string& FLog;
        bool FFails;
    };
    for (const bool fails : {false, true}) {
        std::string log;
        try {
            FreeObject(new TLogged(log, fails));
            EXPECT_FALSE(fails);
        } catch (const EInvalidOperation& error) {
            EXPECT_TRUE(fails);
            EXPECT_EQ(error.Message(), "stuck");
        }
        EXPECT_EQ(log, "before~");
    }
    FreeObject(nullptr);
}

// --- Collections ------------------------------------------------------------------------------

class TWordItem : public TCollectionItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    ~TWordItem() override {
        if (Log)
            *Log += Word + std::to_string(Index()) + "/" + std::to_string(Collection()->Count());
    }
    void Assign(const TPersistent* source) override {
        if (const auto* item = dynamic_cast<const TWordItem*>(source))
            Word = item->Word;
        else
            TCollectionItem::Assign(source);
    }
    std::string Word;
    std::string* Log = nullptr;
};
const TClassRecord TWordItem::ClassRecord{"TWordItem", &TCollectionItem::ClassRecord,
                                          CreateObject<TWordItem>};

TWordItem& Item(const TCollection& collection, int index) {
    return *static_cast<TWordItem*>(collection.Items(index));
}

std::string Words(const TCollection& collection) {
    std::string words;
    for (int i = 0; i < collection.Count(); ++i) {
        EXPECT_EQ(Item(collection, i).Index(), i);
        EXPECT_EQ(Item(collection, i).Collection(), &collection);
        words += Item(collection, i).Word;
    }
    return words;
}

/// A collection of the letters.
void Fill(TCollection& collection, std::string_view letters) {
    for (char c : letters) static_cast<TWordItem*>(collection.Add())->Word = c;
}

TEST(Collection, MovesItems) {
    const struct {
        void (*Change)(TCollection& collection);
        std::string_view Expected;
    } cases[] = {
        {[](TCollection& c) { c.Move(0, 3); }, "bcda"},
        {[](TCollection& c) { c.Move(3, 1); }, "adbc"},
        {[](TCollection& c) { c.Move(2, 2); }, "abcd"},
        {[](TCollection& c) { c.Items(1)->SetIndex(2); }, "acbd"},
        {[](TCollection& c) { c.Items(0)->SetIndex(99); }, "bcda"},
        {[](TCollection& c) { c.Items(3)->SetIndex(0); }, "dabc"},
        {[](TCollection& c) { c.Delete(1); }, "acd"},
        {[](TCollection& c) { static_cast<TWordItem*>(c.Insert(1))->Word = "x"; }, "axbcd"},
        {[](TCollection& c) { c.Clear(); }, ""},
    };
    for (const auto& c : cases) {
        TCollection collection(TClassRef<TCollectionItem>::Of<TWordItem>());
        Fill(collection, "abcd");
        c.Change(collection);
        EXPECT_EQ(Words(collection), c.Expected);
    }
}

TEST(Collection, Refuses) {
    TCollection collection(TClassRef<TCollectionItem>::Of<TWordItem>());
    Fill(collection, "ab");
    EXPECT_THROW(collection.Items(2), EListError);
    EXPECT_THROW(collection.Items(-1), EListError);
    EXPECT_THROW(collection.Insert(3), EListError);
    EXPECT_THROW(collection.Delete(2), EListError);
    EXPECT_THROW(collection.Move(0, 2), EListError);
    EXPECT_THROW(collection.Items(0)->SetIndex(-1), EListError);
    TWordItem stranger;
    EXPECT_EQ(stranger.Index(), -1);
    stranger.SetIndex(0);
    EXPECT_EQ(collection.IndexOf(&stranger), -1);
    EXPECT_THROW(collection.Assign(&stranger), EConvertError);
    EXPECT_EQ(Words(collection), "ab");
}

TEST(Collection, AssignCopiesItemForItem) {
    TCollection source(TClassRef<TCollectionItem>::Of<TWordItem>());
    TCollection dest(TClassRef<TCollectionItem>::Of<TWordItem>());
    Fill(source, "abc");
    Fill(dest, "x");
    dest.Assign(&source);
    dest.Assign(&dest);
    Item(source, 0).Word = "changed";
    EXPECT_EQ(Words(dest), "abc");
}

/// An item that is freed finds its collection without it.
TEST(Collection, FreesItemsFromTheLast) {
    std::string log;
    {
        TCollection collection(TClassRef<TCollectionItem>::Of<TWordItem>());
        Fill(collection, "abcd");
        for (int i = 0; i < 4; ++i) Item(collection, i).Log = &log;
        collection.Delete(1);
        EXPECT_EQ(log, "b-1/3");
        log.clear();
    }
    EXPECT_EQ(log, "d-1/2c-1/1a-1/0");
}

} // namespace
} // namespace tarn
